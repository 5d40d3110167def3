// SparseSpanningTree against the dense route (AssignMatrix, Sim2Dis, Transform2MST(-1),
// Matrix2Dot) on random similarity networks, and the pairs the dense route never links.

#include "networks/sparse_spanning_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "networks/proximity_matrix.h"

namespace sylvora {
namespace {

struct Network {
  std::int32_t n = 0;
  std::vector<float> dense;  // n x n, 0 where there is no stored cell
  SparseMatrixSingle sparse;
};

// A symmetric network whose pairs are stored with probability `density`, with distinct
// similarities in (0, 1).
Network RandomNetwork(std::uint32_t seed, std::int32_t n, double density) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> value(0.001f, 0.999f);
  std::bernoulli_distribution stored(density);
  Network network;
  network.n = n;
  network.dense.assign(static_cast<std::size_t>(n * n), 0.0f);
  network.sparse.Reset(n, n);
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      if (!stored(random)) continue;
      const float v = value(random);
      network.dense[static_cast<std::size_t>(i * n + j)] = v;
      network.dense[static_cast<std::size_t>(j * n + i)] = v;
      network.sparse.SetValue(i + 1, j + 1, v);
      network.sparse.SetValue(j + 1, i + 1, v);
    }
  }
  return network;
}

std::string DenseDot(const Network& network, std::string* message = nullptr) {
  ProximityMatrix matrix;
  EXPECT_TRUE(matrix.AssignMatrix(network.dense, network.n, 1));
  matrix.Sim2Dis();
  NetworkResult tree = matrix.Transform2MST(-1);
  if (!tree) return "no tree: " + tree.Message();
  if (message != nullptr) *message = tree.Message();
  return tree->Matrix2Dot(1.0f, 1, "", 0.0f, 1.0f);
}

std::string SparseDot(const Network& network, std::string* message = nullptr) {
  SparseTree tree = SparseSpanningTree(network.sparse);
  if (!tree.built) return "no tree: " + tree.message;
  if (message != nullptr) *message = tree.message;
  return DotFromEdges(std::move(tree.links), 1.0f, 1);
}

// The DOT lines of links shorter than 1.
std::vector<std::string> ShortLinks(const std::string& dot) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < dot.size()) {
    const std::size_t end = dot.find("\r\n", start);
    const std::string line = dot.substr(start, end - start);
    if (line.find("[len=") != std::string::npos && line.find("[len=1.00000]") == std::string::npos)
      lines.push_back(line);
    if (end == std::string::npos) break;
    start = end + 2;
  }
  return lines;
}

TEST(SparseSpanningTree, SameTreeAsTheDenseRouteOnRandomNetworks) {
  struct Case {
    std::uint32_t seed;
    std::int32_t n;
    double density;
  };
  // Dense networks are connected through links below 1, where the tree is unique; sparse ones
  // fall apart and are joined at distance 1, where only the ties' order may differ.
  for (const Case c : {Case{1, 2, 1.0}, Case{2, 5, 1.0}, Case{3, 12, 0.8}, Case{4, 30, 0.5},
                       Case{5, 60, 0.3}, Case{6, 25, 0.05}, Case{7, 40, 0.02}, Case{8, 8, 0.0}}) {
    SCOPED_TRACE("seed " + std::to_string(c.seed));
    const Network network = RandomNetwork(c.seed, c.n, c.density);
    std::string denseMessage;
    std::string sparseMessage;
    const std::string dense = DenseDot(network, &denseMessage);
    const std::string sparse = SparseDot(network, &sparseMessage);
    EXPECT_EQ(sparseMessage, denseMessage);
    EXPECT_EQ(ShortLinks(sparse), ShortLinks(dense));
    // Every node appears in a link: the same number of lines (n - 1 links).
    EXPECT_EQ(std::count(sparse.begin(), sparse.end(), '\n'),
              std::count(dense.begin(), dense.end(), '\n'));
    if (c.density >= 0.3) {
      EXPECT_EQ(sparse, dense);
    }
  }
}

TEST(SparseSpanningTree, SimilaritiesAboveOneNeverLinkAndNoCandidateIsAnError) {
  // Nodes 0 and 1 are "more than identical": their pair is no candidate, so both join node 2
  // at distance 1, as in the dense route.
  Network network;
  network.n = 3;
  network.dense = {0, 1.5f, 0, 1.5f, 0, 0, 0, 0, 0};
  network.sparse.Reset(3, 3);
  network.sparse.SetValue(1, 2, 1.5f);
  network.sparse.SetValue(2, 1, 1.5f);
  EXPECT_EQ(SparseDot(network), DenseDot(network));
  EXPECT_NE(SparseDot(network).find("1 -- 3 [len=1.00000]"), std::string::npos);

  // Two nodes whose only pair is barred: no tree either way.
  network.n = 2;
  network.dense = {0, 1.5f, 1.5f, 0};
  network.sparse.Reset(2, 2);
  network.sparse.SetValue(1, 2, 1.5f);
  const SparseTree tree = SparseSpanningTree(network.sparse);
  EXPECT_FALSE(tree.built);
  EXPECT_EQ(SparseDot(network), DenseDot(network));
}

}  // namespace
}  // namespace sylvora
