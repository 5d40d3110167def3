#pragma once
// Union-find over nodes 0..n-1, by size with path halving: which nodes a spanning tree has
// joined so far. Nearly constant time per call; n 32-bit numbers twice.

#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace sylvora {

class NodeSets {
 public:
  explicit NodeSets(std::int32_t n)
      : parent_(static_cast<std::size_t>(n)), size_(parent_.size(), 1) {
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
  // False when both are already in one set.
  bool Join(std::int32_t a, std::int32_t b) {
    a = Find(a);
    b = Find(b);
    if (a == b) return false;
    if (size_[static_cast<std::size_t>(a)] < size_[static_cast<std::size_t>(b)]) std::swap(a, b);
    parent_[static_cast<std::size_t>(b)] = a;
    size_[static_cast<std::size_t>(a)] += size_[static_cast<std::size_t>(b)];
    return true;
  }

 private:
  std::vector<std::int32_t> parent_;
  std::vector<std::int32_t> size_;
};

}  // namespace sylvora
