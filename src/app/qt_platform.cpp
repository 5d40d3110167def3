#include "app/qt_platform.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QImage>
#include <QMessageBox>
#include <QUrl>

namespace sylvora::app {
namespace {

QMessageBox::Icon BoxIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kCritical:
      return QMessageBox::Critical;
    case MessageIcon::kExclamation:
      return QMessageBox::Warning;
    case MessageIcon::kInformation:
      return QMessageBox::Information;
    case MessageIcon::kQuestion:
      return QMessageBox::Question;
    case MessageIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

void QtPlatform::ShowMessage(const QString& text, const QString& title, MessageIcon icon) {
  QMessageBox box(BoxIcon(icon), title, text, QMessageBox::Ok, window_);
  box.exec();
}

Answer QtPlatform::Ask(const QString& text, const QString& title, QuestionButtons buttons,
                       MessageIcon icon) {
  const bool yesNo = buttons == QuestionButtons::kYesNo;
  QMessageBox box(
      BoxIcon(icon), title, text,
      yesNo ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok | QMessageBox::Cancel, window_);
  const int chosen = box.exec();
  if (yesNo) return chosen == QMessageBox::Yes ? Answer::kYes : Answer::kNo;
  return chosen == QMessageBox::Ok ? Answer::kOk : Answer::kCancel;
}

void QtPlatform::OpenLink(const QString& link) {
  QDesktopServices::openUrl(QUrl::fromUserInput(link));
}

void QtPlatform::SetClipboardText(const QString& text) { QApplication::clipboard()->setText(text); }

void QtPlatform::SetClipboardImage(const QImage& image) {
  QApplication::clipboard()->setImage(image);
}

QString QtPlatform::GetOpenFileName(const QString& caption, const QString& fileName) {
  return QFileDialog::getOpenFileName(window_, caption, fileName);
}

QString QtPlatform::GetOpenFileNameFiltered(const QString& caption, const QString& fileName,
                                            const QString& filter) {
  return QFileDialog::getOpenFileName(window_, caption, fileName, filter);
}

QString QtPlatform::GetSaveFileName(const QString& caption, const QString& fileName,
                                    const QString& filter) {
  return QFileDialog::getSaveFileName(window_, caption, fileName, filter);
}

}  // namespace sylvora::app
