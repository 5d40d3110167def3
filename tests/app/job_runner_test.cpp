// The job runner: one job at a time, every stage delivered in order with the updates within a
// stage throttled, cancel, a wait that sleeps, and results on the user-interface thread.
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <time.h>

#include <atomic>

#include "app/job_runner.h"

using sylvora::ProgressCallback;
using sylvora::app::JobRunner;

namespace {

// Processor time of the calling thread so far.
double ThreadCpuMs() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

}  // namespace

class JobRunnerTest : public QObject {
  Q_OBJECT

 private slots:
  void RunsOnAWorkerAndFinishesOnTheUiThread() {
    JobRunner runner(nullptr, nullptr, nullptr);
    QThread* worker = nullptr;
    QThread* doneOn = nullptr;
    bool wasCancelled = true;
    QSignalSpy finished(&runner, &JobRunner::finished);
    QVERIFY(runner.Start(
        QStringLiteral("job"), [&](const ProgressCallback&) { worker = QThread::currentThread(); },
        [&](bool cancelled) {
          doneOn = QThread::currentThread();
          wasCancelled = cancelled;
        }));
    QVERIFY(runner.Busy());
    QVERIFY(finished.wait(10000));
    QVERIFY(!runner.Busy());
    QVERIFY(worker != nullptr && worker != QThread::currentThread());
    QCOMPARE(doneOn, QThread::currentThread());
    QVERIFY(!wasCancelled);
  }

  void OneJobAtATime() {
    JobRunner runner(nullptr, nullptr, nullptr);
    std::atomic<bool> release{false};
    QVERIFY(runner.Start(QStringLiteral("first"),
                         [&](const ProgressCallback&) {
                           while (!release) QThread::msleep(1);
                         },
                         {}));
    int secondRan = 0;
    QVERIFY(
        !runner.Start(QStringLiteral("second"), [&](const ProgressCallback&) { ++secondRan; }, {}));
    release = true;
    runner.WaitForIdle();
    QCOMPARE(secondRan, 0);
  }

  void EveryStageArrivesInOrder() {
    JobRunner runner(nullptr, nullptr, nullptr);
    QStringList stages;
    connect(&runner, &JobRunner::progressed, this, [&](const QString& stage, qint64, qint64) {
      if (stages.isEmpty() || stages.last() != stage) stages.push_back(stage);
    });
    runner.Start(QStringLiteral("job"),
                 [](const ProgressCallback& progress) {
                   for (const char* stage : {"a", "b", "c", "d"}) {
                     for (int i = 0; i < 10000; ++i) progress(stage, i, 10000);
                   }
                 },
                 {});
    runner.WaitForIdle();
    QCOMPARE(stages, (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                  QStringLiteral("d")}));
  }

  void UpdatesWithinAStageAreThrottledAndTheLastStageIsShown() {
    QLabel label;
    JobRunner runner(nullptr, &label, nullptr);
    int updatesOfA = 0;
    QStringList stages;
    connect(&runner, &JobRunner::progressed, this, [&](const QString& stage, qint64, qint64) {
      if (stage == QStringLiteral("a")) ++updatesOfA;
      if (stages.isEmpty() || stages.last() != stage) stages.push_back(stage);
    });
    QElapsedTimer elapsed;
    elapsed.start();
    qint64 calls = 0;
    runner.Start(QStringLiteral("job"),
                 [&](const ProgressCallback& progress) {
                   // A tight loop for a third of a second, then a last stage reported once.
                   QElapsedTimer spin;
                   spin.start();
                   while (spin.elapsed() < 330) progress("a", calls++, 0);
                   progress("b", 1, 1);
                 },
                 {});
    // Events keep flowing meanwhile, so that the pending update is taken at once.
    runner.WaitForIdle();
    const auto allowed = elapsed.elapsed() / JobRunner::kMinUpdateInterval.count() + 2;
    QVERIFY2(calls > 1000, qPrintable(QString::number(calls)));
    QVERIFY(updatesOfA >= 1);
    QVERIFY2(updatesOfA <= allowed,
             qPrintable(QStringLiteral("%1 updates, %2 allowed").arg(updatesOfA).arg(allowed)));
    QCOMPARE(stages, (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(label.text(), QStringLiteral("job: b"));
  }

  void WaitForIdleSleepsUntilTheEnd() {
    JobRunner runner(nullptr, nullptr, nullptr);
    runner.Start(QStringLiteral("job"), [](const ProgressCallback&) { QThread::msleep(300); }, {});
    const double before = ThreadCpuMs();
    runner.WaitForIdle();
    QVERIFY(!runner.Busy());
    // A polling wait would have spent about the job's 300 ms.
    QVERIFY2(ThreadCpuMs() - before < 100, qPrintable(QString::number(ThreadCpuMs() - before)));
  }

  void WaitForIdleWaitsForAJobStartedAtTheEnd() {
    JobRunner runner(nullptr, nullptr, nullptr);
    bool secondRan = false;
    runner.Start(
        QStringLiteral("first"), [](const ProgressCallback&) { QThread::msleep(50); },
        [&](bool) {
          runner.Start(QStringLiteral("second"),
                       [&](const ProgressCallback&) {
                         QThread::msleep(50);
                         secondRan = true;
                       },
                       {});
        });
    runner.WaitForIdle();
    QVERIFY(!runner.Busy());
    QVERIFY(secondRan);
  }

  void CancelReachesTheWork() {
    QProgressBar bar;
    QLabel stage;
    QPushButton cancel;
    JobRunner runner(&bar, &stage, &cancel);
    std::atomic<int> steps{0};
    bool doneCancelled = false;
    runner.Start(
        QStringLiteral("Loading"),
        [&](const ProgressCallback& progress) {
          while (progress("step", steps, 0)) {
            ++steps;
            QThread::msleep(1);
          }
        },
        [&](bool cancelled) { doneCancelled = cancelled; });
    QVERIFY(!bar.isHidden());
    QVERIFY(!cancel.isHidden());
    QTRY_VERIFY(steps > 3);
    QTest::mouseClick(&cancel, Qt::LeftButton);
    QVERIFY(runner.CancelRequested());
    runner.WaitForIdle();
    QVERIFY(doneCancelled);
    QVERIFY(bar.isHidden());
    QVERIFY(cancel.isHidden());
  }

  void PostRunsOnTheUiThread() {
    JobRunner runner(nullptr, nullptr, nullptr);
    QThread* ranOn = nullptr;
    runner.Start(
        QStringLiteral("job"),
        [&](const ProgressCallback&) { runner.Post([&] { ranOn = QThread::currentThread(); }); },
        {});
    runner.WaitForIdle();
    QTRY_COMPARE(ranOn, QThread::currentThread());
  }

  void DestroyingARunningRunnerStopsTheJob() {
    std::atomic<bool> stopped{false};
    {
      JobRunner runner(nullptr, nullptr, nullptr);
      runner.Start(QStringLiteral("job"),
                   [&](const ProgressCallback& progress) {
                     while (progress("spin", 0, 0)) QThread::msleep(1);
                     stopped = true;
                   },
                   {});
      QTest::qWait(20);
    }
    QVERIFY(stopped);
  }
};

QTEST_MAIN(JobRunnerTest)
#include "job_runner_test.moc"
