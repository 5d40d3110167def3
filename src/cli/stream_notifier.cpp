#include "cli/stream_notifier.h"

namespace sylvora::cli {

void StreamNotifier::ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) {
  if (icon == MessageIcon::kInformation) {
    notes_.push_back(std::string(title) + ": " + std::string(text));
    return;
  }
  out_ << title << ": " << text << '\n';
}

Answer StreamNotifier::Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
                           MessageIcon) {
  const bool yesNo = buttons == QuestionButtons::kYesNo;
  const Answer answer =
      answerYes_ ? (yesNo ? Answer::kYes : Answer::kOk) : (yesNo ? Answer::kNo : Answer::kCancel);
  const char* said = answer == Answer::kYes  ? "Yes"
                     : answer == Answer::kNo ? "No"
                     : answer == Answer::kOk ? "OK"
                                             : "Cancel";
  out_ << title << ": " << text << " -> " << said << '\n';
  return answer;
}

}  // namespace sylvora::cli
