#pragma once
// Progress and cancellation for long loops. A long loop calls a progress callback every few
// thousand steps; the application maps it onto a progress bar with a Cancel button and runs
// the loop on a worker thread. The core never calls Qt.
//
// A callback is passed into each long call, never reached through a global.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace sylvora {

// Called with the stage text, the steps done and the steps in all (0 when unknown).
// Returns false to ask the work to stop.
using ProgressCallback =
    std::function<bool(std::string_view stage, std::int64_t done, std::int64_t total)>;

// Throttles a callback for tight loops: Step() is cheap and reports at most once every
// `interval` steps (and at the end). Once the callback has answered false, Cancelled() stays
// true and Step() keeps returning false.
class ProgressReporter {
 public:
  ProgressReporter(const ProgressCallback& callback, std::string stage, std::int64_t total,
                   std::int64_t interval = 4096);

  // Counts one step; returns false when the work should stop.
  bool Step() {
    if (++done_ < next_) return !cancelled_;
    return Report();
  }

  // Reports the current count now (for example at the end of a stage).
  bool Report();

  bool Cancelled() const { return cancelled_; }
  std::int64_t Done() const { return done_; }

 private:
  const ProgressCallback& callback_;
  std::string stage_;
  std::int64_t total_;
  std::int64_t interval_;
  std::int64_t done_ = 0;
  std::int64_t next_;
  bool cancelled_ = false;
};

}  // namespace sylvora
