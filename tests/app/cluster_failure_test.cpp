// The cluster explorer when Graphviz fails: missing, too slow (a stand-in that sleeps past the
// time limit), failing after a good build; and the tweet maps of intervals with one tweet or
// none. The interval map says so in a box; the word and tweet maps keep what they showed and
// say why on their status line only; the window stays responsive throughout.
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "app/cluster_explorer_page.h"
#include "app/cluster_map_panel.h"
#include "app/job_runner.h"
#include "cluster_test_support.h"
#include "session/interval_models.h"
#include "support/qt_test_main.h"

using namespace sylvora;
using namespace sylvora::testing;
using app::ClusterExplorerPage;

namespace {

const QString kIntervalFailure = QString::fromLatin1(
    kIntervalMapFailure.data(), static_cast<qsizetype>(kIntervalMapFailure.size()));

}  // namespace

class ClusterFailureTest : public QObject {
  Q_OBJECT

 private slots:
  void MissingGraphvizShowsTheIntervalMessageOnly() {
    WindowFixture f;
    QVERIFY(PrepareSampleModels(f, f.Folder() + QStringLiteral("/no-such-folder")));
    ClusterExplorerPage& page = f.Window().ClusterExplorer();
    QSignalSpy finished(&page, &ClusterExplorerPage::mapFinished);
    QVERIFY(VisitClusterExplorer(f));
    QCOMPARE(finished.size(), 2);
    QCOMPARE(f.platform.Texts(), QStringList{kIntervalFailure});
    QVERIFY(!page.Map(MapKind::kWords).IsSet() && !page.Map(MapKind::kIntervals).IsSet());
    QVERIFY2(page.Panel(MapKind::kWords).Status().contains(QStringLiteral("no-such-folder")),
             qPrintable(page.Panel(MapKind::kWords).Status()));
    // The flags were cleared: a second visit does not try again until the next model build.
    QVERIFY(VisitClusterExplorer(f));
    QCOMPARE(finished.size(), 2);
  }

  void ALayoutPastTheTimeLimitIsStoppedWhileTheWindowStaysLive() {
    WindowFixture f;
    const QString standIn = f.Folder() + QStringLiteral("/slow-graphviz");
    QVERIFY(WriteStandInSfdp(standIn, "sleep 30"));
    QVERIFY(PrepareSampleModels(f, standIn));
    ClusterExplorerPage& page = f.Window().ClusterExplorer();
    page.SetLayoutTimeLimit(300);
    // Timer events are handled while a layout runs: the window does not wait for it.
    int ticksWhileBuilding = 0;
    QTimer ticker;
    ticker.setInterval(10);
    QObject::connect(&ticker, &QTimer::timeout, [&] { ticksWhileBuilding += page.Building(); });
    ticker.start();
    QVERIFY(VisitClusterExplorer(f, 60000));
    ticker.stop();
    QVERIFY(ticksWhileBuilding > 0);
    QCOMPARE(f.platform.Texts(), QStringList{kIntervalFailure});
    QVERIFY2(page.Panel(MapKind::kWords).Status().contains(QStringLiteral("took longer than")),
             qPrintable(page.Panel(MapKind::kWords).Status()));
  }

  void AFailedRebuildKeepsTheEarlierMapsSilently() {
    if (RealGraphvizFolder().isEmpty()) QSKIP("Graphviz (sfdp) is not installed");
    WindowFixture f;
    QVERIFY(PrepareSampleModels(f, RealGraphvizFolder()));
    ClusterExplorerPage& page = f.Window().ClusterExplorer();
    QVERIFY(VisitClusterExplorer(f));
    const ClusterMap* words = page.Panel(MapKind::kWords).Data();
    const int wordNodes = page.Map(MapKind::kWords).NodeCount();
    // Graphviz now fails at once.
    const QString broken = f.Folder() + QStringLiteral("/broken-graphviz");
    QVERIFY(WriteStandInSfdp(broken, "exit 3"));
    app::PathSettings paths = f.Page().Paths();
    paths.graphVisPath = broken;
    f.Page().SetPaths(paths);

    QSignalSpy finished(&page, &ClusterExplorerPage::mapFinished);
    page.FeatureType_Click(1);
    QVERIFY(WaitClusterIdle(f));
    QVERIFY(!finished.value(0).value(1).toBool());
    QCOMPARE(page.Panel(MapKind::kWords).Data(), words);
    QCOMPARE(page.Map(MapKind::kWords).NodeCount(), wordNodes);
    QCOMPARE(page.Level(), WordMapLevel::kTweet);
    QVERIFY(page.Panel(MapKind::kWords)
                .Status()
                .endsWith(QStringLiteral("(the map shows its earlier layout)")));
    page.ISVis_OnNodeClick(0);
    QVERIFY(WaitClusterIdle(f));
    QVERIFY(!finished.value(1).value(1).toBool());
    QVERIFY(!page.Panel(MapKind::kTweets).Status().isEmpty());
    QVERIFY(f.platform.boxes.isEmpty());
    // The interval map's surface is live again after the tweet map's attempt.
    QVERIFY(page.Panel(MapKind::kIntervals).Surface()->isEnabled());
  }

  void IntervalsWithOneTweetOrNoneGiveNoTweetMap() {
    WindowFixture f;
    QVERIFY(PrepareSampleModels(f, RealGraphvizFolder()));
    // One-hour intervals: some hold one tweet or none.
    Session& session = f.Window().CurrentSession();
    ModelOptions options;
    options.intervalLength = "1";
    SilentNotifier silent;
    QVERIFY(BuildModels(session, options, silent).built);
    int empty = 0;
    int single = 0;
    for (int k = 1; k <= session.WordModel().IntervalCount(); ++k) {
      const int count = session.WordModel().IntervalDocCount(k);
      if (count == 0 && empty == 0) empty = k;
      if (count == 1 && single == 0) single = k;
    }
    ClusterExplorerPage& page = f.Window().ClusterExplorer();
    QSignalSpy finished(&page, &ClusterExplorerPage::mapFinished);
    for (const int k : {empty, single}) {
      if (k == 0) continue;
      page.ISVis_OnNodeClick(k - 1);
      QVERIFY(WaitClusterIdle(f));
      QVERIFY(!finished.last()[1].toBool());
      const QString status = page.Panel(MapKind::kTweets).Status();
      QVERIFY2(status.contains(k == empty ? QStringLiteral("no tweets") : QStringLiteral("has 1")),
               qPrintable(status));
    }
    QVERIFY2(empty > 0 || single > 0, "the sample has no sparse hour");
    QVERIFY(f.platform.boxes.isEmpty());
    // Out of range: nothing happens.
    const qsizetype before = finished.size();
    page.ISVis_OnNodeClick(-1);
    page.ISVis_OnNodeClick(session.WordModel().IntervalCount());
    QVERIFY(WaitClusterIdle(f));
    QCOMPARE(finished.size(), before);
  }
};

SYLVORA_QT_TEST_MAIN(ClusterFailureTest)
#include "cluster_failure_test.moc"
