#pragma once
// A notifier that records every message and question, answering questions from a script.

#include <deque>
#include <string>
#include <vector>

#include "common/notifier.h"

namespace sylvora::testing {

struct RecordedMessage {
  std::string text;
  std::string title;
  MessageIcon icon;
  bool question;
};

class RecordingNotifier final : public Notifier {
 public:
  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override;

  // Answers for the next questions, in order; when none are left the affirmative button.
  void QueueAnswer(Answer answer) { answers_.push_back(answer); }

  const std::vector<RecordedMessage>& Messages() const { return messages_; }

 private:
  std::vector<RecordedMessage> messages_;
  std::deque<Answer> answers_;
};

}  // namespace sylvora::testing
