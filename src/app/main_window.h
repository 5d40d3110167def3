#pragma once
// The main window `Main`: a tab control whose pages are one class each (the "Load and Index"
// page here; the time line explorer and the cluster explorer join through AddPage), the
// progress bar and Cancel button of the job runner, and the start-up sequence (Start):
//   1-2. the paths from the settings file "paths", else their defaults;
//   3-4. the Graphviz and stop-list warnings, on every start;
//   5-6. the controls' initial state; the settings file to save to;
//   7.   a corpus named on the command line is loaded, then its message is shown ("Radian 6
//        data?" is set from the file's first line first, as no one could change it before);
//   8.   the caption "Sylvora v" + the CMake project version.
// The window owns the session, the job runner and the notifier; the platform is borrowed.

#include <memory>

#include <QMainWindow>

#include "app/path_settings.h"
#include "session/session.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QTabWidget;

namespace sylvora::app {

class ClusterExplorerPage;
class JobRunner;
class LoadIndexPage;
class RelatedTerms;
class TimeLineExplorerPage;
class TimeLineLinks;
class Platform;
class UiNotifier;

// What the start-up reads from the world, gathered in one place so that tests can set it.
struct StartupEnvironment {
  QString configFolder;   // holds "paths" and "sylvora.ini"
  QString programFolder;  // the folder of the executable
  QString dataFolder;     // where the shipped stop list is when it is not beside the program
  QString searchPath;     // the PATH variable
  QString commandLine;    // the corpus named on the command line, or empty

  // The environment of this process: QStandardPaths::AppConfigLocation, the application's
  // folder, the shipped files found from it and PATH.
  static StartupEnvironment FromProcess(const QString& commandLine);
  // The same for a program in `programFolder`.
  static StartupEnvironment ForProgram(const QString& programFolder, const QString& commandLine);
};

// A Radian 6 export has at least this many columns.
inline constexpr int kRadianColumns = 22;
// True when the first line of the file has at least kRadianColumns tab-separated columns.
bool LooksLikeRadianExport(const QString& path);

// "Sylvora v" + major.minor.patch of the project.
QString BaseCaption();

class Main final : public QMainWindow {
  Q_OBJECT

 public:
  Main(Platform& platform, StartupEnvironment environment, QWidget* parent = nullptr);
  ~Main() override;

  // Form_Load: the start-up sequence above. The command-line load runs as a job; its message
  // follows when the job ends (startupFinished comes after it).
  void Start();

  // Adds a later tab page (time line explorer, cluster explorer).
  int AddPage(QWidget* page, const QString& title);

  LoadIndexPage& LoadIndex() { return *loadIndexPage_; }
  ClusterExplorerPage& ClusterExplorer() { return *clusterPage_; }
  RelatedTerms& RelatedWords() { return *relatedTerms_; }
  TimeLineExplorerPage& TimeLine() { return *timeLinePage_; }
  JobRunner& Jobs() { return *jobs_; }
  Session& CurrentSession() { return *session_; }
  QTabWidget& Tabs() { return *tabs_; }
  const QString& SettingsFile() const { return settingsFile_; }
  const QString& ShortUrlService() const { return shortUrlService_; }

 signals:
  void startupFinished();

 private:
  void ReadSettings();
  // The cluster explorer tab and the "Related Words" window with their links
  // (main_window_clusters.cpp).
  void ComposeClusterExplorer();
  void closeEvent(QCloseEvent* event) override;

  Platform& platform_;
  StartupEnvironment environment_;
  QString settingsFile_;
  QString shortUrlService_;
  std::unique_ptr<Session> session_;
  UiNotifier* notifier_ = nullptr;
  JobRunner* jobs_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  LoadIndexPage* loadIndexPage_ = nullptr;
  ClusterExplorerPage* clusterPage_ = nullptr;
  RelatedTerms* relatedTerms_ = nullptr;
  TimeLineExplorerPage* timeLinePage_ = nullptr;
  TimeLineLinks* timeLineLinks_ = nullptr;
  QProgressBar* progressBar_ = nullptr;
  QLabel* jobStage_ = nullptr;
  QPushButton* cancelJob_ = nullptr;
};

}  // namespace sylvora::app
