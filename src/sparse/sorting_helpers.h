#pragma once
// Two ordering routines shared by the sparse vectors and the proximity networks. Their tie
// orders decide which links a network keeps, so both follow a fixed algorithm rather than a
// library sort:
//
//  * SelectTopK picks the positions of the Count best values of an array by repeated scans;
//    among equal values the lowest position wins. Cost: Count passes over the array.
//  * SortEdges orders an edge list by weight with a Shell sort (gaps n/2, n/4, ..., 1). It is
//    not stable: equal weights end in the order this particular sort leaves them. In place,
//    O(1) extra memory, about O(n^1.5) comparisons.
//
// Arrays with a lower bound. A value array whose first position is `start` is a span whose
// entries 0..start-1 are ignored: a dense vector of elements 1..n is a span of n + 1 floats,
// entry 0 unused. Results follow the same rule.
//
// Neither routine throws (apart from std::bad_alloc).

#include <cstdint>
#include <span>
#include <vector>

#include "common/progress.h"
#include "sparse/edge_record.h"

namespace sylvora {

// The positions of the `count` largest (descending) or smallest (ascending) values among
// positions start..values.size()-1, best first, never choosing position `exclude` (-1 for
// none).
//
// `count` is lowered to values.size() - 1 + start - 1 when larger, and the caller sees the
// lowered value: for start 1 that is the number of positions, for start 0 it is two less than
// the number of values. The result has start + max(count, 0) entries: entries 0..start-1 are 0
// and entry start + k holds the (k+1)-th pick.
//
// Each pick scans the positions in increasing order starting from a sentinel (the smallest
// value - 1 when descending, the largest + 1 when ascending, with the extremes taken from
// -100000000 and 100000000) and takes every untaken, non-excluded position strictly better
// than the candidate so far. When nothing is left to pick, the slot repeats the previous pick
// (-1 when there was none).
std::vector<std::int32_t> SelectTopK(std::span<const float> values, std::int32_t exclude,
                                     std::int32_t& count, bool descending, std::uint8_t start);

// Sorts `edges` in place by Weight, largest first when `descending`, otherwise smallest first;
// FromNode and ToNode travel with their weight. A Shell sort whose every gap pass is an
// insertion sort that moves a record past an earlier one only when that one comes strictly
// after it in the requested order. `progress` is called after each gap pass; when it answers
// false the sort stops there and the list is left partly ordered.
void SortEdges(std::span<EdgeRecord> edges, bool descending, const ProgressCallback& progress = {});

}  // namespace sylvora
