#pragma once
// Message boxes and questions raised by core operations. The application shows them with
// QMessageBox (on the UI thread, also when the core runs on a worker), tests record them,
// and the command-line tool prints them to stderr and answers questions from its flags.

#include <string>
#include <string_view>

namespace sylvora {

enum class MessageIcon { kNone, kCritical, kExclamation, kInformation, kQuestion };

enum class QuestionButtons { kOkCancel, kYesNo };

enum class Answer { kOk, kCancel, kYes, kNo };

class Notifier {
 public:
  virtual ~Notifier() = default;

  // A message with an OK button.
  virtual void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) = 0;

  // A question; returns the button chosen.
  virtual Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
                     MessageIcon icon) = 0;
};

// Shows nothing and answers every question with its affirmative button (OK or Yes), so that
// a caller that does not care about messages still gets the work done.
class SilentNotifier final : public Notifier {
 public:
  void ShowMessage(std::string_view, std::string_view, MessageIcon) override {}
  Answer Ask(std::string_view, std::string_view, QuestionButtons buttons, MessageIcon) override;
};

// The notifier to use when the caller passed none.
Notifier& DefaultNotifier();

}  // namespace sylvora
