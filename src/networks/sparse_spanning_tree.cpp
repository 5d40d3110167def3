#include "networks/sparse_spanning_tree.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "networks/node_sets.h"

namespace sylvora {
namespace {

bool ByDistanceThenPair(const EdgeRecord& a, const EdgeRecord& b) {
  if (a.Weight != b.Weight) return a.Weight < b.Weight;
  if (a.FromNode != b.FromNode) return a.FromNode < b.FromNode;
  return a.ToNode < b.ToNode;
}

bool ByPair(const EdgeRecord& a, const EdgeRecord& b) {
  return a.FromNode != b.FromNode ? a.FromNode < b.FromNode : a.ToNode < b.ToNode;
}

// For each node outside the tree, its shortest link to it so far: a binary heap of nodes
// keyed by that link, with the nodes' places so that a shorter link moves a node up.
class NearestLinks {
 public:
  explicit NearestLinks(std::int32_t n)
      : link_(static_cast<std::size_t>(n)), place_(static_cast<std::size_t>(n), -1) {}

  bool Empty() const { return heap_.empty(); }

  // Records `link` for `node` when it is its first or a shorter one.
  void Offer(std::int32_t node, const EdgeRecord& link) {
    const auto at = static_cast<std::size_t>(node);
    if (place_[at] >= 0) {
      if (!ByDistanceThenPair(link, link_[at])) return;
      link_[at] = link;
      Up(static_cast<std::size_t>(place_[at]));
      return;
    }
    if (place_[at] == kTaken) return;
    link_[at] = link;
    place_[at] = static_cast<std::int32_t>(heap_.size());
    heap_.push_back(node);
    Up(heap_.size() - 1);
  }

  // The node with the shortest link, and that link; the node leaves for good.
  std::pair<std::int32_t, EdgeRecord> Pop() {
    const std::int32_t node = heap_.front();
    place_[static_cast<std::size_t>(node)] = kTaken;
    heap_.front() = heap_.back();
    heap_.pop_back();
    if (!heap_.empty()) {
      place_[static_cast<std::size_t>(heap_.front())] = 0;
      Down(0);
    }
    return {node, link_[static_cast<std::size_t>(node)]};
  }

 private:
  static constexpr std::int32_t kTaken = -2;

  bool Before(std::size_t a, std::size_t b) const {
    return ByDistanceThenPair(link_[static_cast<std::size_t>(heap_[a])],
                              link_[static_cast<std::size_t>(heap_[b])]);
  }
  void Swap(std::size_t a, std::size_t b) {
    std::swap(heap_[a], heap_[b]);
    place_[static_cast<std::size_t>(heap_[a])] = static_cast<std::int32_t>(a);
    place_[static_cast<std::size_t>(heap_[b])] = static_cast<std::int32_t>(b);
  }
  void Up(std::size_t at) {
    while (at > 0 && Before(at, (at - 1) / 2)) {
      Swap(at, (at - 1) / 2);
      at = (at - 1) / 2;
    }
  }
  void Down(std::size_t at) {
    while (true) {
      std::size_t best = at;
      for (const std::size_t child : {2 * at + 1, 2 * at + 2}) {
        if (child < heap_.size() && Before(child, best)) best = child;
      }
      if (best == at) return;
      Swap(at, best);
      at = best;
    }
  }

  std::vector<EdgeRecord> link_;
  std::vector<std::int32_t> place_;  // -1 never offered, kTaken popped
  std::vector<std::int32_t> heap_;
};

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
  // The pairs that can never link (similarity above 1, or not a number), and the shortest
  // link below 1, where a network that falls apart keeps its tree.
  std::vector<EdgeRecord> barred;
  bool anyShorter = false;
  EdgeRecord shortest;
  for (std::int32_t c = 2; c <= n; ++c) {
    const SparseVectorSingle& column = *similarities.Vector(c);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < rows.size() && rows[k] < c; ++k) {
      if (rows[k] < 1) continue;
      const EdgeRecord edge{1.0f - values[k], rows[k] - 1, c - 1};
      if (!(edge.Weight >= 0.0f)) {
        barred.push_back(edge);
      } else if (edge.Weight < 1.0f && (!anyShorter || ByDistanceThenPair(edge, shortest))) {
        shortest = edge;
        anyShorter = true;
      }
    }
  }
  std::sort(barred.begin(), barred.end(), ByPair);

  ProgressReporter reporter(progress, "Spanning tree", n - 1);
  bool cancelled = false;
  // The links below 1: the minimum spanning forest under the order (distance, i, j), which is
  // strict, so the forest is the one taking the links in that order gives, grown here node by
  // node from each column's links without listing every pair.
  NearestLinks heap(n);
  std::vector<char> inTree(static_cast<std::size_t>(n), 0);
  const auto relax = [&](std::int32_t u) {
    const SparseVectorSingle& column = *similarities.Vector(u + 1);
    const auto rows = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < rows.size(); ++k) {
      const std::int32_t w = rows[k] - 1;
      if (w < 0 || w >= n || w == u || inTree[static_cast<std::size_t>(w)]) continue;
      const float distance = 1.0f - values[k];
      if (!(distance >= 0.0f && distance < 1.0f)) continue;
      heap.Offer(w, {distance, std::min(u, w), std::max(u, w)});
    }
  };
  for (std::int32_t start = 0; start < n && anyShorter && !cancelled; ++start) {
    if (inTree[static_cast<std::size_t>(start)]) continue;
    inTree[static_cast<std::size_t>(start)] = 1;
    relax(start);
    while (!heap.Empty()) {
      const auto [node, link] = heap.Pop();
      inTree[static_cast<std::size_t>(node)] = 1;
      tree.links.push_back(link);
      if (!reporter.Step()) {
        cancelled = true;
        break;
      }
      relax(node);
    }
  }
  NodeSets components(n);
  for (const EdgeRecord& link : tree.links) components.Join(link.FromNode, link.ToNode);
  const auto full = [&] { return tree.links.size() + 1 == static_cast<std::size_t>(n); };
  const auto take = [&](const EdgeRecord& edge) {
    if (!components.Join(edge.FromNode, edge.ToNode)) return;
    tree.links.push_back(edge);
    if (!reporter.Step()) cancelled = true;
  };
  std::int32_t startNode = anyShorter ? shortest.FromNode : -1;

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
