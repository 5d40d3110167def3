#pragma once
// Work split over the machine's cores by contiguous ranges of items (documents, records).
// Each range runs on its own thread; the calling thread takes the first range itself, so a
// one-range split costs no thread at all. Results are merged by the caller in range order,
// which keeps every outcome identical to a single pass.
//
// Progress: only the calling thread calls the progress callback (the application's callback
// is not meant for several threads); the other ranges count their items into a shared atomic
// and stop early once a cancel was seen.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/progress.h"

namespace sylvora {

// The threads a stage may use: the hardware threads, at least 1 and at most 8. The
// SYLVORA_THREADS environment variable (1..64) overrides it, for measurements.
std::size_t WorkerCount();

// Bounds of `count` items cut into at most `parts` ranges of nearly equal size, each of at
// least `minimumPerPart` items (one range when there are fewer): range p is
// [bounds[p], bounds[p + 1]). Always at least one range, possibly empty.
std::vector<std::size_t> SplitRange(std::size_t count, std::size_t parts,
                                    std::size_t minimumPerPart = 1);

// Runs body(part, begin, end) for every range of `bounds`, range 0 on the calling thread and
// each other on a thread of its own, and returns when all have ended. The first exception by
// range order is rethrown after every range ended.
void RunRanges(
    const std::vector<std::size_t>& bounds,
    const std::function<void(std::size_t part, std::size_t begin, std::size_t end)>& body);

// Progress of one stage shared by its ranges. Each range counts its items through its own
// Counter; range 0's counter reports the total done to the callback every `interval` of its
// items, and every counter sees a cancel at its next step.
class SharedProgress {
 public:
  SharedProgress(const ProgressCallback& callback, std::string stage, std::int64_t total,
                 std::int64_t interval = 4096);

  class Counter {
   public:
    Counter(SharedProgress& shared, std::size_t part) : shared_(shared), owner_(part == 0) {}
    ~Counter() { Flush(); }
    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;

    // Counts one item; false once the work should stop.
    bool Step() {
      if (++pending_ >= kBatch) return Flush();
      return !shared_.Cancelled();
    }
    // Hands the items counted so far to the shared total (and, in range 0, to the callback).
    bool Flush();

   private:
    static constexpr std::int64_t kBatch = 1024;
    SharedProgress& shared_;
    bool owner_;
    std::int64_t pending_ = 0;
  };

  // Reports the total now (calling thread only); false when cancelled.
  bool Report();
  // Once the ranges ended (calling thread only): reports the total when it passed a report
  // point that range 0 did not see because its own share ended first, so that a stage long
  // enough to be reported (and cancelled) in one pass still is. False when cancelled.
  bool CatchUp();
  bool Cancelled() const { return cancelled_.load(std::memory_order_relaxed); }

 private:
  const ProgressCallback& callback_;
  std::string stage_;
  std::int64_t total_;
  std::int64_t interval_;
  std::int64_t nextReport_;
  std::atomic<std::int64_t> done_{0};
  std::atomic<bool> cancelled_{false};
};

}  // namespace sylvora
