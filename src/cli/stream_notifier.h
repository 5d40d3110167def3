#pragma once
// The command line's notifier: warnings and errors go to a stream (stderr) as "title: text";
// information messages (such as the sort notice) are kept as notes for the command to print
// among its stage lines, so they do not read as the run's first complaint. Questions are
// answered by a fixed answer chosen with a flag.

#include <ostream>
#include <string>
#include <vector>

#include "common/notifier.h"

namespace sylvora::cli {

class StreamNotifier final : public Notifier {
 public:
  StreamNotifier(std::ostream& out, bool answerYes) : out_(out), answerYes_(answerYes) {}

  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override;

  // The information messages so far, each as "title: text".
  const std::vector<std::string>& Notes() const { return notes_; }

 private:
  std::vector<std::string> notes_;
  std::ostream& out_;
  bool answerYes_;
};

}  // namespace sylvora::cli
