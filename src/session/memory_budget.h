#pragma once
// The memory budget of the model and map builds: a build whose estimated memory passes it is
// refused before it starts, with a message that names its size and an interval length that
// fits, instead of growing until the system kills the program.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "sparse/number_format.h"

namespace sylvora {

inline constexpr std::int64_t kDefaultMemoryBudgetBytes = std::int64_t{2} << 30;

// Estimated bytes a built interval costs in the five interval models, the similarity model
// and the per-interval rows of the time line (measured: about 870 bytes, rounded up).
inline constexpr std::int64_t kBytesPerInterval = 1024;
// Estimated bytes of one pair of intervals in the symmetric similarity model: two cells of
// 8 bytes and the growth room of their columns.
inline constexpr std::int64_t kBytesPerSimilarPair = 32;

// "1,234 MB" style figure for messages (whole megabytes, at least 1).
inline std::string Megabytes(std::int64_t bytes) {
  const std::int64_t mb = std::max<std::int64_t>(1, (bytes + (1 << 20) - 1) >> 20);
  return GroupedWholeNumber(mb) + " MB";
}

// A length at least `length` times the factor by which `bytes` passes `budget`, raised to
// `power` (1 for costs linear in the interval count, 0.5 for costs in its square), so that
// the same corpus at the new length fits.
inline std::int64_t LengthThatFits(std::int64_t length, std::int64_t bytes, std::int64_t budget,
                                   double power) {
  const double factor = std::pow(static_cast<double>(bytes) / static_cast<double>(budget), power);
  return std::max<std::int64_t>(length + 1,
                                static_cast<std::int64_t>(std::ceil(length * factor * 1.05)));
}

}  // namespace sylvora
