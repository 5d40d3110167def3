// Start-up of the main window: paths and their warnings, the defaults that decide what is
// indexed, what is enabled before a load, saving the paths and a corpus named on the command
// line.
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include "app/main_window.h"
#include "app/path_settings.h"
#include "recording_platform.h"
#include "support/qt_test_main.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;

namespace {

const QStringList kBothWarnings{app::kGraphvizWarning, app::kStopListWarning};

}  // namespace

class StartupTest : public QObject {
  Q_OBJECT

 private slots:
  void NoSettingsFileUsesDefaultsWithoutWarnings() {
    WindowFixture f;
    QCOMPARE(Box(f, "StopPath")->text(), f.ProgramFolder() + QStringLiteral("/common_words.txt"));
    QCOMPARE(Box(f, "GraphVisPath")->text(), f.ProgramFolder() + QStringLiteral("/bin"));
    QCOMPARE(f.platform.Texts(), QStringList());
    QCOMPARE(f.Window().windowTitle(),
             QStringLiteral("Sylvora v") + QStringLiteral(SYLVORA_TEST_VERSION));
    // The defaults decide what gets indexed; indexing waits for a load.
    const std::pair<const char*, const char*> boxes[] = {
        {"MinDocLen", "64"}, {"MaxDocCount", "0"}, {"MinChars", "3"}, {"SecDF", "2"}};
    for (const auto& [name, text] : boxes)
      QCOMPARE(Box(f, name)->text(), QString::fromLatin1(text));
    const auto df = f.Window().findChildren<QLineEdit*>(QStringLiteral("DF"));
    QCOMPARE(df[0]->text() + u'|' + df[1]->text(), QStringLiteral("2|50"));
    const std::pair<const char*, bool> checks[] = {
        {"Radian", true}, {"Port", true}, {"Abbrev", true}, {"AllowNumbers", false}};
    for (const auto& [name, checked] : checks)
      QVERIFY2(f.Find<QCheckBox>(QLatin1String(name))->isChecked() == checked, name);
    QVERIFY(!f.Find<QPushButton>(QStringLiteral("DoIndex"))->isEnabled());
    // The advanced options panel starts hidden and opens once.
    f.Window().show();
    auto* panel = f.Find<QGroupBox>(QStringLiteral("ExpertPanel"));
    auto* button = f.Find<QPushButton>(QStringLiteral("ShowExpPan"));
    QVERIFY(!panel->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(panel->isVisible() && !button->isEnabled());
  }

  // Missing paths warn, the Graphviz one first; a damaged file warns but the window starts.
  void SettingsFilesAreReadAndChecked() {
    // Two missing paths, none, one line, binary bytes (path_settings_test reads the lines).
    const std::pair<QByteArray, const char*> cases[] = {
        {"/nowhere/common_words.txt\r\n/nowhere/graphviz\r\n", "/nowhere/common_words.txt"},
        {QByteArray(), ""},
        {"/missing/stop.txt\r\n", "/missing/stop.txt"},
        {QByteArray("\x00\x9f\x92\x96\x01\x02\r\n\xff", 9), ""}};
    for (const auto& [bytes, stop] : cases) {
      WindowOptions options;
      options.settingsFile = bytes;
      WindowFixture f(options);
      if (*stop != 0) QCOMPARE(Box(f, "StopPath")->text(), QString::fromUtf8(stop));
      QCOMPARE(f.platform.Texts(), kBothWarnings);
    }
  }

  void SaveWritesTheTwoBoxesAndTheNextStartReadsThem() {
    QByteArray saved;
    {
      WindowFixture f;
      f.Window().show();
      f.Page().ShowExpPan_Click();
      Box(f, "StopPath")->setText(QStringLiteral("/lists/stop words.txt"));
      Box(f, "GraphVisPath")->setText(QStringLiteral("/opt/graphviz/bin"));
      QTest::mouseClick(f.Find<QPushButton>(QStringLiteral("SavePaths")), Qt::LeftButton);
      QFile file(f.ConfigFolder() + QStringLiteral("/paths"));
      QVERIFY(file.open(QIODevice::ReadOnly));
      saved = file.readAll();
      QCOMPARE(f.platform.Texts(), QStringList());  // no message follows a save
    }
    WindowOptions options;
    options.settingsFile = saved;
    WindowFixture next(options);
    QCOMPARE(Box(next, "StopPath")->text(), QStringLiteral("/lists/stop words.txt"));
    QCOMPARE(Box(next, "GraphVisPath")->text(), QStringLiteral("/opt/graphviz/bin"));
  }

  void FirstStartOfAMovedInstallFindsItsFilesAndWritesNoSettings() {
    QTemporaryDir dir;
    const QString prefix = dir.path() + QStringLiteral("/moved/usr");
    const QString graphviz = dir.path() + QStringLiteral("/graphviz");
    const QString config = dir.path() + QStringLiteral("/config");
    QDir().mkpath(prefix + QStringLiteral("/bin"));
    QDir().mkpath(prefix + QStringLiteral("/share/sylvora"));
    QDir().mkpath(graphviz);
    QVERIFY(QFile::copy(DataFile(QStringLiteral("common_words.txt")),
                        prefix + QStringLiteral("/share/sylvora/common_words.txt")));
    QFile(graphviz + QStringLiteral("/sfdp")).open(QIODevice::WriteOnly);
    const QByteArray oldPath = qgetenv("PATH");
    const QByteArray oldConfig = qgetenv("XDG_CONFIG_HOME");
    qputenv("PATH", (QStringLiteral("/nowhere:") + graphviz).toUtf8());
    qputenv("XDG_CONFIG_HOME", config.toUtf8());
    const auto environment =
        app::StartupEnvironment::ForProgram(prefix + QStringLiteral("/bin"), QString());
    qputenv("PATH", oldPath);
    oldConfig.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", oldConfig);
    QVERIFY(environment.configFolder.startsWith(config));

    RecordingPlatform platform;
    app::Main window(platform, environment);
    window.Start();
    QCOMPARE(window.findChild<QLineEdit*>(QStringLiteral("StopPath"))->text(),
             prefix + QStringLiteral("/share/sylvora/common_words.txt"));
    QCOMPARE(window.findChild<QLineEdit*>(QStringLiteral("GraphVisPath"))->text(), graphviz);
    QCOMPARE(platform.Texts(), QStringList());
    // Nothing is written until the user presses Save.
    QVERIFY(!QFileInfo::exists(config));
  }

  void CommandLineCorpusIsLoadedThenAnnounced() {
    WindowOptions options;
    options.commandLine = DataFile(QStringLiteral("sample_twitter11.txt"));
    WindowFixture f(options);
    QVERIFY(f.WaitIdle());
    QCOMPARE(f.Window().CurrentSession().Documents().DocumentCount(), 5000);
    // Nothing to answer, so no box: the missing link service is a note in the progress text,
    // the success a note in the status bar.
    QCOMPARE(f.platform.boxes.size(), 0);
    QVERIFY(f.Page().LoadProgressText().contains(QStringLiteral("Expanding Short URLs: ")));
    QVERIFY(f.Window().statusBar()->currentMessage().startsWith(
        QStringLiteral("'") + options.commandLine + QStringLiteral("' was successfully loaded.")));
  }

  // Regression: a missing corpus was skipped without a word, or followed by "successfully".
  void CommandLineNamingNoFileLoadsNothingAndSaysWhy() {
    WindowOptions options;
    options.commandLine = QStringLiteral("/no/such/corpus.txt");
    WindowFixture f(options);
    QCOMPARE(f.platform.boxes.size(), 1);
    QCOMPARE(f.platform.boxes[0].icon, MessageIcon::kCritical);
    QVERIFY(f.platform.boxes[0].text.contains(options.commandLine));
    QVERIFY(f.Window().CurrentSession().Documents().DocumentCount() == 0);
    QVERIFY(f.Window().statusBar()->currentMessage().isEmpty());
  }
};

SYLVORA_QT_TEST_MAIN(StartupTest)
#include "startup_test.moc"
