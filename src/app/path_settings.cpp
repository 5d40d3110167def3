#include "app/path_settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include "common/file_io.h"

namespace sylvora::app {
namespace {

// Drops control characters (a binary file's NULs and the like); keeps tabs.
QString PrintableLine(QString line) {
  line.removeIf([](QChar c) { return c.unicode() < 0x20 && c != u'\t'; });
  return line;
}

}  // namespace

QString SettingsFilePath(const QString& folder) { return folder + QStringLiteral("/paths"); }

std::optional<PathSettings> ReadPathSettings(const QString& filePath) {
  if (!FileExists(filePath)) return std::nullopt;
  QFile file(filePath);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
  PathSettings paths;
  if (!lines.isEmpty()) paths.stopPath = PrintableLine(lines[0]);
  if (lines.size() > 1) paths.graphVisPath = PrintableLine(lines[1]);
  return paths;
}

bool SavePathSettings(const QString& filePath, const PathSettings& paths, QString& error) {
  const QFileInfo info(filePath);
  if (!QDir().mkpath(info.absolutePath())) {
    error = QStringLiteral("Cannot create the folder '%1'").arg(info.absolutePath());
    return false;
  }
  QFile file(filePath);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    error = QStringLiteral("Cannot write '%1': %2").arg(filePath, file.errorString());
    return false;
  }
  const QByteArray bytes = paths.stopPath.toUtf8() + "\r\n" + paths.graphVisPath.toUtf8() + "\r\n";
  if (file.write(bytes) != bytes.size() || !file.flush()) {
    error = QStringLiteral("Cannot write '%1': %2").arg(filePath, file.errorString());
    return false;
  }
  return true;
}

QString DefaultStopListPath(const QString& programFolder, const QString& dataFolder) {
  const QString name = QStringLiteral("/common_words.txt");
  if (!FileExists(programFolder + name) && !dataFolder.isEmpty() && FileExists(dataFolder + name)) {
    return dataFolder + name;
  }
  return programFolder + name;
}

QString DefaultGraphvizFolder(const QString& programFolder, const QString& searchPath) {
  for (QString folder : searchPath.split(u':', Qt::SkipEmptyParts)) {
    while (folder.size() > 1 && folder.endsWith(u'/')) folder.chop(1);
    if (FileExists(folder + u'/' + kLayoutProgram)) return folder;
  }
  return programFolder + QStringLiteral("/bin");
}

bool FileExists(const QString& path) { return sylvora::FileExists(path.toStdString()); }

}  // namespace sylvora::app
