#include "recording_platform.h"

namespace sylvora::testing {

void RecordingPlatform::ShowMessage(const QString& text, const QString& title, MessageIcon icon) {
  boxes.push_back({text, title, icon, false});
}

Answer RecordingPlatform::Ask(const QString& text, const QString& title, QuestionButtons buttons,
                              MessageIcon icon) {
  boxes.push_back({text, title, icon, true});
  if (!answers.empty()) {
    const Answer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  return buttons == QuestionButtons::kYesNo ? Answer::kNo : Answer::kCancel;
}

QString RecordingPlatform::GetOpenFileName(const QString&, const QString&) {
  if (chosenFiles.empty()) return {};
  QString chosen = chosenFiles.front();
  chosenFiles.pop_front();
  return chosen;
}

QString RecordingPlatform::GetSaveFileName(const QString&, const QString&, const QString&) {
  if (savedFiles.empty()) return {};
  QString chosen = savedFiles.front();
  savedFiles.pop_front();
  return chosen;
}

int RecordingPlatform::ExecDialog(QDialog& dialog) {
  dialogNames.push_back(dialog.objectName());
  if (dialogScripts.empty()) return QDialog::Rejected;
  const auto script = std::move(dialogScripts.front());
  dialogScripts.pop_front();
  dialog.show();
  const int result = script(dialog);
  dialog.hide();
  return result;
}

QStringList RecordingPlatform::Texts() const {
  QStringList texts;
  for (const RecordedBox& box : boxes) texts.push_back(box.text);
  return texts;
}

}  // namespace sylvora::testing
