#pragma once
// Peak resident memory of this process, for benchmarks' state.counters.

#include <cstdint>
#include <string>

namespace sylvora::bench {

// The highest resident set size the process has reached, in bytes.
std::int64_t PeakResidentBytes();

// What /proc/self/status says of the process, in bytes: "VmRSS" (resident now) or "VmHWM"
// (the peak since the start or since ResetResidentPeak); 0 when the key is missing.
std::int64_t StatusBytes(const std::string& key);

// Lets VmHWM start again from the current resident size (Linux 4.0 and later), so that one
// benchmark's peak is measured apart from the set-up before it.
void ResetResidentPeak();

}  // namespace sylvora::bench
