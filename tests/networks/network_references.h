#pragma once
// Straightforward, slow versions of the network transforms, written step by step as the
// algorithms are stated, for checking the fast ones on random matrices. They work on plain
// n x n arrays (row by row) and know nothing of ProximityMatrix internals.

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "networks/proximity_matrix.h"

namespace sylvora::testing {

struct DenseNetwork {
  std::int32_t n = 0;
  std::vector<float> values;             // n x n
  std::vector<std::int32_t> linkCounts;  // n x n, empty when not computed
};

// The spanning tree grown by rescanning the sorted edge list for every node added. No value
// when there is no candidate edge or the start node has none.
std::optional<DenseNetwork> ReferenceMST(const ProximityMatrix& source, std::int32_t startNode);

// The Pathfinder relaxation over every intermediate node in the given order (q < 0: no
// limit), on the prepared copy of a dissimilarity matrix, without removing any links.
DenseNetwork ReferencePathfinderRelax(const ProximityMatrix& dissimilarities, std::uint8_t r,
                                      std::int32_t q, bool ascending);

// Floyd-Warshall with sums on the prepared copy (converted when it holds similarities).
DenseNetwork ReferenceGeodesic(const ProximityMatrix& source);

// A random symmetric n x n matrix whose off-diagonal cells are drawn from `levels` (few
// levels give many ties), diagonal -1.
std::vector<float> RandomSymmetric(std::int32_t n, const std::vector<float>& levels,
                                   std::mt19937& random);

// The matrix's cells as a vector, row by row.
std::vector<float> Cells(const ProximityMatrix& m);

// A matrix of n nodes of `type` from row-by-row `values`.
ProximityMatrix MakeMatrix(std::int32_t n, std::int32_t type, std::vector<float> values);

}  // namespace sylvora::testing
