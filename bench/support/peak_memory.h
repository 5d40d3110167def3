#pragma once
// Peak resident memory of this process, for benchmarks' state.counters.

#include <cstdint>

namespace sylvora::bench {

// The highest resident set size the process has reached, in bytes.
std::int64_t PeakResidentBytes();

}  // namespace sylvora::bench
