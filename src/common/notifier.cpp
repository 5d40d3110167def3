#include "common/notifier.h"

namespace sylvora {

Answer SilentNotifier::Ask(std::string_view, std::string_view, QuestionButtons buttons,
                           MessageIcon) {
  return buttons == QuestionButtons::kYesNo ? Answer::kYes : Answer::kOk;
}

Notifier& DefaultNotifier() {
  static SilentNotifier silent;  // stateless, so sharing it across threads is safe
  return silent;
}

}  // namespace sylvora
