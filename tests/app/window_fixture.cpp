#include "window_fixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include "app/job_runner.h"

namespace sylvora::testing {

QString DataFile(const QString& name) {
  return QString::fromStdString((SourceDir() / "data").string()) + u'/' + name;
}

QStringList Strings(const QList<QList<QVariant>>& spy) {
  QStringList texts;
  for (const auto& arguments : spy) texts.push_back(arguments.at(0).toString());
  return texts;
}

WindowFixture::WindowFixture(const WindowOptions& options)
    : folder_(QString::fromStdString(dir_.Path().string())) {
  QDir().mkpath(ConfigFolder());
  QDir().mkpath(ProgramFolder() + QStringLiteral("/bin"));
  if (options.stopListBesideProgram) {
    QFile::copy(DataFile(QStringLiteral("common_words.txt")),
                ProgramFolder() + QStringLiteral("/common_words.txt"));
  }
  if (options.sfdpInProgramBin) {
    QFile sfdp(ProgramFolder() + QStringLiteral("/bin/sfdp"));
    sfdp.open(QIODevice::WriteOnly);
  }
  if (options.settingsFile) {
    QFile paths(ConfigFolder() + QStringLiteral("/paths"));
    paths.open(QIODevice::WriteOnly);
    paths.write(*options.settingsFile);
  }
  if (!options.shortUrlService.isEmpty()) {
    QSettings ini(ConfigFolder() + QStringLiteral("/sylvora.ini"), QSettings::IniFormat);
    ini.setValue(QStringLiteral("ShortLinks/service"), options.shortUrlService);
  }
  app::StartupEnvironment environment;
  environment.configFolder = ConfigFolder();
  environment.programFolder = ProgramFolder();
  environment.searchPath = QString();
  environment.commandLine = options.commandLine;
  window_ = std::make_unique<app::Main>(platform, environment);
  QSignalSpy finished(window_.get(), &app::Main::startupFinished);
  window_->Start();
  if (finished.isEmpty()) finished.wait(120000);
}

WindowFixture::~WindowFixture() { window_.reset(); }

bool WindowFixture::WaitIdle(int timeoutMs) {
  QElapsedTimer timer;
  timer.start();
  while (window_->Jobs().Busy()) {
    if (timer.elapsed() > timeoutMs) return false;
    QTest::qWait(10);
  }
  return true;
}

bool WindowFixture::Load(const QString& path, bool radian) {
  Find<QLineEdit>(QStringLiteral("CorpusFilePath"))->setText(path);
  Find<QCheckBox>(QStringLiteral("Radian"))->setChecked(radian);
  if (!Page().LoadCorpus_Click()) return false;
  return WaitIdle();
}

bool WindowFixture::Index() {
  if (!Page().DoIndex_Click()) return false;
  return WaitIdle();
}

}  // namespace sylvora::testing
