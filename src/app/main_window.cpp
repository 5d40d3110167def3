#include "app/main_window.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTabWidget>

#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/platform.h"
#include "app/time_line_explorer_page.h"
#include "app/time_line_links.h"
#include "app/ui_notifier.h"
#include "common/data_files.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

StartupEnvironment StartupEnvironment::FromProcess(const QString& commandLine) {
  return ForProgram(QCoreApplication::applicationDirPath(), commandLine);
}

StartupEnvironment StartupEnvironment::ForProgram(const QString& programFolder,
                                                  const QString& commandLine) {
  StartupEnvironment environment;
  environment.configFolder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
  environment.programFolder = programFolder;
  // The installed stop list (or, from a build folder, the source tree's).
  const std::string stopList = FindDataFile("common_words.txt", programFolder.toStdString());
  if (!stopList.empty()) {
    environment.dataFolder = QFileInfo(QString::fromStdString(stopList)).absolutePath();
  }
  environment.searchPath = qEnvironmentVariable("PATH");
  environment.commandLine = commandLine;
  return environment;
}

bool LooksLikeRadianExport(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return false;
  const QByteArray firstLine = file.readLine(1 << 16);
  return firstLine.count('\t') + 1 >= kRadianColumns;
}

QString BaseCaption() { return u"Sylvora v"_s + QStringLiteral(SYLVORA_VERSION); }

Main::Main(Platform& platform, StartupEnvironment environment, QWidget* parent)
    : QMainWindow(parent),
      platform_(platform),
      environment_(std::move(environment)),
      session_(std::make_unique<Session>()) {
  setObjectName(u"Main"_s);
  notifier_ = new UiNotifier(platform_, this);

  progressBar_ = new QProgressBar;
  progressBar_->setObjectName(u"JobProgress"_s);
  progressBar_->setMaximumWidth(260);
  progressBar_->setTextVisible(false);
  jobStage_ = new QLabel;
  jobStage_->setObjectName(u"JobStage"_s);
  cancelJob_ = new QPushButton(u"Cancel"_s);
  cancelJob_->setObjectName(u"CancelJob"_s);
  statusBar()->addWidget(jobStage_, 1);
  statusBar()->addPermanentWidget(progressBar_);
  statusBar()->addPermanentWidget(cancelJob_);
  jobs_ = new JobRunner(progressBar_, jobStage_, cancelJob_, this);
  // A note of the last step gives way to the stage of the next job.
  connect(jobs_, &JobRunner::started, statusBar(), &QStatusBar::clearMessage);

  tabs_ = new QTabWidget;
  tabs_->setObjectName(u"MainTabs"_s);
  loadIndexPage_ = new LoadIndexPage(PageServices{platform_, *notifier_, *jobs_, *session_});
  tabs_->addTab(loadIndexPage_, u"Load and Index"_s);
  timeLinePage_ = new TimeLineExplorerPage(PageServices{platform_, *notifier_, *jobs_, *session_});
  tabs_->addTab(timeLinePage_, u"Time Line Explorer"_s);
  timeLinePage_->InstallMenus(menuBar());
  timeLineLinks_ = new TimeLineLinks(*loadIndexPage_, *timeLinePage_, *session_, platform_, this);
  setCentralWidget(tabs_);
  connect(loadIndexPage_, &LoadIndexPage::captionChanged, this, &QWidget::setWindowTitle);
  ComposeClusterExplorer();
  timeLineLinks_->LinkClusterExplorer(*clusterPage_);
  resize(1280, 800);
}

Main::~Main() {
  // The job may still use the session and the notifier: stop it before they go.
  delete jobs_;
  jobs_ = nullptr;
}

int Main::AddPage(QWidget* page, const QString& title) { return tabs_->addTab(page, title); }

void Main::ReadSettings() {
  settingsFile_ = SettingsFilePath(environment_.configFolder);
  PathSettings paths;
  if (const auto saved = ReadPathSettings(settingsFile_)) {
    paths = *saved;
  } else {
    paths.stopPath = DefaultStopListPath(environment_.programFolder, environment_.dataFolder);
    paths.graphVisPath = DefaultGraphvizFolder(environment_.programFolder, environment_.searchPath);
  }
  loadIndexPage_->SetPaths(paths);
  if (!FileExists(paths.graphVisPath + u'/' + kLayoutProgram)) {
    platform_.ShowMessage(kGraphvizWarning, kProgramTitle, MessageIcon::kNone);
  }
  if (!FileExists(paths.stopPath)) {
    platform_.ShowMessage(kStopListWarning, kProgramTitle, MessageIcon::kNone);
  }
  // The link expansion service is the one setting beyond the two paths.
  const QSettings ini(environment_.configFolder + u"/sylvora.ini"_s, QSettings::IniFormat);
  shortUrlService_ = ini.value(u"ShortLinks/service"_s).toString().trimmed();
  loadIndexPage_->SetShortUrlService(shortUrlService_);
}

void Main::Start() {
  ReadSettings();
  loadIndexPage_->SetSettingsFile(settingsFile_);
  loadIndexPage_->SetBaseCaption(BaseCaption());
  setWindowTitle(BaseCaption());

  const QString& commandLine = environment_.commandLine;
  if (commandLine.isEmpty()) {
    emit startupFinished();
    return;
  }
  loadIndexPage_->SetCorpusPath(commandLine);
  // Nobody can untick "Radian 6 data?" before this load, so the box follows the file.
  loadIndexPage_->SetRadian(LooksLikeRadianExport(commandLine));
  loadIndexPage_->SetDialogFileName(commandLine);
  // Success is a note in the status bar; a failed load has said why in its own box.
  const auto announce = [this, commandLine](bool loaded) {
    if (loaded) {
      statusBar()->showMessage(
          u"'"_s + commandLine +
          u"' was successfully loaded. Click 'Create Tweet Indexes' to proceed"_s);
    }
    emit startupFinished();
  };
  if (loadIndexPage_->LoadCorpus_Click()) {
    connect(loadIndexPage_, &LoadIndexPage::corpusLoaded, this, announce, Qt::SingleShotConnection);
  } else {
    announce(false);
  }
}

void Main::closeEvent(QCloseEvent* event) {
  if (jobs_ != nullptr) jobs_->Cancel();
  event->accept();
  QCoreApplication::quit();
}

}  // namespace sylvora::app
