#pragma once
// The platform calls on Qt: QMessageBox, QDesktopServices, QClipboard, QFileDialog.

#include <QPointer>

#include "app/platform.h"

namespace sylvora::app {

class QtPlatform final : public Platform {
 public:
  // Message boxes and dialogs are centred on `window` once it is set.
  void SetWindow(QWidget* window) { window_ = window; }

  void ShowMessage(const QString& text, const QString& title, MessageIcon icon) override;
  Answer Ask(const QString& text, const QString& title, QuestionButtons buttons,
             MessageIcon icon) override;
  void OpenLink(const QString& link) override;
  void SetClipboardText(const QString& text) override;
  void SetClipboardImage(const QImage& image) override;
  QString GetSaveFileName(const QString& caption, const QString& fileName,
                          const QString& filter) override;
  QString GetOpenFileName(const QString& caption, const QString& fileName) override;
  QString GetOpenFileNameFiltered(const QString& caption, const QString& fileName,
                                  const QString& filter) override;

 private:
  QPointer<QWidget> window_;
};

}  // namespace sylvora::app
