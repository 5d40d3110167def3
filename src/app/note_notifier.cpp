#include "app/note_notifier.h"

namespace sylvora::app {

void NoteNotifier::ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) {
  if (icon != MessageIcon::kInformation && icon != MessageIcon::kNone) {
    next_.ShowMessage(text, title, icon);
    return;
  }
  std::string note(title);
  if (!note.empty()) note += ": ";
  note += text;
  notes_.push_back(std::move(note));
}

}  // namespace sylvora::app
