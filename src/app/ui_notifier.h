#pragma once
// The notifier the window hands to core code. Messages and questions are shown through the
// Platform on the user-interface thread; a caller on a worker thread waits there until the
// user has answered. The user-interface thread never waits for a worker that may be asking
// (JobRunner's shutdown keeps events running while it waits), so this cannot dead-lock.

#include <QObject>

#include "app/platform.h"
#include "common/notifier.h"

namespace sylvora::app {

class UiNotifier final : public QObject, public Notifier {
  Q_OBJECT

 public:
  // `platform` must outlive the notifier; the notifier lives on the thread that made it.
  explicit UiNotifier(Platform& platform, QObject* parent = nullptr);

  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override;
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override;

 private:
  Platform& platform_;
};

}  // namespace sylvora::app
