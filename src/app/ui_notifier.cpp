#include "app/ui_notifier.h"

#include <QThread>

namespace sylvora::app {
namespace {

QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

UiNotifier::UiNotifier(Platform& platform, QObject* parent)
    : QObject(parent), platform_(platform) {}

void UiNotifier::ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) {
  const QString message = ToQString(text), caption = ToQString(title);
  if (QThread::currentThread() == thread()) {
    platform_.ShowMessage(message, caption, icon);
    return;
  }
  QMetaObject::invokeMethod(
      this, [&] { platform_.ShowMessage(message, caption, icon); }, Qt::BlockingQueuedConnection);
}

Answer UiNotifier::Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
                       MessageIcon icon) {
  const QString question = ToQString(text), caption = ToQString(title);
  if (QThread::currentThread() == thread()) return platform_.Ask(question, caption, buttons, icon);
  Answer answer = Answer::kCancel;
  QMetaObject::invokeMethod(
      this, [&] { answer = platform_.Ask(question, caption, buttons, icon); },
      Qt::BlockingQueuedConnection);
  return answer;
}

}  // namespace sylvora::app
