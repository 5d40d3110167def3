#pragma once
// A main window for one test: its own configuration and program folders in a temporary
// folder, a recording platform, and helpers that drive the "Load and Index" page and wait for
// its jobs with events running.

#include <memory>
#include <optional>

#include <QCheckBox>
#include <QLineEdit>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "app/load_index_page.h"
#include "app/main_window.h"
#include "recording_platform.h"
#include "support/temp_dir.h"

namespace sylvora::testing {

struct WindowOptions {
  bool stopListBesideProgram = true;       // common_words.txt in the program folder
  bool sfdpInProgramBin = true;            // an "sfdp" in the program folder's bin/
  std::optional<QByteArray> settingsFile;  // the bytes of "paths", when there is one
  QString commandLine;
  QString shortUrlService;  // written to sylvora.ini when not empty
};

class WindowFixture {
 public:
  explicit WindowFixture(const WindowOptions& options = {});
  ~WindowFixture();

  app::Main& Window() { return *window_; }
  app::LoadIndexPage& Page() { return window_->LoadIndex(); }
  QString ConfigFolder() const { return folder_ + QStringLiteral("/config"); }
  QString ProgramFolder() const { return folder_ + QStringLiteral("/program"); }
  QString Folder() const { return folder_; }

  template <typename Widget>
  Widget* Find(const QString& name) {
    return window_->findChild<Widget*>(name);
  }

  // Waits until no job runs; false after the time limit.
  bool WaitIdle(int timeoutMs = 120000);
  // Loads `path` through the page's load button and waits; false when no job started.
  bool Load(const QString& path, bool radian = false);
  // Presses "Create Tweet Indexes" and waits; false when no job started.
  bool Index();

  RecordingPlatform platform;

 private:
  TempDir dir_;
  QString folder_;
  std::unique_ptr<app::Main> window_;
};

// A file of the repository's data folder.
QString DataFile(const QString& name);

// The first argument of every signal the spy caught, as text.
QStringList Strings(const QList<QList<QVariant>>& spy);

// The window's line edit of that name.
inline QLineEdit* Box(WindowFixture& f, const char* name) {
  return f.Find<QLineEdit>(QString::fromLatin1(name));
}

}  // namespace sylvora::testing
