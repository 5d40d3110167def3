#include "common/progress.h"

#include <utility>

namespace sylvora {

ProgressReporter::ProgressReporter(const ProgressCallback& callback, std::string stage,
                                   std::int64_t total, std::int64_t interval)
    : callback_(callback),
      stage_(std::move(stage)),
      total_(total),
      interval_(interval > 0 ? interval : 1),
      next_(interval_) {}

bool ProgressReporter::Report() {
  next_ = done_ + interval_;
  if (!cancelled_ && callback_ && !callback_(stage_, done_, total_)) cancelled_ = true;
  return !cancelled_;
}

}  // namespace sylvora
