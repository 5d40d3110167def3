#include "networks/sparse_spanning_tree.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace sylvora {
namespace {

class Components {
 public:
  explicit Components(std::int32_t n) : parent_(static_cast<std::size_t>(n)) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  std::int32_t Find(std::int32_t x) {
    while (parent_[static_cast<std::size_t>(x)] != x) {
      auto& p = parent_[static_cast<std::size_t>(x)];
      p = parent_[static_cast<std::size_t>(p)];
      x = p;
    }
    return x;
  }
  // False when both are already joined. Which root survives does not matter: only
  // membership is read.
  bool Join(std::int32_t a, std::int32_t b) {
    a = Find(a);
    b = Find(b);
    if (a == b) return false;
    if (a > b) std::swap(a, b);
    parent_[static_cast<std::size_t>(b)] = a;
    return true;
  }

 private:
  std::vector<std::int32_t> parent_;
};

bool ByDistanceThenPair(const EdgeRecord& a, const EdgeRecord& b) {
  if (a.Weight != b.Weight) return a.Weight < b.Weight;
  if (a.FromNode != b.FromNode) return a.FromNode < b.FromNode;
  return a.ToNode < b.ToNode;
}

bool ByPair(const EdgeRecord& a, const EdgeRecord& b) {
  return a.FromNode != b.FromNode ? a.FromNode < b.FromNode : a.ToNode < b.ToNode;
}

}  // namespace

SparseTree SparseSpanningTree(const SparseMatrixSingle& similarities,
                              const ProgressCallback& progress) {
  SparseTree tree;
  const std::int32_t n = similarities.ColCount();
  if (n < 2) {
    tree.message = "A spanning tree needs at least two nodes";
    return tree;
  }

  // Pairs shorter than 1, and pairs that can never link (similarity above 1, or not a number).
  std::vector<EdgeRecord> shorter;
  std::vector<EdgeRecord> barred;
  for (std::int32_t c = 2; c <= n; ++c) {
    const SparseVectorSingle& column = *similarities.Vector(c);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] < c; ++k) {
      if (rows[k] < 1) continue;
      const float distance = 1.0f - values[k];
      const EdgeRecord edge{distance, rows[k] - 1, c - 1};
      if (!(distance >= 0.0f)) {
        barred.push_back(edge);
      } else if (distance < 1.0f) {
        shorter.push_back(edge);
      }
    }
  }
  std::sort(shorter.begin(), shorter.end(), ByDistanceThenPair);
  std::sort(barred.begin(), barred.end(), ByPair);

  Components components(n);
  const auto full = [&] { return tree.links.size() + 1 == static_cast<std::size_t>(n); };
  ProgressReporter reporter(progress, "Spanning tree", n - 1);
  bool cancelled = false;
  const auto take = [&](const EdgeRecord& edge) {
    if (!components.Join(edge.FromNode, edge.ToNode)) return;
    tree.links.push_back(edge);
    if (!reporter.Step()) cancelled = true;
  };
  for (const EdgeRecord& edge : shorter) {
    take(edge);
    if (cancelled || full()) break;
  }
  std::int32_t startNode = shorter.empty() ? -1 : shorter.front().FromNode;
  std::vector<EdgeRecord>().swap(shorter);

  // The pairs at distance 1, row by row: the first row normally completes the tree.
  auto nextBarred = barred.begin();
  for (std::int32_t i = 0; i + 1 < n && !cancelled && !full(); ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      while (nextBarred != barred.end() &&
             (nextBarred->FromNode < i || (nextBarred->FromNode == i && nextBarred->ToNode < j))) {
        ++nextBarred;
      }
      if (nextBarred != barred.end() && nextBarred->FromNode == i && nextBarred->ToNode == j) {
        continue;
      }
      if (startNode < 0) startNode = i;
      take({1.0f, i, j});
      if (cancelled || full()) break;
    }
  }
  if (cancelled) {
    tree.links.clear();
    tree.message = "Cancelled";
    return tree;
  }
  if (startNode < 0) {
    tree.message = "The matrix has no links with values between 0 and 1";
    return tree;
  }

  // A network that is not connected keeps the part that holds the first link taken.
  const std::int32_t root = components.Find(startNode);
  std::int32_t missing = 0;
  for (std::int32_t node = 0; node < n; ++node) missing += components.Find(node) != root;
  if (missing > 0) {
    std::erase_if(tree.links,
                  [&](const EdgeRecord& edge) { return components.Find(edge.FromNode) != root; });
    tree.message = "The network is not connected: the spanning tree leaves out " +
                   std::to_string(missing) + " of " + std::to_string(n) + " nodes";
  }
  std::sort(tree.links.begin(), tree.links.end(), ByPair);
  tree.built = true;
  return tree;
}

}  // namespace sylvora
