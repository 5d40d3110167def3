#include "sparse/sorting_helpers.h"

#include <algorithm>
#include <cstddef>

namespace sylvora {

namespace {

// The extremes start from these bounds, so the sentinel of a pick is never further out.
constexpr float kLowestStart = -100000000.0f;
constexpr float kHighestStart = 100000000.0f;

}  // namespace

std::vector<std::int32_t> SelectTopK(std::span<const float> values, std::int32_t exclude,
                                     std::int32_t& count, bool descending, std::uint8_t start) {
  const auto upperBound = static_cast<std::int64_t>(values.size()) - 1;
  const std::int64_t limit = upperBound + start - 1;
  if (count > limit) count = static_cast<std::int32_t>(limit);

  const std::int32_t slots = std::max<std::int32_t>(count, 0);
  std::vector<std::int32_t> picks(static_cast<std::size_t>(start) + slots, 0);
  if (slots == 0) return picks;

  float largest = kLowestStart;
  float smallest = kHighestStart;
  for (std::int64_t p = start; p <= upperBound; ++p) {
    const float v = values[static_cast<std::size_t>(p)];
    if (v > largest) largest = v;
    if (v < smallest) smallest = v;
  }
  const float sentinel = descending ? smallest - 1.0f : largest + 1.0f;

  std::vector<bool> taken(values.size(), false);
  std::int32_t candidate = -1;  // kept across slots: an empty scan repeats the previous pick
  for (std::int32_t slot = 0; slot < slots; ++slot) {
    float best = sentinel;
    for (std::int64_t p = start; p <= upperBound; ++p) {
      const auto at = static_cast<std::size_t>(p);
      if (p == exclude || taken[at]) continue;
      const float v = values[at];
      if (descending ? v > best : v < best) {
        best = v;
        candidate = static_cast<std::int32_t>(p);
      }
    }
    picks[static_cast<std::size_t>(start) + slot] = candidate;
    if (candidate >= 0) taken[static_cast<std::size_t>(candidate)] = true;
  }
  return picks;
}

void SortEdges(std::span<EdgeRecord> edges, bool descending, const ProgressCallback& progress) {
  const std::size_t n = edges.size();
  std::int64_t passes = 0;
  for (std::size_t gap = n / 2; gap > 0; gap /= 2) ++passes;
  ProgressReporter reporter(progress, "Sorting edges", passes, 1);

  // True when `earlier` must move up past `record` in the requested order.
  const auto comesAfter = [descending](const EdgeRecord& earlier, const EdgeRecord& record) {
    return descending ? earlier.Weight < record.Weight : earlier.Weight > record.Weight;
  };

  for (std::size_t gap = n / 2; gap > 0; gap /= 2) {
    for (std::size_t i = gap; i < n; ++i) {
      const EdgeRecord record = edges[i];
      std::size_t j = i;
      while (j >= gap && comesAfter(edges[j - gap], record)) {
        edges[j] = edges[j - gap];
        j -= gap;
      }
      edges[j] = record;
    }
    if (!reporter.Step()) return;
  }
}

}  // namespace sylvora
