#pragma once
// The platform of the screenshot mode: no one is there to click, so messages are printed to
// stderr, questions get their negative answer (No, Cancel), links and the clipboard are
// ignored and the file dialog chooses nothing.

#include "app/platform.h"

namespace sylvora::app {

class ConsolePlatform final : public Platform {
 public:
  void ShowMessage(const QString& text, const QString& title, MessageIcon icon) override;
  Answer Ask(const QString& text, const QString& title, QuestionButtons buttons,
             MessageIcon icon) override;
  void OpenLink(const QString&) override {}
  void SetClipboardText(const QString&) override {}
  void SetClipboardImage(const QImage&) override {}
  QString GetOpenFileName(const QString&, const QString&) override { return {}; }
  // A dialog would wait for a click that never comes.
  int ExecDialog(QDialog&) override { return QDialog::Rejected; }
};

}  // namespace sylvora::app
