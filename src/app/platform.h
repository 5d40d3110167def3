#pragma once
// The platform calls of the window that tests must observe or replace: message boxes,
// questions, opening a link with the default handler, the clipboard and the open-file dialog.
// QtPlatform (qt_platform.h) is the real one; tests use a recording one; the screenshot mode
// uses ConsolePlatform, which prints messages instead of waiting for a click.
//
// Every call is made on the user-interface thread (UiNotifier takes core messages there).

#include <QDialog>
#include <QString>

#include "common/notifier.h"

class QImage;
class QWidget;

namespace sylvora::app {

// The title of the program's message boxes.
inline const QString kProgramTitle = QStringLiteral("Sylvora");

class Platform {
 public:
  virtual ~Platform() = default;

  // A message with an OK button.
  virtual void ShowMessage(const QString& text, const QString& title, MessageIcon icon) = 0;
  // A question; returns the button chosen.
  virtual Answer Ask(const QString& text, const QString& title, QuestionButtons buttons,
                     MessageIcon icon) = 0;
  // Opens a link (or a file) with the desktop's default handler.
  virtual void OpenLink(const QString& link) = 0;
  virtual void SetClipboardText(const QString& text) = 0;
  virtual void SetClipboardImage(const QImage& image) = 0;
  // The common save-file dialog, starting at `fileName` and offering the file types of `filter`
  // ("PNG picture (*.png)"). Empty when cancelled (and on platforms without dialogs).
  virtual QString GetSaveFileName(const QString& /*caption*/, const QString& /*fileName*/,
                                  const QString& /*filter*/) {
    return {};
  }
  // The common open-file dialog; `fileName` is the name it starts with. Empty when cancelled.
  virtual QString GetOpenFileName(const QString& caption, const QString& fileName) = 0;
  // The same listing the file kinds of `filter` ("Text (*.txt);;All files (*)"); platforms
  // without such a list show every file.
  virtual QString GetOpenFileNameFiltered(const QString& caption, const QString& fileName,
                                          const QString& /*filter*/) {
    return GetOpenFileName(caption, fileName);
  }
  // Runs a modal dialog of the window and returns its result (QDialog::Accepted or Rejected).
  virtual int ExecDialog(QDialog& dialog) { return dialog.exec(); }
};

}  // namespace sylvora::app
