// Start-up of the main window: paths, warnings, caption, the controls' initial state, saving
// the paths and a corpus named on the command line.
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include "app/main_window.h"
#include "app/path_settings.h"
#include "recording_platform.h"
#include "window_fixture.h"

using namespace sylvora;
using namespace sylvora::testing;

namespace {

const QString kGraphviz = app::kGraphvizWarning;
const QString kStopList = app::kStopListWarning;

QLineEdit* Box(WindowFixture& f, const char* name) {
  return f.Find<QLineEdit>(QString::fromLatin1(name));
}

}  // namespace

class StartupTest : public QObject {
  Q_OBJECT

 private slots:
  void NoSettingsFileUsesDefaultsWithoutWarnings() {
    WindowFixture f;
    QCOMPARE(Box(f, "StopPath")->text(), f.ProgramFolder() + QStringLiteral("/common_words.txt"));
    QCOMPARE(Box(f, "GraphVisPath")->text(), f.ProgramFolder() + QStringLiteral("/bin"));
    QCOMPARE(f.platform.Texts(), QStringList());
  }

  void NoSettingsNoGraphvizNoStopListWarnsTwiceInOrder() {
    WindowOptions options;
    options.stopListBesideProgram = false;
    options.sfdpInProgramBin = false;
    WindowFixture f(options);
    QCOMPARE(f.platform.Texts(), (QStringList{kGraphviz, kStopList}));
    for (const RecordedBox& box : f.platform.boxes) {
      QCOMPARE(box.title, QStringLiteral("Sylvora"));
      QVERIFY(!box.question);
    }
  }

  void SettingsFileGivesThePathsAndIsCheckedToo() {
    WindowOptions options;
    options.settingsFile = QByteArray("/nowhere/common_words.txt\r\n/nowhere/graphviz\r\n");
    WindowFixture f(options);
    QCOMPARE(Box(f, "StopPath")->text(), QStringLiteral("/nowhere/common_words.txt"));
    QCOMPARE(Box(f, "GraphVisPath")->text(), QStringLiteral("/nowhere/graphviz"));
    // The file was read, and both paths still warn.
    QCOMPARE(f.platform.Texts(), (QStringList{kGraphviz, kStopList}));
  }

  void SettingsFileNamingExistingFilesDoesNotWarn() {
    const QString stop = DataFile(QStringLiteral("common_words.txt"));
    WindowOptions options;
    options.stopListBesideProgram = false;
    options.sfdpInProgramBin = false;
    WindowFixture probe(options);  // only for a folder that holds bin/sfdp
    QDir().mkpath(probe.Folder() + QStringLiteral("/gv"));
    QFile(probe.Folder() + QStringLiteral("/gv/sfdp")).open(QIODevice::WriteOnly);
    options.settingsFile =
        (stop + QStringLiteral("\r\n") + probe.Folder() + QStringLiteral("/gv\r\n")).toUtf8();
    WindowFixture f(options);
    QCOMPARE(f.platform.Texts(), QStringList());
    QCOMPARE(Box(f, "GraphVisPath")->text(), probe.Folder() + QStringLiteral("/gv"));
  }

  void DamagedSettingsFilesWarnButStart_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line") << QByteArray("/missing/stop.txt\r\n");
    QTest::newRow("binary") << QByteArray("\x00\x9f\x92\x96\x01\x02\r\n\xff", 9);
  }

  void DamagedSettingsFilesWarnButStart() {
    QFETCH(QByteArray, bytes);
    WindowOptions options;
    options.settingsFile = bytes;
    WindowFixture f(options);
    QCOMPARE(f.platform.Texts(), (QStringList{kGraphviz, kStopList}));
    QCOMPARE(f.Window().windowTitle(), app::BaseCaption());
  }

  void CaptionCarriesTheProjectVersion() {
    WindowFixture f;
    QCOMPARE(f.Window().windowTitle(),
             QStringLiteral("Sylvora v") + QStringLiteral(SYLVORA_TEST_VERSION));
  }

  void ControlsStartAsSpecified() {
    WindowFixture f;
    QCOMPARE(Box(f, "MinDocLen")->text(), QStringLiteral("64"));
    QCOMPARE(Box(f, "MaxDocCount")->text(), QStringLiteral("0"));
    QVERIFY(f.Find<QCheckBox>(QStringLiteral("Radian"))->isChecked());
    QCOMPARE(f.Find<QCheckBox>(QStringLiteral("Radian"))->text(), QStringLiteral("Radian 6 data?"));
    QCOMPARE(Box(f, "CorpusFilePath")->text(), QStringLiteral("[enter path]"));
    const auto df = f.Window().findChildren<QLineEdit*>(QStringLiteral("DF"));
    QCOMPARE(df.size(), 2);
    QCOMPARE(df[0]->property("index").toInt(), 0);
    QCOMPARE(df[0]->text(), QStringLiteral("2"));
    QCOMPARE(df[0]->toolTip(),
             QStringLiteral("Remove index terms that occur in fewer than this many documents"));
    QCOMPARE(df[1]->property("index").toInt(), 1);
    QCOMPARE(df[1]->text(), QStringLiteral("50"));
    QCOMPARE(df[1]->toolTip(),
             QStringLiteral("Remove index terms that occur in more than <this>% of all documents"));
    QCOMPARE(Box(f, "MinChars")->text(), QStringLiteral("3"));
    QCOMPARE(Box(f, "MinChars")->toolTip(),
             QStringLiteral("Remove tokens of less than this length"));
    const auto* port = f.Find<QCheckBox>(QStringLiteral("Port"));
    QVERIFY(port->isChecked());
    QCOMPARE(port->text(), QStringLiteral("Porter stemming"));
    const auto* abbrev = f.Find<QCheckBox>(QStringLiteral("Abbrev"));
    QVERIFY(abbrev->isChecked());
    QCOMPARE(abbrev->text(), QStringLiteral("Index Abbreviations"));
    QCOMPARE(abbrev->toolTip(), QStringLiteral("Treat capitalised word forms as distinct"));
    const auto* numbers = f.Find<QCheckBox>(QStringLiteral("AllowNumbers"));
    QVERIFY(!numbers->isChecked());
    QCOMPARE(numbers->text(), QStringLiteral("Allow Numbers"));
    QCOMPARE(Box(f, "SecDF")->text(), QStringLiteral("2"));
    QCOMPARE(f.Find<QLabel>(QStringLiteral("IndexingStatus"))->text(),
             QStringLiteral("Click button above to start indexing..."));
    QCOMPARE(f.Find<QPushButton>(QStringLiteral("LoadCorpus"))->text(),
             QStringLiteral("Load Twitter File"));
    QCOMPARE(f.Find<QPushButton>(QStringLiteral("GetCorpusFilePath"))->text(),
             QStringLiteral("Browse"));
    QCOMPARE(f.Find<QPushButton>(QStringLiteral("DoIndex"))->text(),
             QStringLiteral("Create Tweet Indexes"));
    QVERIFY(!f.Find<QPushButton>(QStringLiteral("DoIndex"))->isEnabled());
    QVERIFY(!f.Find<QGroupBox>(QStringLiteral("TDM_Frame"))->isEnabled());
    QCOMPARE(f.Find<QGroupBox>(QStringLiteral("Paths_Frame"))->title(),
             QStringLiteral("Set Paths"));
    QCOMPARE(f.Find<QPushButton>(QStringLiteral("SavePaths"))->text(), QStringLiteral("Save"));
    QCOMPARE(f.Find<QGroupBox>(QStringLiteral("SecIndexOptions_Frame"))->title(),
             QStringLiteral("Index Options for Tags, Links, Users, Mentions "));
    QCOMPARE(f.Find<QGroupBox>(QStringLiteral("LoadOptions_Frame"))->title(),
             QStringLiteral("Load Options"));
    QCOMPARE(f.Find<QGroupBox>(QStringLiteral("WordIndexOptions_Frame"))->title(),
             QStringLiteral("Word Index Options"));
    const auto* tabs = f.Find<QTabWidget>(QStringLiteral("MainTabs"));
    QVERIFY(tabs->count() >= 3);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Load and Index"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Time Line Explorer"));
    QCOMPARE(tabs->tabText(tabs->count() - 1), QStringLiteral("Cluster Explorer"));
    const auto* lists = f.Find<QTabWidget>(QStringLiteral("TermLists"));
    QCOMPARE(lists->count(), 5);
    QCOMPARE(lists->tabText(0), QStringLiteral("Words"));
    QCOMPARE(lists->tabText(4), QStringLiteral("Users"));
  }

  void AdvancedOptionsPanelStartsHiddenAndOpensOnce() {
    WindowFixture f;
    f.Window().show();
    auto* panel = f.Find<QGroupBox>(QStringLiteral("ExpertPanel"));
    auto* button = f.Find<QPushButton>(QStringLiteral("ShowExpPan"));
    QCOMPARE(panel->title(), QStringLiteral("Advanced Options"));
    QCOMPARE(button->text(), QStringLiteral("Show Advanced Options"));
    QVERIFY(!panel->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(panel->isVisible());
    QVERIFY(!button->isEnabled());
  }

  void SaveWritesTheTwoBoxesAndTheNextStartReadsThem() {
    QByteArray saved;
    QString stop, graphviz;
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
    QCOMPARE(saved, QByteArray("/lists/stop words.txt\r\n/opt/graphviz/bin\r\n"));
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
    QCOMPARE(Box(f, "CorpusFilePath")->text(), options.commandLine);
    QCOMPARE(f.Window().CurrentSession().Documents().DocumentCount(), 5000);
    // No link service is configured: the offer explains that, then the start-up message.
    QCOMPARE(f.platform.boxes.size(), 2);
    QCOMPARE(f.platform.boxes[0].title, QStringLiteral("Expanding Short URLs"));
    QVERIFY(!f.platform.boxes[0].question);
    QCOMPARE(
        f.platform.boxes[1].text,
        QStringLiteral("'") + options.commandLine +
            QStringLiteral("' was successfully loaded. Click 'Create Tweet Indexes' to proceed"));
    QCOMPARE(f.platform.boxes[1].icon, MessageIcon::kInformation);
    QCOMPARE(f.Window().windowTitle(),
             app::BaseCaption() + QStringLiteral(" [sample_twitter11.txt, 5000 tweets loaded]"));
  }

  void CommandLineRadianExportTicksTheBox() {
    WindowOptions options;
    options.commandLine = DataFile(QStringLiteral("sample_radian6.txt"));
    WindowFixture f(options);
    QVERIFY(f.WaitIdle());
    QVERIFY(f.Find<QCheckBox>(QStringLiteral("Radian"))->isChecked());
    QVERIFY(f.Window().CurrentSession().Documents().DocumentCount() > 0);
    QCOMPARE(f.platform.boxes.size(), 1);  // no link offer for Radian 6
  }

  void CommandLineNamingNoFileLoadsNothing() {
    WindowOptions options;
    options.commandLine = QStringLiteral("/no/such/corpus.txt");
    WindowFixture f(options);
    QCOMPARE(Box(f, "CorpusFilePath")->text(), QStringLiteral("[enter path]"));
    QCOMPARE(f.platform.Texts(), QStringList());
  }
};

QTEST_MAIN(StartupTest)
#include "startup_test.moc"
