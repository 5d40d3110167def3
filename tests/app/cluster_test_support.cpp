#include "cluster_test_support.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTest>

#include "app/cluster_explorer_page.h"
#include "app/job_runner.h"
#include "common/notifier.h"
#include "session/interval_models.h"

namespace sylvora::testing {

QString RealGraphvizFolder() {
  const QString sfdp = QStandardPaths::findExecutable(QStringLiteral("sfdp"));
  return sfdp.isEmpty() ? QString() : QFileInfo(sfdp).absolutePath();
}

bool PrepareSampleModels(WindowFixture& f, const QString& graphvizFolder) {
  app::PathSettings paths = f.Page().Paths();
  paths.graphVisPath = graphvizFolder;
  f.Page().SetPaths(paths);
  if (!f.Load(DataFile(QStringLiteral("sample_twitter11.txt")))) return false;
  if (!f.Index()) return false;
  Session& session = f.Window().CurrentSession();
  if (!session.Indexed()) return false;
  ModelOptions options;
  options.intervalLength = "24";
  SilentNotifier silent;
  const ModelReport report = BuildModels(session, options, silent);
  if (!report.built) return false;
  // The load's notes (short links without a service) are not the maps' business.
  f.platform.boxes.clear();
  f.Window().ClusterExplorer().ModelsRebuilt();
  return true;
}

bool WaitClusterIdle(WindowFixture& f, int timeoutMs) {
  QElapsedTimer timer;
  timer.start();
  while (f.Window().Jobs().Busy() || f.Window().ClusterExplorer().Building()) {
    if (timer.elapsed() > timeoutMs) return false;
    QTest::qWait(10);
  }
  return true;
}

bool VisitClusterExplorer(WindowFixture& f, int timeoutMs) {
  QTabWidget& tabs = f.Window().Tabs();
  app::ClusterExplorerPage& page = f.Window().ClusterExplorer();
  if (tabs.currentWidget() == &page) {
    page.PageShown();
  } else {
    tabs.setCurrentWidget(&page);
  }
  return WaitClusterIdle(f, timeoutMs);
}

bool WriteStandInSfdp(const QString& folder, const QByteArray& body) {
  QDir().mkpath(folder);
  QFile script(folder + QStringLiteral("/sfdp"));
  if (!script.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
  script.write("#!/bin/sh\n" + body + "\n");
  script.close();
  return script.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                               QFileDevice::ExeOwner);
}

}  // namespace sylvora::testing
