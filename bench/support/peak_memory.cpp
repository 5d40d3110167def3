#include "support/peak_memory.h"

#include <sys/resource.h>

#include <fstream>

namespace sylvora::bench {

std::int64_t PeakResidentBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::int64_t>(usage.ru_maxrss) * 1024;  // Linux reports kilobytes
}

std::int64_t StatusBytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind(key + ":", 0) == 0) return std::stoll(line.substr(key.size() + 1)) * 1024;
  }
  return 0;
}

void ResetResidentPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

}  // namespace sylvora::bench
