// The settings file "paths": reading, saving and the defaults.
#include <QDir>
#include <QFile>
#include <QTest>

#include "app/path_settings.h"
#include "support/temp_dir.h"

using sylvora::app::DefaultGraphvizFolder;
using sylvora::app::DefaultStopListPath;
using sylvora::app::ReadPathSettings;
using sylvora::app::SavePathSettings;
using sylvora::testing::ReadFile;
using sylvora::testing::TempDir;

namespace {

QString Folder(const TempDir& dir) { return QString::fromStdString(dir.Path().string()); }

QString Write(const TempDir& dir, const char* name, const QByteArray& bytes) {
  return QString::fromStdString(dir.WriteFile(name, bytes.toStdString()));
}

}  // namespace

class PathSettingsTest : public QObject {
  Q_OBJECT

 private slots:
  void MissingFileGivesNothing() {
    TempDir dir;
    QVERIFY(!ReadPathSettings(Folder(dir) + QStringLiteral("/paths")).has_value());
  }

  // CR LF or LF lines, no final line end, an empty file, binary bytes, spaces and UTF-8.
  void ReadsLines() {
    const std::tuple<QByteArray, const char*, const char*> cases[] = {
        {"/a/common_words.txt\r\n/usr/bin\r\n", "/a/common_words.txt", "/usr/bin"},
        {"/a/s.txt\n/g\n", "/a/s.txt", "/g"},
        {"/a/s.txt\r\n/g", "/a/s.txt", "/g"},
        {QByteArray(), "", ""},
        {QByteArray("\x00\x01\xff\xfe/x\r\n\x02\x03", 10), "\uFFFD\uFFFD/x", ""},
        {"/home/Zoë/my lists/stop.txt\r\n/opt/graph viz/bin\r\n", "/home/Zoë/my lists/stop.txt",
         "/opt/graph viz/bin"}};
    for (const auto& [bytes, stop, graphviz] : cases) {
      TempDir dir;
      const auto paths = ReadPathSettings(Write(dir, "paths", bytes));
      QVERIFY(paths.has_value());
      QCOMPARE(paths->stopPath + u'|' + paths->graphVisPath,
               QString::fromUtf8(stop) + u'|' + QString::fromUtf8(graphviz));
    }
  }

  void SavesExactlyTwoCrLfLines() {
    TempDir dir;
    const QString file = Folder(dir) + QStringLiteral("/sub/folder/paths");
    QString error;
    QVERIFY(SavePathSettings(
        file, {QStringLiteral("/s/common_words.txt"), QStringLiteral("/g/bin")}, error));
    QCOMPARE(QByteArray::fromStdString(ReadFile(file.toStdString())),
             QByteArray("/s/common_words.txt\r\n/g/bin\r\n"));
    // Saving again replaces the file; empty paths still give two lines.
    QVERIFY(SavePathSettings(file, {QString(), QString()}, error));
    QCOMPARE(QByteArray::fromStdString(ReadFile(file.toStdString())), QByteArray("\r\n\r\n"));
  }

  void UnwritableFileSaysWhy() {
    TempDir dir;
    const QString folderInTheWay = Folder(dir) + QStringLiteral("/paths");
    QVERIFY(QDir().mkpath(folderInTheWay));  // a folder where the file should go
    QString error;
    QVERIFY(!SavePathSettings(folderInTheWay, {}, error));
    QVERIFY2(error.contains(folderInTheWay), qPrintable(error));
  }

  // Beside the program when it is there, else in the data folder (a build folder's program),
  // else beside the program all the same.
  void DefaultStopListIsBesideTheProgramOrInTheDataFolder() {
    QCOMPARE(DefaultStopListPath(QStringLiteral("/opt/sylvora/bin")),
             QStringLiteral("/opt/sylvora/bin/common_words.txt"));
    TempDir program, data, empty;
    Write(data, "common_words.txt", "the\r\n");
    QCOMPARE(DefaultStopListPath(Folder(program), Folder(data)),
             Folder(data) + QStringLiteral("/common_words.txt"));
    QCOMPARE(DefaultStopListPath(Folder(program), Folder(empty)),
             Folder(program) + QStringLiteral("/common_words.txt"));
    Write(program, "common_words.txt", "the\r\n");
    QCOMPARE(DefaultStopListPath(Folder(program), Folder(data)),
             Folder(program) + QStringLiteral("/common_words.txt"));
  }

  void DefaultGraphvizFolderIsWhereSfdpIs() {
    TempDir dir;
    const QString root = Folder(dir);
    QDir().mkpath(root + QStringLiteral("/empty"));
    QDir().mkpath(root + QStringLiteral("/gv/bin"));
    QDir().mkpath(root + QStringLiteral("/other"));
    QFile(root + QStringLiteral("/gv/bin/sfdp")).open(QIODevice::WriteOnly);
    QFile(root + QStringLiteral("/other/sfdp")).open(QIODevice::WriteOnly);
    const QString path = root + QStringLiteral("/empty:") + root + QStringLiteral("/gv/bin/:") +
                         root + QStringLiteral("/other");
    QCOMPARE(DefaultGraphvizFolder(QStringLiteral("/prog"), path),
             root + QStringLiteral("/gv/bin"));
  }

  // Without an sfdp on the search path (a folder of that name is none): the program's bin/.
  void DefaultGraphvizFolderFallsBackOnProgramBin() {
    TempDir dir;
    QDir().mkpath(Folder(dir) + QStringLiteral("/sfdp"));
    QCOMPARE(DefaultGraphvizFolder(QStringLiteral("/prog"), Folder(dir)),
             QStringLiteral("/prog/bin"));
    QCOMPARE(DefaultGraphvizFolder(QStringLiteral("/prog"), QString()),
             QStringLiteral("/prog/bin"));
  }
};

QTEST_GUILESS_MAIN(PathSettingsTest)
#include "path_settings_test.moc"
