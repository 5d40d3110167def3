#include "app/console_platform.h"

#include <cstdio>

namespace sylvora::app {
namespace {

void Print(const QString& title, const QString& text) {
  QString flat = text;
  flat.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
  std::fprintf(stderr, "%s: %s\n", qUtf8Printable(title), qUtf8Printable(flat));
}

}  // namespace

void ConsolePlatform::ShowMessage(const QString& text, const QString& title, MessageIcon) {
  Print(title, text);
}

Answer ConsolePlatform::Ask(const QString& text, const QString& title, QuestionButtons buttons,
                            MessageIcon) {
  const bool yesNo = buttons == QuestionButtons::kYesNo;
  Print(title, text + (yesNo ? QStringLiteral(" [answered No]") : QStringLiteral(" [cancelled]")));
  return yesNo ? Answer::kNo : Answer::kCancel;
}

}  // namespace sylvora::app
