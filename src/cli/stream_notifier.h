#pragma once
// The command line's notifier: messages go to a stream (stderr) as "title: text"; questions
// are answered by a fixed answer chosen with a flag.

#include <ostream>

#include "common/notifier.h"

namespace sylvora::cli {

class StreamNotifier final : public Notifier {
 public:
  StreamNotifier(std::ostream& out, bool answerYes) : out_(out), answerYes_(answerYes) {}

  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override;

 private:
  std::ostream& out_;
  bool answerYes_;
};

}  // namespace sylvora::cli
