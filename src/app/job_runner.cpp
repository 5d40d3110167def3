#include "app/job_runner.h"

#include <algorithm>

#include <QCoreApplication>
#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>

namespace sylvora::app {
namespace {

void SetShown(QWidget* widget, bool shown) {
  if (widget != nullptr) widget->setVisible(shown);
}

}  // namespace

JobRunner::JobRunner(QProgressBar* bar, QLabel* stage, QPushButton* cancel, QObject* parent)
    : QObject(parent), bar_(bar), stage_(stage), cancel_(cancel) {
  if (cancel_ != nullptr) connect(cancel_, &QPushButton::clicked, this, &JobRunner::Cancel);
  connect(this, &JobRunner::progressed, this,
          [this](const QString& stage, qint64 done, qint64 total) {
            if (thread_ == nullptr) return;
            if (bar_ != nullptr) {
              constexpr int kSteps = 1000;
              if (total > 0) {
                bar_->setRange(0, kSteps);
                bar_->setValue(static_cast<int>(std::min<qint64>(done, total) * kSteps / total));
              } else {
                bar_->setRange(0, 0);  // a busy indicator while the count is unknown
              }
            }
            if (stage_ != nullptr && !cancelRequested_)
              stage_->setText(name_ + QStringLiteral(": ") + stage);
          });
  SetShown(bar_, false);
  SetShown(stage_, false);
  SetShown(cancel_, false);
}

JobRunner::~JobRunner() {
  if (thread_ == nullptr) return;
  cancelRequested_ = true;
  disconnect(thread_, nullptr, this, nullptr);
  // The worker may be waiting for an answer that only this thread's events can give.
  while (!thread_->wait(10)) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  delete thread_;
}

bool JobRunner::Start(const QString& name, Work work, Done done) {
  if (thread_ != nullptr) return false;
  name_ = name;
  done_ = std::move(done);
  cancelRequested_ = false;
  {
    const std::lock_guard lock(mutex_);
    lastStage_.clear();
    updatePosted_ = false;
    lastPost_ = {};
  }
  if (bar_ != nullptr) {
    bar_->setRange(0, 0);
    bar_->setValue(0);
  }
  if (stage_ != nullptr) stage_->setText(name);
  if (cancel_ != nullptr) cancel_->setEnabled(true);
  SetShown(bar_, true);
  SetShown(stage_, true);
  SetShown(cancel_, true);

  thread_ = QThread::create([this, work = std::move(work)] {
    const ProgressCallback progress = [this](std::string_view stage, std::int64_t done,
                                             std::int64_t total) {
      return Report(stage, done, total);
    };
    work(progress);
  });
  connect(thread_, &QThread::finished, this, &JobRunner::Finish, Qt::QueuedConnection);
  emit started(name);
  thread_->start();
  return true;
}

void JobRunner::Cancel() {
  if (thread_ == nullptr) return;
  cancelRequested_ = true;
  if (cancel_ != nullptr) cancel_->setEnabled(false);
  if (stage_ != nullptr) stage_->setText(name_ + QStringLiteral(": cancelling..."));
}

void JobRunner::Post(std::function<void()> task) {
  QMetaObject::invokeMethod(this, std::move(task), Qt::QueuedConnection);
}

void JobRunner::WaitForIdle() {
  // An event loop that sleeps until the job's end (processEvents with a time limit would poll
  // and take a core from the job); a job started by the end of the last one is waited for too.
  while (thread_ != nullptr) {
    QEventLoop loop;
    connect(this, &JobRunner::finished, &loop, &QEventLoop::quit);
    loop.exec();
  }
}

bool JobRunner::Report(std::string_view stage, std::int64_t done, std::int64_t total) {
  const auto now = clock_();
  const std::lock_guard lock(mutex_);
  const bool newStage = stage != lastStage_;
  if (newStage) lastStage_.assign(stage);
  // Each update carries its own snapshot, so updates arrive in the order they were made; within
  // a stage at most one is waiting at a time and one is sent per kMinUpdateInterval (the bar
  // cannot show more, and every update costs the user-interface thread a repaint), while a new
  // stage is always sent.
  if (newStage || (!updatePosted_ && now - lastPost_ >= kMinUpdateInterval)) {
    updatePosted_ = true;
    lastPost_ = now;
    const QString text = QString::fromUtf8(stage.data(), static_cast<qsizetype>(stage.size()));
    QMetaObject::invokeMethod(
        this,
        [this, text, done, total] {
          {
            const std::lock_guard lock(mutex_);
            updatePosted_ = false;
          }
          emit progressed(text, done, total);
        },
        Qt::QueuedConnection);
  }
  return !cancelRequested_.load();
}

void JobRunner::Finish() {
  if (thread_ == nullptr) return;
  thread_->wait();
  delete thread_;
  thread_ = nullptr;
  const bool cancelled = cancelRequested_.load();
  SetShown(bar_, false);
  SetShown(stage_, false);
  SetShown(cancel_, false);
  Done done = std::move(done_);
  done_ = nullptr;
  const QString name = name_;
  if (done) done(cancelled);
  emit finished(name, cancelled);
}

}  // namespace sylvora::app
