#include "support/peak_memory.h"

#include <sys/resource.h>

namespace sylvora::bench {

std::int64_t PeakResidentBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::int64_t>(usage.ru_maxrss) * 1024;  // Linux reports kilobytes
}

}  // namespace sylvora::bench
