#pragma once
// The settings file "paths": two lines, each ended by CR LF: the full path of the stop-word
// list and the folder of the Graphviz programs (no trailing "/"). It lives in the per-user
// configuration folder (QStandardPaths::AppConfigLocation), where it is both read and saved.
//
// A file shorter than two lines leaves the missing paths empty; bytes that are no text are
// read as UTF-8 with replacement characters and control characters dropped, so that a damaged
// file gives paths that fail the existence checks (and warn) instead of stopping the start.

#include <optional>

#include <QString>

namespace sylvora::app {

struct PathSettings {
  QString stopPath;      // "Stop List"
  QString graphVisPath;  // "GraphViz"
};

// The warnings of every start, shown when the paths do not name what they should.
inline const QString kGraphvizWarning = QStringLiteral(
    "File path to Graphviz bin folder may be wrong. Please check that Graphviz is installed and "
    "set the correct path before continuing");
inline const QString kStopListWarning =
    QStringLiteral("File path to common_words.txt is wrong. Please correct it before continuing");

// The name of the Graphviz layout program that the folder must hold.
inline const QString kLayoutProgram = QStringLiteral("sfdp");

// `folder` + "/paths".
QString SettingsFilePath(const QString& folder);

// The two paths of the file, or nullopt when there is no such file (or it cannot be read).
std::optional<PathSettings> ReadPathSettings(const QString& filePath);

// Creates or replaces the file (and its folder) with exactly two CR LF lines. False, with
// `error` naming the file and the reason, when it cannot be written.
bool SavePathSettings(const QString& filePath, const PathSettings& paths, QString& error);

// The defaults when there is no settings file: the stop list shipped beside the program (when
// there is none, the one in `dataFolder`, where a program in a build folder finds it; when
// neither exists, the path beside the program, which then warns), and the folder of the first
// "sfdp" on `searchPath` (the PATH variable, ":"-separated), else the program's folder +
// "/bin".
QString DefaultStopListPath(const QString& programFolder, const QString& dataFolder = {});
QString DefaultGraphvizFolder(const QString& programFolder, const QString& searchPath);

// The file test of the window: an existing entry that is not a folder.
bool FileExists(const QString& path);

}  // namespace sylvora::app
