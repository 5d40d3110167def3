// Network scaling: nearest neighbours, the minimum spanning tree, Pathfinder networks and
// geodesic distances. Each works on the upper triangle (i < j) and writes both cells of a
// pair, so every result is symmetric.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <string>

#include "common/stopwatch.h"
#include "networks/node_sets.h"
#include "networks/proximity_matrix.h"
#include "sparse/sorting_helpers.h"

namespace sylvora {

namespace {

constexpr const char* kEmptyMatrix = "The proximity matrix is empty";
constexpr const char* kCancelled = "Cancelled";

constexpr double kLargestFinite = std::numeric_limits<double>::max();

// The links of a joined path. Only walks around negative distances can double their links at
// every step; their counts stop at the largest 32-bit number.
std::int32_t LinkSum(std::int64_t links) {
  return static_cast<std::int32_t>(
      std::min<std::int64_t>(links, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

NetworkResult ProximityMatrix::Transform2KNN(std::int32_t k) const {
  Stopwatch watch;
  if (type_ == kEmpty) {
    trace_.Line("Transform2KNN failed - matrix is empty");
    return NetworkResult::Failure(kEmptyMatrix);
  }
  ProximityMatrix result;
  result.InitMatrix(n_, type_);
  result.trace_ = trace_;
  const bool descending = HoldsSimilarities();
  for (std::int32_t i = 0; i < n_; ++i) {
    const std::span<const float> row(values_.data() + At(i, 0), static_cast<std::size_t>(n_));
    std::int32_t count = k;
    const std::vector<std::int32_t> picks = SelectTopK(row, i, count, descending, 0);
    for (const std::int32_t m : picks) {
      if (m < 0) continue;  // nothing left to pick
      const float v = values_[At(i, m)];
      result.values_[At(i, m)] = v;
      result.values_[At(m, i)] = v;
    }
  }
  trace_.Line("KNN computed in ", watch.Lap(), " secs");
  return NetworkResult(std::move(result));
}

// Growing the tree from the start edge and always taking the first edge in sorted order with
// exactly one end in the tree is Prim's rule with the sorted position as the key. Positions
// are all different, so the spanning tree of the start node's component under that key is
// unique, and Kruskal's pass over the same order (join the ends of every edge that links two
// different sets) finds it without rescanning the list for every node.
NetworkResult ProximityMatrix::Transform2MST(std::int32_t startNode,
                                             const ProgressCallback& progress) const {
  Stopwatch watch;
  if (type_ == kEmpty || n_ == 0) return NetworkResult::Failure(kEmptyMatrix);
  if (startNode < -1 || startNode >= n_) {
    return NetworkResult::Failure("The start node " + std::to_string(startNode) +
                                  " is outside 0.." + std::to_string(n_ - 1));
  }

  std::vector<EdgeRecord> edges = GetEdgeList(0.0f, 1.0f);
  trace_.Line("edgecount = ", edges.size());
  bool cancelled = false;
  const ProgressCallback sortProgress = [&](std::string_view stage, std::int64_t done,
                                            std::int64_t total) {
    if (progress && !progress(stage, done, total)) cancelled = true;
    return !cancelled;
  };
  SortEdges(edges, HoldsSimilarities(), sortProgress);
  if (cancelled) return NetworkResult::Failure(kCancelled);
  if (edges.empty()) {
    return NetworkResult::Failure("The matrix has no links with values between 0 and 1");
  }

  std::size_t start = 0;
  if (startNode != -1) {
    while (start < edges.size() && edges[start].FromNode != startNode &&
           edges[start].ToNode != startNode) {
      ++start;
    }
    if (start == edges.size()) {
      return NetworkResult::Failure("The start node " + std::to_string(startNode) +
                                    " has no links with values between 0 and 1");
    }
  }

  NodeSets sets(n_);
  std::vector<EdgeRecord> forest;
  forest.reserve(static_cast<std::size_t>(n_ - 1));
  ProgressReporter reporter(progress, "Spanning tree", n_ - 1);
  for (const EdgeRecord& edge : edges) {
    if (!sets.Join(edge.FromNode, edge.ToNode)) continue;
    forest.push_back(edge);
    if (!reporter.Step()) return NetworkResult::Failure(kCancelled);
    if (forest.size() + 1 == static_cast<std::size_t>(n_)) break;
  }

  const std::int32_t root = sets.Find(edges[start].FromNode);
  std::vector<EdgeRecord>().swap(edges);  // the list can be as large as the matrix: free it first

  ProximityMatrix result;
  result.InitMatrix(n_, type_);
  result.trace_ = trace_;
  for (const EdgeRecord& edge : forest) {
    if (sets.Find(edge.FromNode) != root) continue;
    result.values_[At(edge.FromNode, edge.ToNode)] = edge.Weight;
    result.values_[At(edge.ToNode, edge.FromNode)] = edge.Weight;
  }

  std::int32_t missing = 0;
  for (std::int32_t node = 0; node < n_; ++node) missing += sets.Find(node) != root;
  std::string message;
  if (missing > 0) {
    trace_.Line("MST failed, could not add ", missing, " vertices");
    for (std::int32_t node = 0; node < n_; ++node) {
      if (sets.Find(node) != root) trace_.Line("MST missing node ", node);
    }
    message = "The network is not connected: the spanning tree leaves out " +
              std::to_string(missing) + " of " + std::to_string(n_) + " nodes";
  }
  trace_.Line("MST computed in ", watch.Lap(), " secs");
  return NetworkResult(std::move(result), std::move(message));
}

namespace {

// One row of the r = 2 relaxation: for j in [from, to), the path i -> k -> j of length
// (float(a^2) + b^2)^(1/2) (b = D(k, j)) replaces D(i, j) when strictly shorter. A float's
// square is exact in double, so no table of powers is needed and the pass reads no more memory
// than r = 1. Most cells are settled by comparing squares, with a margin above the rounding of
// the path to a float; sqrt, the correctly rounded square root, gives the exact path of the rest.
template <typename Replace>
void RelaxSquaresRow(float a, const float* rowK, const float* rowI, std::size_t from,
                     std::size_t to, Replace&& replace) {
  constexpr double kMargin = (1.0 - 1e-6) * (1.0 - 1e-6);
  constexpr double kSmallest = 1e-300;
  constexpr double kLargest = std::numeric_limits<double>::max();
  const double aPower = static_cast<float>(static_cast<double>(a) * a);
  for (std::size_t j = from; j < to; ++j) {
    const double b = rowK[j];
    const double sum = aPower + b * b;
    const double d = rowI[j];
    if (d >= 0.0 && sum >= kSmallest && sum <= kLargest && d * d <= sum * kMargin) continue;
    const auto p = static_cast<float>(std::sqrt(sum));
    if (rowI[j] > p) replace(j, p);
  }
}

}  // namespace

bool ProximityMatrix::RelaxPathfinder(ProximityMatrix& d, std::uint8_t r, std::int32_t q,
                                      bool ascending, const ProgressCallback& progress) {
  const std::int32_t n = d.n_;
  const auto stride = static_cast<std::size_t>(n);
  float* values = d.values_.data();
  std::int32_t* links = d.linkCounts_.data();
  const double power = r;
  const double root = 1.0 / power;
  // A pair may take a path only through at most q links (no limit when q < 0).
  const auto allowed = [q](std::int64_t pathLinks) { return q < 0 || pathLinks <= q; };
  const auto replace = [&](std::size_t i, std::size_t k, std::size_t j, float p) {
    const std::int64_t pathLinks =
        static_cast<std::int64_t>(links[i * stride + k]) + links[k * stride + j];
    if (!allowed(pathLinks)) return false;
    values[i * stride + j] = p;
    values[j * stride + i] = p;
    links[i * stride + j] = LinkSum(pathLinks);
    links[j * stride + i] = LinkSum(pathLinks);
    return true;
  };

  // For r above 2: the r-th power of every cell in double, kept current as cells change.
  // The path length needs D(k, j)^r itself; the cell's own power settles most comparisons
  // without taking the root: a cell whose r-th power is at most keepFactor times the path's
  // is shorter than the path by more than the rounding of the path to a float, so the path
  // cannot replace it.
  std::vector<double> powers;
  if (r > 2) {
    powers.resize(d.values_.size());
    for (std::size_t x = 0; x < powers.size(); ++x) powers[x] = std::pow(values[x], power);
  }
  const double keepFactor = std::pow(1.0 - 1e-6, power);

  for (std::int32_t step = 0; step < n; ++step) {
    const auto k = static_cast<std::size_t>(ascending ? step : n - 1 - step);
    const float* rowK = values + k * stride;
    for (std::size_t i = 0; i + 1 < stride; ++i) {
      float* rowI = values + i * stride;
      const float a = rowI[k];
      if (r == 0) {
        for (std::size_t j = i + 1; j < stride; ++j) {
          const float b = rowK[j];
          const float p = a > b ? a : b;
          if (rowI[j] > p) replace(i, k, j, p);
        }
      } else if (r == 1) {
        for (std::size_t j = i + 1; j < stride; ++j) {
          const auto p = static_cast<float>(static_cast<double>(a) + rowK[j]);
          if (rowI[j] > p) replace(i, k, j, p);
        }
      } else if (r == 2) {
        RelaxSquaresRow(a, rowK, rowI, i + 1, stride,
                        [&](std::size_t j, float p) { return replace(i, k, j, p); });
      } else {
        const auto aPower = static_cast<float>(std::pow(a, power));
        const double* powersK = powers.data() + k * stride;
        double* powersI = powers.data() + i * stride;
        for (std::size_t j = i + 1; j < stride; ++j) {
          const double sum = aPower + powersK[j];
          const float dij = rowI[j];
          if (dij >= 0.0f && sum >= 1e-300 && sum <= kLargestFinite &&
              powersI[j] <= sum * keepFactor) {
            continue;
          }
          const auto p = static_cast<float>(std::pow(sum, root));
          if (dij > p && replace(i, k, j, p)) {
            const double pPower = std::pow(p, power);
            powersI[j] = pPower;
            powers[j * stride + i] = pPower;
          }
        }
      }
    }
    if (progress && !progress("Pathfinder", step + 1, n)) return false;
  }
  return true;
}

NetworkResult ProximityMatrix::Transform2FastPF(std::uint8_t r, const ProgressCallback& progress) {
  Stopwatch watch;
  if (type_ == kEmpty) return NetworkResult::Failure(kEmptyMatrix);
  if (HoldsSimilarities()) {
    trace_.Line("Transform2FastPF - converting similarities to dissimilarites");
    Sim2Dis();
    trace_.Line("Done");
  }
  ProximityMatrix d = PathCopy(false);
  if (!RelaxPathfinder(d, r, -1, true, progress)) return NetworkResult::Failure(kCancelled);
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    for (std::int32_t j = i + 1; j < n_; ++j) {
      if (d.values_[At(i, j)] != values_[At(i, j)]) {
        d.values_[At(i, j)] = kNoLink;
        d.values_[At(j, i)] = kNoLink;
      }
    }
  }
  trace_.Line("PF completed in ", watch.Lap(), " secs");
  return NetworkResult(std::move(d));
}

NetworkResult ProximityMatrix::FastPFQ(std::uint8_t r, std::int32_t q,
                                       const ProgressCallback& progress) const {
  if (type_ != kDocumentDissimilarities && type_ != kTermDissimilarities) {
    trace_.Line("FastPFQ failed - matrix is empty or contains similarities");
    return NetworkResult::Failure(type_ == kEmpty ? kEmptyMatrix
                                                  : "The matrix does not hold dissimilarities");
  }
  ProximityMatrix d = PathCopy(false);
  if (!RelaxPathfinder(d, r, q < 0 ? 0 : q, true, progress)) {
    return NetworkResult::Failure(kCancelled);
  }
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    for (std::int32_t j = i + 1; j < n_; ++j) {
      if (d.values_[At(i, j)] != values_[At(i, j)]) {
        d.values_[At(i, j)] = kNoLink;
        d.values_[At(j, i)] = kNoLink;
      }
    }
  }
  return NetworkResult(std::move(d));
}

NetworkResult ProximityMatrix::FastPFQ2(std::uint8_t r, std::int32_t q,
                                        const ProgressCallback& progress) const {
  if (type_ != kDocumentDissimilarities && type_ != kTermDissimilarities) {
    trace_.Line("FastPFQ failed - matrix is empty or contains similarities");
    return NetworkResult::Failure(type_ == kEmpty ? kEmptyMatrix
                                                  : "The matrix does not hold dissimilarities");
  }
  const std::int32_t limit = q < 0 ? 0 : q;
  ProximityMatrix forward = PathCopy(false);
  if (!RelaxPathfinder(forward, r, limit, true, progress)) {
    return NetworkResult::Failure(kCancelled);
  }
  ProximityMatrix backward = PathCopy(false);
  if (!RelaxPathfinder(backward, r, limit, false, progress)) {
    return NetworkResult::Failure(kCancelled);
  }
  ProximityMatrix result = PathCopy(false);
  for (std::int32_t i = 0; i + 1 < n_; ++i) {
    for (std::int32_t j = i + 1; j < n_; ++j) {
      const float source = values_[At(i, j)];
      if (source != forward.values_[At(i, j)] || source != backward.values_[At(i, j)]) {
        result.values_[At(i, j)] = kNoLink;
        result.values_[At(j, i)] = kNoLink;
      }
    }
  }
  return NetworkResult(std::move(result));
}

NetworkResult ProximityMatrix::Transform2Geodesic(const ProgressCallback& progress) const {
  Stopwatch watch;
  if (type_ == kEmpty) {
    trace_.Line("Transform2Geodesic failed - matrix is empty");
    return NetworkResult::Failure(kEmptyMatrix);
  }
  if (HoldsSimilarities()) {
    trace_.Line(
        "This is a similarity matrix. Converting to dissimilarities before computing shortest "
        "paths...");
  }
  ProximityMatrix d = PathCopy(HoldsSimilarities());
  const auto stride = static_cast<std::size_t>(n_);
  float* values = d.values_.data();
  std::int32_t* links = d.linkCounts_.data();
  for (std::size_t k = 0; k < stride; ++k) {
    // Row and column k do not change while k is the intermediate node: going through k to
    // reach k adds the diagonal's 0, which is never shorter.
    const float* rowK = values + k * stride;
    const std::int32_t* linksK = links + k * stride;
    for (std::size_t i = 0; i + 1 < stride; ++i) {
      float* rowI = values + i * stride;
      const double a = rowI[k];
      const std::int32_t linksIK = links[i * stride + k];
      for (std::size_t j = i + 1; j < stride; ++j) {
        const double sum = a + static_cast<double>(rowK[j]);
        if (sum < rowI[j]) {
          const auto p = static_cast<float>(sum);
          rowI[j] = p;
          values[j * stride + i] = p;
          const std::int32_t pathLinks = LinkSum(static_cast<std::int64_t>(linksIK) + linksK[j]);
          links[i * stride + j] = pathLinks;
          links[j * stride + i] = pathLinks;
        }
      }
    }
    if (progress &&
        !progress("Geodesic - K=" + std::to_string(k), static_cast<std::int64_t>(k) + 1, n_)) {
      return NetworkResult::Failure(kCancelled);
    }
  }
  trace_.Line("Geodesic distances computed in ", watch.Lap(), " secs");
  return NetworkResult(std::move(d));
}

}  // namespace sylvora
