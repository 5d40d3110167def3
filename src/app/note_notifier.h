#pragma once
// A notifier for one job that keeps information messages as notes instead of boxes: they need
// no answer, so the window lists them in its progress text when the job ends. Questions,
// warnings and errors go on to the notifier it wraps.
//
// The notes are written on the job's thread and read on the user-interface thread after the
// job has ended, so they need no lock.

#include <string>
#include <vector>

#include "common/notifier.h"

namespace sylvora::app {

class NoteNotifier final : public Notifier {
 public:
  // `next` and `notes` must outlive the notifier.
  NoteNotifier(Notifier& next, std::vector<std::string>& notes) : next_(next), notes_(notes) {}

  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override {
    return next_.Ask(text, title, buttons, icon);
  }

 private:
  Notifier& next_;
  std::vector<std::string>& notes_;
};

}  // namespace sylvora::app
