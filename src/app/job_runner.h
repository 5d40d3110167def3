#pragma once
// Runs one long session step at a time (load, short-link expansion, indexing) on a worker
// thread, shows its progress in a progress bar with a stage label and a Cancel button, and
// calls the step's completion on the user-interface thread.
//
// The progress callback handed to the step is cheap to call from a tight loop: within a stage it
// posts at most one pending update to the user-interface thread and no more than one per
// kMinUpdateInterval (about 30 a second); a change of stage text is always posted, so that no
// stage is skipped, the last stage's text is shown and updates arrive in order. It returns
// false once Cancel was pressed (or Cancel() called). While a job runs, the caller must not
// touch the objects that the job works on; it gets them back in `done`.

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include <QObject>
#include <QString>

#include "common/progress.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QThread;

namespace sylvora::app {

class JobRunner final : public QObject {
  Q_OBJECT

 public:
  // The shortest time between two updates of one stage.
  static constexpr std::chrono::milliseconds kMinUpdateInterval{33};

  using Work = std::function<void(const ProgressCallback& progress)>;
  // Called on the user-interface thread when the work has returned; `cancelled` tells whether
  // Cancel was asked for while it ran.
  using Done = std::function<void(bool cancelled)>;

  // The widgets are shown while a job runs and hidden otherwise; any of them may be null.
  JobRunner(QProgressBar* bar, QLabel* stage, QPushButton* cancel, QObject* parent = nullptr);
  // Cancels a running job and waits for it, keeping events running meanwhile.
  ~JobRunner() override;

  // Starts `work` unless a job is running (then false and nothing happens).
  bool Start(const QString& name, Work work, Done done);
  bool Busy() const { return thread_ != nullptr; }
  QString JobName() const { return name_; }

  // Asks the running job to stop at its next progress call.
  void Cancel();
  // True once Cancel was asked for during the current job (readable from the job's thread).
  bool CancelRequested() const { return cancelRequested_.load(); }
  // Runs `task` on the user-interface thread soon (for text that a job wants shown).
  void Post(std::function<void()> task);
  // Blocks (with events running) until no job runs; for the screenshot mode and tests.
  void WaitForIdle();

  // The clock that spaces the updates of a stage (steady_clock unless replaced, as tests do to
  // count updates without depending on the machine's speed); set it while no job runs.
  using Clock = std::function<std::chrono::steady_clock::time_point()>;
  void SetClock(Clock clock) { clock_ = std::move(clock); }

 signals:
  void started(const QString& name);
  // Every stage change and a sample of the counts within a stage.
  void progressed(const QString& stage, qint64 done, qint64 total);
  void finished(const QString& name, bool cancelled);

 private:
  bool Report(std::string_view stage, std::int64_t done, std::int64_t total);
  void Finish();

  QProgressBar* bar_;
  QLabel* stage_;
  QPushButton* cancel_;
  QThread* thread_ = nullptr;
  QString name_;
  Done done_;
  std::atomic<bool> cancelRequested_{false};

  // The worker's last stage and whether an update of it is still on its way.
  std::mutex mutex_;
  std::string lastStage_;
  bool updatePosted_ = false;
  std::chrono::steady_clock::time_point lastPost_{};
  Clock clock_ = [] { return std::chrono::steady_clock::now(); };
};

}  // namespace sylvora::app
