#pragma once
// A platform that records every message box, question, opened link, clipboard change and
// file dialog, and answers questions and dialogs from scripts.

#include <deque>
#include <functional>

#include <QImage>
#include <QString>
#include <QStringList>
#include <QVector>

#include "app/platform.h"

namespace sylvora::testing {

struct RecordedBox {
  QString text;
  QString title;
  MessageIcon icon;
  bool question;
};

class RecordingPlatform final : public app::Platform {
 public:
  void ShowMessage(const QString& text, const QString& title, MessageIcon icon) override;
  Answer Ask(const QString& text, const QString& title, QuestionButtons buttons,
             MessageIcon icon) override;
  void OpenLink(const QString& link) override { links.push_back(link); }
  void SetClipboardText(const QString& text) override { clipboardText = text; }
  void SetClipboardImage(const QImage& image) override { clipboardImage = image; }
  QString GetSaveFileName(const QString& caption, const QString& fileName,
                          const QString& filter) override;
  QString GetOpenFileName(const QString& caption, const QString& fileName) override;
  QString GetOpenFileNameFiltered(const QString& caption, const QString& fileName,
                                  const QString&) override {
    return GetOpenFileName(caption, fileName);
  }
  // Records the dialog's object name and runs the next script on it (the dialog is shown but
  // not run modally); with no script left the dialog is rejected.
  int ExecDialog(QDialog& dialog) override;

  // Answers for the next questions in order; then the negative button (No, Cancel).
  std::deque<Answer> answers;
  // Names the next file dialogs return in order; then "" (cancelled).
  std::deque<QString> chosenFiles;
  // Names the next save dialogs return in order; then "" (cancelled).
  std::deque<QString> savedFiles;
  // Scripts for the next modal dialogs in order: each sets the dialog up and returns its result.
  std::deque<std::function<int(QDialog&)>> dialogScripts;

  QVector<RecordedBox> boxes;
  QStringList links;
  QStringList dialogNames;
  QString clipboardText;
  QImage clipboardImage;

  // The texts of the boxes recorded so far.
  QStringList Texts() const;
};

}  // namespace sylvora::testing
