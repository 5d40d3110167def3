#include "support/recording_notifier.h"

namespace sylvora::testing {

void RecordingNotifier::ShowMessage(std::string_view text, std::string_view title,
                                    MessageIcon icon) {
  messages_.push_back({std::string(text), std::string(title), icon, false});
}

Answer RecordingNotifier::Ask(std::string_view text, std::string_view title,
                              QuestionButtons buttons, MessageIcon icon) {
  messages_.push_back({std::string(text), std::string(title), icon, true});
  if (answers_.empty()) return buttons == QuestionButtons::kYesNo ? Answer::kYes : Answer::kOk;
  const Answer answer = answers_.front();
  answers_.pop_front();
  return answer;
}

}  // namespace sylvora::testing
