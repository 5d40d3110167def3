// Transform2MST: hand-checked trees (ties included), agreement with the rescanning scan on
// random matrices full of ties (which fixes the tree exactly, connected or not), and the
// failures.

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "network_references.h"
#include "networks/proximity_matrix.h"

namespace sylvora {
namespace {

using testing::Cells;
using testing::MakeMatrix;
using testing::RandomSymmetric;
using testing::ReferenceMST;

constexpr float N = ProximityMatrix::kNoLink;

// Node 0 is as close to 1 as to 2 (both 0.5). The Shell sort moves the 0.9 edge (1, 2) from
// position 3 to 0 in its gap-3 pass, which puts (0, 1) after (0, 2): the tie goes to (0, 2),
// where a stable sort would have taken (0, 1).
const std::vector<float> kTieSimilarities = {
    N,    0.5f, 0.5f, 0.1f,  //
    0.5f, N,    0.9f, 0.2f,  //
    0.5f, 0.9f, N,    0.3f,  //
    0.1f, 0.2f, 0.3f, N,
};

// The trees themselves, from every kind of start, are the random comparison's below; these
// cases pin what the result says.
TEST(Transform2MST, ResultsSayWhatIsMissing) {
  // Nodes {0, 1} and {2, 3, 4} have no link between them; node 2 of the second matrix none.
  const ProximityMatrix m = MakeMatrix(5, 1, {N,    0.4f, N,    N,    N,     //
                                              0.4f, N,    N,    N,    N,     //
                                              N,    N,    N,    0.8f, 0.7f,  //
                                              N,    N,    0.8f, N,    0.6f,  //
                                              N,    N,    0.7f, 0.6f, N});
  const ProximityMatrix lone = MakeMatrix(3, 1, {N, 0.4f, N, 0.4f, N, N, N, N, N});
  const std::pair<NetworkResult, std::string> cases[] = {
      // -1 starts from the best edge, (2, 3) 0.8: the tree covers 2, 3, 4.
      {m.Transform2MST(-1),
       "The network is not connected: the spanning tree leaves out 2 of 5 nodes"},
      {m.Transform2MST(1),
       "The network is not connected: the spanning tree leaves out 3 of 5 nodes"},
      {lone.Transform2MST(2), "The start node 2 has no links with values between 0 and 1"},
      {ProximityMatrix().Transform2MST(-1), "The proximity matrix is empty"},
      {MakeMatrix(2, 1, {N, N, N, N}).Transform2MST(-1),
       "The matrix has no links with values between 0 and 1"},
  };
  for (const auto& [result, message] : cases) EXPECT_EQ(result.Message(), message);
  EXPECT_EQ(cases[0].first->Value(2, 4), 0.7f);
  EXPECT_FALSE(cases[2].first);
  EXPECT_FALSE(lone.Transform2MST(3));
  EXPECT_FALSE(lone.Transform2MST(-2));
  // Filled but typed empty, and one node.
  EXPECT_FALSE(MakeMatrix(2, 0, {N, 0.5f, 0.5f, N}).Transform2MST(-1));
  EXPECT_FALSE(MakeMatrix(1, 1, {N}).Transform2MST(-1));
}

TEST(Transform2MST, SameTreeAsTheRescanningScanOnRandomMatricesWithTies) {
  std::mt19937 random(20131);
  // Few levels: most edges tie. -1 and 1.5 are never candidates; 0 and 1 are.
  const std::vector<std::vector<float>> levelSets = {
      {0.0f, 0.5f, 1.0f},
      {0.25f, 0.5f, 0.75f, -1.0f},
      {0.1f, 0.2f, -1.0f, -1.0f, -1.0f, 1.5f},  // sparse: often disconnected
      {0.3f},                                   // every edge ties
  };
  int trees = 0;
  int disconnected = 0;
  for (int round = 0; round < 400; ++round) {
    const std::int32_t n = 2 + static_cast<std::int32_t>(random() % 40);
    const auto& levels = levelSets[static_cast<std::size_t>(round) % levelSets.size()];
    const std::int32_t type = 1 + static_cast<std::int32_t>(random() % 4);
    const ProximityMatrix m = MakeMatrix(n, type, RandomSymmetric(n, levels, random));
    for (const std::int32_t start : {-1, 0, n / 2, n - 1}) {
      const auto expected = ReferenceMST(m, start);
      const NetworkResult tree = m.Transform2MST(start);
      ASSERT_EQ(tree.HasMatrix(), expected.has_value()) << "round " << round << " start " << start;
      if (!expected) continue;
      ++trees;
      ASSERT_EQ(Cells(*tree), expected->values)
          << "round " << round << " n " << n << " type " << type << " start " << start;
      if (!tree.Message().empty()) ++disconnected;
    }
  }
  // The rounds exercised both kinds of outcome.
  EXPECT_GT(trees, 1000);
  EXPECT_GT(disconnected, 20);
}

}  // namespace
}  // namespace sylvora
