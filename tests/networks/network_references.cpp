#include "network_references.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include "sparse/sorting_helpers.h"

namespace sylvora::testing {

namespace {

std::size_t At(std::int32_t n, std::int32_t i, std::int32_t j) {
  return static_cast<std::size_t>(i) * static_cast<std::size_t>(n) + static_cast<std::size_t>(j);
}

// Copy, link counts 1 off the diagonal, |value| == 1 -> unreachable, diagonal 0.
DenseNetwork Prepared(std::int32_t n, std::vector<float> values) {
  DenseNetwork d{n, std::move(values), {}};
  d.linkCounts.assign(d.values.size(), 1);
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = 0; j < n; ++j) {
      if (std::fabs(d.values[At(n, i, j)]) == 1.0f) d.values[At(n, i, j)] = 9999999.0f;
    }
    d.values[At(n, i, i)] = 0.0f;
    d.linkCounts[At(n, i, i)] = 0;
  }
  return d;
}

}  // namespace

std::optional<DenseNetwork> ReferenceMST(const ProximityMatrix& source, std::int32_t startNode) {
  const std::int32_t n = source.NodeCount();
  std::vector<EdgeRecord> e = source.GetEdgeList(0.0f, 1.0f);
  const std::int32_t type = source.CurrentMatrixType();
  SortEdges(e, type == 1 || type == 2);
  if (e.empty()) return std::nullopt;

  std::size_t s = 0;
  if (startNode != -1) {
    while (s < e.size() && e[s].FromNode != startNode && e[s].ToNode != startNode) ++s;
    if (s == e.size()) return std::nullopt;
  }
  std::vector<bool> inTree(static_cast<std::size_t>(n), false);
  std::vector<EdgeRecord> tree{e[s]};
  inTree[static_cast<std::size_t>(e[s].FromNode)] = true;
  inTree[static_cast<std::size_t>(e[s].ToNode)] = true;
  std::int32_t count = 2;
  std::size_t p = s == 0 ? 1 : 0;
  while (count < n) {
    bool found = false;
    for (std::size_t q = p; q < e.size(); ++q) {
      const auto from = static_cast<std::size_t>(e[q].FromNode);
      const auto to = static_cast<std::size_t>(e[q].ToNode);
      if (!inTree[from] && inTree[to]) {
        inTree[from] = true;
      } else if (!inTree[to] && inTree[from]) {
        inTree[to] = true;
      } else {
        continue;
      }
      tree.push_back(e[q]);
      ++count;
      if (q == p) ++p;
      found = true;
      break;
    }
    if (!found) break;
  }
  DenseNetwork result{n, std::vector<float>(static_cast<std::size_t>(n) * n, -1.0f), {}};
  for (const EdgeRecord& edge : tree) {
    result.values[At(n, edge.FromNode, edge.ToNode)] = edge.Weight;
    result.values[At(n, edge.ToNode, edge.FromNode)] = edge.Weight;
  }
  return result;
}

DenseNetwork ReferencePathfinderRelax(const ProximityMatrix& dissimilarities, std::uint8_t r,
                                      std::int32_t q, bool ascending) {
  const std::int32_t n = dissimilarities.NodeCount();
  const auto cells = dissimilarities.Values();
  DenseNetwork d = Prepared(n, std::vector<float>(cells.begin(), cells.end()));
  auto D = [&](std::int32_t i, std::int32_t j) -> float& { return d.values[At(n, i, j)]; };
  auto L = [&](std::int32_t i, std::int32_t j) -> std::int32_t& {
    return d.linkCounts[At(n, i, j)];
  };
  for (std::int32_t step = 0; step < n; ++step) {
    const std::int32_t k = ascending ? step : n - 1 - step;
    for (std::int32_t i = 0; i <= n - 2; ++i) {
      const float a = D(i, k);
      float aR = 0.0f;
      if (r != 0) aR = static_cast<float>(std::pow(static_cast<double>(a), static_cast<double>(r)));
      for (std::int32_t j = i + 1; j <= n - 1; ++j) {
        const float b = D(k, j);
        const float dij = D(i, j);
        float p;
        if (r == 0) {
          p = a > b ? a : b;
        } else {
          p = static_cast<float>(
              std::pow(static_cast<double>(aR) + std::pow(static_cast<double>(b), double(r)),
                       1.0 / double(r)));
        }
        if (dij > p) {
          const std::int32_t links = L(i, k) + L(k, j);
          if (q >= 0 && links > q) continue;
          D(i, j) = p;
          D(j, i) = p;
          L(i, j) = links;
          L(j, i) = links;
        }
      }
    }
  }
  return d;
}

DenseNetwork ReferenceGeodesic(const ProximityMatrix& source) {
  const std::int32_t n = source.NodeCount();
  ProximityMatrix copy = source;
  if (copy.HoldsSimilarities()) copy.Sim2Dis();
  const auto cells = copy.Values();
  DenseNetwork d = Prepared(n, std::vector<float>(cells.begin(), cells.end()));
  for (std::int32_t k = 0; k < n; ++k) {
    for (std::int32_t i = 0; i <= n - 2; ++i) {
      for (std::int32_t j = i + 1; j <= n - 1; ++j) {
        const double sum = static_cast<double>(d.values[At(n, i, k)]) + d.values[At(n, k, j)];
        if (sum < d.values[At(n, i, j)]) {
          d.values[At(n, i, j)] = static_cast<float>(sum);
          d.values[At(n, j, i)] = static_cast<float>(sum);
          const std::int32_t links = d.linkCounts[At(n, i, k)] + d.linkCounts[At(n, k, j)];
          d.linkCounts[At(n, i, j)] = links;
          d.linkCounts[At(n, j, i)] = links;
        }
      }
    }
  }
  return d;
}

std::vector<float> RandomSymmetric(std::int32_t n, const std::vector<float>& levels,
                                   std::mt19937& random) {
  std::vector<float> values(static_cast<std::size_t>(n) * n, -1.0f);
  std::uniform_int_distribution<std::size_t> pick(0, levels.size() - 1);
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      const float v = levels[pick(random)];
      values[At(n, i, j)] = v;
      values[At(n, j, i)] = v;
    }
  }
  return values;
}

std::vector<float> Cells(const ProximityMatrix& m) {
  return std::vector<float>(m.Values().begin(), m.Values().end());
}

ProximityMatrix MakeMatrix(std::int32_t n, std::int32_t type, std::vector<float> values) {
  ProximityMatrix m;
  if (!m.AssignMatrix(std::move(values), n, type)) m = ProximityMatrix();
  return m;
}

}  // namespace sylvora::testing
