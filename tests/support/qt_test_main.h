#pragma once
// The main function of the Qt Test suites. A suite run by hand from the build folder behaves as
// under CTest: without a display it uses the offscreen platform, and the pictures it checks are
// drawn with the DejaVu fonts of the fonts-dejavu-core package (scripts/install-deps) rather
// than whatever fonts the machine happens to have.

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QFontDatabase>
#include <QStringList>
#include <QTest>

namespace sylvora::testing {

inline void DefaultToOffscreen() {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
}

// Registers the DejaVu fonts and makes them stand in for the families the views and widgets
// ask for, so that glyph shapes and metrics are the same on every machine.
inline void UseDejaVuFonts() {
  const QDir folder(QStringLiteral("/usr/share/fonts/truetype/dejavu"));
  int loaded = 0;
  for (const QString& name : folder.entryList({QStringLiteral("*.ttf")}, QDir::Files)) {
    if (QFontDatabase::addApplicationFont(folder.filePath(name)) >= 0) ++loaded;
  }
  if (loaded == 0)
    qFatal("No DejaVu font in %s: run scripts/install-deps", qPrintable(folder.path()));
  const QString mono = QStringLiteral("DejaVu Sans Mono");
  const QString sans = QStringLiteral("DejaVu Sans");
  QFont::insertSubstitutions(QStringLiteral("Courier New"), {mono});
  QFont::insertSubstitutions(QStringLiteral("Courier"), {mono});
  QFont::insertSubstitutions(QStringLiteral("Arial Narrow"), {sans});
  QFont::insertSubstitutions(QStringLiteral("Arial"), {sans});
  QApplication::setFont(QFont(sans, 9));
}

}  // namespace sylvora::testing

// As QTEST_MAIN, with the platform default and the fonts above.
#define SYLVORA_QT_TEST_MAIN(TestObject)     \
  int main(int argc, char* argv[]) {         \
    sylvora::testing::DefaultToOffscreen();  \
    QApplication app(argc, argv);            \
    app.setAttribute(Qt::AA_Use96Dpi, true); \
    sylvora::testing::UseDejaVuFonts();      \
    TestObject tc;                           \
    QTEST_SET_MAIN_SOURCE_PATH               \
    return QTest::qExec(&tc, argc, argv);    \
  }
