#include "common/parallel.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <thread>
#include <utility>

namespace sylvora {

std::size_t WorkerCount() {
  if (const char* forced = std::getenv("SYLVORA_THREADS")) {
    const long value = std::strtol(forced, nullptr, 10);
    if (value >= 1 && value <= 64) return static_cast<std::size_t>(value);
  }
  const unsigned hardware = std::thread::hardware_concurrency();
  return std::clamp<std::size_t>(hardware, 1, 8);
}

std::vector<std::size_t> SplitRange(std::size_t count, std::size_t parts,
                                    std::size_t minimumPerPart) {
  const std::size_t most =
      std::max<std::size_t>(1, count / std::max<std::size_t>(1, minimumPerPart));
  parts = std::clamp<std::size_t>(parts, 1, most);
  std::vector<std::size_t> bounds(parts + 1);
  for (std::size_t p = 0; p <= parts; ++p)
    bounds[p] = count / parts * p + std::min(p, count % parts);
  return bounds;
}

void RunRanges(const std::vector<std::size_t>& bounds,
               const std::function<void(std::size_t, std::size_t, std::size_t)>& body) {
  const std::size_t parts = bounds.size() < 2 ? 0 : bounds.size() - 1;
  std::vector<std::exception_ptr> failures(parts);
  const auto run = [&](std::size_t part) {
    try {
      body(part, bounds[part], bounds[part + 1]);
    } catch (...) {
      failures[part] = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> threads;
    threads.reserve(parts);
    for (std::size_t part = 1; part < parts; ++part) threads.emplace_back(run, part);
    if (parts > 0) run(0);
  }  // the threads join here
  for (const auto& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
}

SharedProgress::SharedProgress(const ProgressCallback& callback, std::string stage,
                               std::int64_t total, std::int64_t interval)
    : callback_(callback),
      stage_(std::move(stage)),
      total_(total),
      interval_(std::max<std::int64_t>(interval, 1)),
      nextReport_(interval_) {}

bool SharedProgress::Counter::Flush() {
  const std::int64_t done = shared_.done_.fetch_add(pending_, std::memory_order_relaxed) + pending_;
  pending_ = 0;
  if (owner_ && done >= shared_.nextReport_) return shared_.Report();
  return !shared_.Cancelled();
}

bool SharedProgress::Report() {
  const std::int64_t done = done_.load(std::memory_order_relaxed);
  nextReport_ = done + interval_;
  if (!Cancelled() && callback_ && !callback_(stage_, done, total_)) {
    cancelled_.store(true, std::memory_order_relaxed);
  }
  return !Cancelled();
}

bool SharedProgress::CatchUp() {
  if (done_.load(std::memory_order_relaxed) >= nextReport_) return Report();
  return !Cancelled();
}

}  // namespace sylvora
