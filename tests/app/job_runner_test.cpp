// The job runner: one job at a time, every stage delivered in order with the updates within a
// stage throttled, cancel, and results on the user-interface thread.
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <chrono>

#include "app/job_runner.h"
#include "support/qt_test_main.h"

using sylvora::ProgressCallback;
using sylvora::app::JobRunner;

class JobRunnerTest : public QObject {
  Q_OBJECT

 private slots:
  void RunsOnAWorkerAndFinishesAndPostsOnTheUiThread() {
    JobRunner runner(nullptr, nullptr, nullptr);
    QThread* worker = nullptr;
    QThread* doneOn = nullptr;
    QThread* postedOn = nullptr;
    bool wasCancelled = true;
    QSignalSpy finished(&runner, &JobRunner::finished);
    QVERIFY(runner.Start(
        QStringLiteral("job"),
        [&](const ProgressCallback&) {
          worker = QThread::currentThread();
          runner.Post([&] { postedOn = QThread::currentThread(); });
        },
        [&](bool cancelled) {
          doneOn = QThread::currentThread();
          wasCancelled = cancelled;
        }));
    QVERIFY(runner.Busy());
    QVERIFY(finished.wait(10000));
    QVERIFY(worker != nullptr && worker != QThread::currentThread());
    QCOMPARE(doneOn, QThread::currentThread());
    QVERIFY(!wasCancelled);
    QTRY_COMPARE(postedOn, QThread::currentThread());  // Post too
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

  void UpdatesWithinAStageAreThrottledAndTheLastStageIsShown() {
    QLabel label;
    JobRunner runner(nullptr, &label, nullptr);
    // A clock that the work moves on by a millisecond a call: 10,000 calls over ten seconds.
    std::atomic<std::int64_t> nowMs{1'000'000};
    runner.SetClock([&] {
      return std::chrono::steady_clock::time_point(std::chrono::milliseconds(nowMs.load()));
    });
    int updatesOfA = 0;
    QStringList stages;
    connect(&runner, &JobRunner::progressed, this, [&](const QString& stage, qint64, qint64) {
      if (stage == QStringLiteral("a")) ++updatesOfA;
      if (stages.isEmpty() || stages.last() != stage) stages.push_back(stage);
    });
    runner.Start(QStringLiteral("job"),
                 [&](const ProgressCallback& progress) {
                   for (int i = 0; i < 10000; ++i, ++nowMs) progress("a", i, 0);
                   progress("b", 1, 1);
                 },
                 {});
    runner.WaitForIdle();
    const auto allowed = 10000 / JobRunner::kMinUpdateInterval.count() + 1;
    QVERIFY(updatesOfA >= 1);
    QVERIFY2(updatesOfA <= allowed,
             qPrintable(QStringLiteral("%1 updates, %2 allowed").arg(updatesOfA).arg(allowed)));
    QCOMPARE(stages, (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    QCOMPARE(label.text(), QStringLiteral("job: b"));

    // A clock that stands still lets one update of a stage through, however many calls, and
    // every change of stage, in order.
    updatesOfA = 0;
    stages.clear();
    runner.Start(QStringLiteral("job"),
                 [&](const ProgressCallback& progress) {
                   for (const char* stage : {"a", "b", "c", "d"}) {
                     for (int i = 0; i < 10000; ++i) progress(stage, i, 0);
                   }
                 },
                 {});
    runner.WaitForIdle();
    QCOMPARE(updatesOfA, 1);
    QCOMPARE(stages, (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                  QStringLiteral("d")}));
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
    QVERIFY(!bar.isHidden() && !cancel.isHidden());
    QTRY_VERIFY(steps > 3);
    QTest::mouseClick(&cancel, Qt::LeftButton);
    QVERIFY(runner.CancelRequested());
    runner.WaitForIdle();
    QVERIFY(doneCancelled && bar.isHidden() && cancel.isHidden());
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

SYLVORA_QT_TEST_MAIN(JobRunnerTest)
#include "job_runner_test.moc"
