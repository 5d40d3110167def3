// Nearest neighbours, Pathfinder networks and geodesic distances: hand-checked small
// matrices (ties included), failures, and agreement with the step-by-step loops on random
// matrices.

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "network_references.h"
#include "networks/proximity_matrix.h"

namespace sylvora {
namespace {

using testing::Cells;
using testing::DenseNetwork;
using testing::MakeMatrix;
using testing::RandomSymmetric;
using testing::ReferenceGeodesic;
using testing::ReferencePathfinderRelax;

constexpr float N = ProximityMatrix::kNoLink;
constexpr float U = ProximityMatrix::kUnreachable;

std::vector<std::int32_t> LinkCounts(const ProximityMatrix& m) {
  std::vector<std::int32_t> counts;
  for (std::int32_t i = 0; i < m.NodeCount(); ++i) {
    for (std::int32_t j = 0; j < m.NodeCount(); ++j) counts.push_back(m.LinkCount(i, j));
  }
  return counts;
}

// A triangle 0-1 0.2, 1-2 0.3, 0-2 0.4 of distances.
ProximityMatrix Triangle(float d01 = 0.2f, float d12 = 0.3f, float d02 = 0.4f) {
  return MakeMatrix(3, 3,
                    {N, d01, d02,  //
                     d01, N, d12,  //
                     d02, d12, N});
}

// ---- Transform2KNN ----

TEST(Transform2KNN, OneNeighbourEachOnSimilaritiesIsSymmetric) {
  const ProximityMatrix m = MakeMatrix(3, 2,
                                       {N, 0.9f, 0.2f,  //
                                        0.9f, N, 0.5f,  //
                                        0.2f, 0.5f, N});
  const NetworkResult knn = m.Transform2KNN(1);
  ASSERT_TRUE(knn);
  EXPECT_EQ(knn->CurrentMatrixType(), 2);
  // 0 and 1 pick each other; 2 picks 1, which did not pick 2.
  EXPECT_EQ(Cells(*knn), (std::vector<float>{N, 0.9f, N, 0.9f, N, 0.5f, N, 0.5f, N}));
  // K of n - 1 or more counts as n - 2 = 1.
  EXPECT_EQ(Cells(*m.Transform2KNN(5)), Cells(*knn));
}

TEST(Transform2KNN, TiesGoToTheLowestNode) {
  std::vector<float> values(16, 0.5f);
  for (int i = 0; i < 4; ++i) values[static_cast<std::size_t>(i * 5)] = N;
  const NetworkResult knn = MakeMatrix(4, 1, values).Transform2KNN(1);
  ASSERT_TRUE(knn);
  // Node 0 picks 1; nodes 1, 2 and 3 pick 0.
  EXPECT_EQ(Cells(*knn), (std::vector<float>{N, 0.5f, 0.5f, 0.5f,  //
                                             0.5f, N, N, N,        //
                                             0.5f, N, N, N,        //
                                             0.5f, N, N, N}));
}

TEST(Transform2KNN, NoLinkCellsUseUpPicksInDissimilarities) {
  const ProximityMatrix m = MakeMatrix(4, 4,
                                       {N, N, 0.3f, 0.2f,     //
                                        N, N, 0.4f, 0.5f,     //
                                        0.3f, 0.4f, N, 0.6f,  //
                                        0.2f, 0.5f, 0.6f, N});
  const NetworkResult knn = m.Transform2KNN(1);
  ASSERT_TRUE(knn);
  // Nodes 0 and 1 pick each other's -1; 2 and 3 pick node 0.
  EXPECT_EQ(Cells(*knn), (std::vector<float>{N, N, 0.3f, 0.2f,  //
                                             N, N, N, N,        //
                                             0.3f, N, N, N,     //
                                             0.2f, N, N, N}));
  const NetworkResult two = m.Transform2KNN(2);
  ASSERT_TRUE(two);
  EXPECT_EQ(two->Value(1, 2), 0.4f);
  EXPECT_EQ(two->Value(2, 3), N);  // 3 picks 0 and 1; 2 picks 0 and 1
}

TEST(Transform2KNN, EmptySourceGivesNoMatrix) {
  std::vector<std::string> trace;
  ProximityMatrix m;
  m.SetTrace(DebugTrace([&](std::string_view line) { trace.emplace_back(line); }));
  EXPECT_FALSE(m.Transform2KNN(3));
  EXPECT_EQ(trace, std::vector<std::string>{"Transform2KNN failed - matrix is empty"});
  EXPECT_TRUE(MakeMatrix(1, 1, {N}).Transform2KNN(1));  // one node: nothing to pick
}

// ---- Transform2FastPF ----

TEST(Transform2FastPF, DistanceOneNeverSurvivesAndSimilaritiesAreConvertedInPlace) {
  ProximityMatrix m = MakeMatrix(3, 1,
                                 {N, 0.0f, 0.9f,  //
                                  0.0f, N, 0.5f,  //
                                  0.9f, 0.5f, N});
  const NetworkResult pf = m.Transform2FastPF(1);
  ASSERT_TRUE(pf);
  EXPECT_EQ(m.CurrentMatrixType(), 3);
  EXPECT_EQ(m.Value(0, 1), 1.0f);
  EXPECT_EQ(pf->CurrentMatrixType(), 3);
  // (0, 1) is distance 1, unreachable, then reached through 2: 0.1 + 0.5 = 0.6 != 1.
  EXPECT_EQ(pf->Value(0, 1), N);
  EXPECT_EQ(pf->LinkCount(0, 1), 2);
  EXPECT_EQ(pf->Value(0, 2), m.Value(0, 2));
  EXPECT_EQ(pf->Value(1, 2), 0.5f);
  EXPECT_FALSE(ProximityMatrix().Transform2FastPF(0));
}

// ---- FastPFQ, FastPFQ2 ----

TEST(FastPFQ, RefusesSimilaritiesAndEmptyWithoutConverting) {
  ProximityMatrix m = Triangle();
  m.Sim2Dis();  // now type 1
  EXPECT_FALSE(m.FastPFQ(0, 2));
  EXPECT_FALSE(m.FastPFQ2(0, 2));
  EXPECT_EQ(m.CurrentMatrixType(), 1);
  EXPECT_FALSE(ProximityMatrix().FastPFQ(0, 2));
  EXPECT_FALSE(ProximityMatrix().FastPFQ2(0, 2));
}

// ---- Transform2Geodesic ----

TEST(Transform2Geodesic, SimilaritiesAreConvertedInTheCopyOnly) {
  ProximityMatrix m = MakeMatrix(3, 2,
                                 {N, 0.75f, N,     //
                                  0.75f, N, 0.5f,  //
                                  N, 0.5f, N});
  const NetworkResult g = m.Transform2Geodesic();
  ASSERT_TRUE(g);
  EXPECT_EQ(m.CurrentMatrixType(), 2);
  EXPECT_EQ(m.Value(0, 1), 0.75f);
  EXPECT_EQ(g->CurrentMatrixType(), 4);
  EXPECT_EQ(g->Value(0, 2), 0.75f);  // 0.25 + 0.5
  EXPECT_FALSE(ProximityMatrix().Transform2Geodesic());
}

TEST(Transform2Geodesic, WalksAroundNegativeDistancesStopCountingAtTheLargestCount) {
  // Regression: every step through a negative distance doubles the walk, and its link count
  // went past 32 bits after about 31 nodes.
  constexpr std::int32_t n = 40;
  std::vector<float> values(static_cast<std::size_t>(n * n), -0.5f);
  const NetworkResult g = MakeMatrix(n, 3, values).Transform2Geodesic();
  ASSERT_TRUE(g);
  EXPECT_EQ(g->Value(0, 1), -549755813888.0f);
  EXPECT_EQ(g->LinkCount(0, 1), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(g->Value(5, 5), 0.0f);
}

// ---- Agreement with the step-by-step loops ----

// Levels with ties, no links, distance 1, negatives, values above 1 and tiny values whose
// high powers underflow.
const std::vector<float> kLevels = {0.0f, 1e-7f, 0.1f, 0.2f,  0.25f, 0.3f, 0.4f,  0.5f,
                                    0.5f, 0.9f,  1.0f, -1.0f, -1.0f, 1.3f, -0.2f, 0.05f};

DenseNetwork WithRemovals(DenseNetwork relaxed, const ProximityMatrix& source) {
  const std::int32_t n = relaxed.n;
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = i + 1; j < n; ++j) {
      const auto ij = static_cast<std::size_t>(i * n + j);
      const auto ji = static_cast<std::size_t>(j * n + i);
      if (relaxed.values[ij] != source.Value(i, j)) relaxed.values[ij] = relaxed.values[ji] = N;
    }
  }
  return relaxed;
}

TEST(Pathfinder, AgreesWithTheStepByStepLoopsOnRandomMatrices) {
  std::mt19937 random(4242);
  for (int round = 0; round < 120; ++round) {
    const std::int32_t n = 2 + static_cast<std::int32_t>(random() % 24);
    const std::uint8_t r = std::vector<std::uint8_t>{0, 1, 2, 3, 7, 40}[random() % 6];
    const std::int32_t q = static_cast<std::int32_t>(random() % 5);
    const ProximityMatrix source = MakeMatrix(n, 3, RandomSymmetric(n, kLevels, random));
    SCOPED_TRACE("round " + std::to_string(round) + " n " + std::to_string(n) + " r " +
                 std::to_string(r) + " q " + std::to_string(q));

    ProximityMatrix copy = source;
    const NetworkResult pf = copy.Transform2FastPF(r);
    const DenseNetwork expectedPf =
        WithRemovals(ReferencePathfinderRelax(source, r, -1, true), source);
    ASSERT_TRUE(pf);
    ASSERT_EQ(Cells(*pf), expectedPf.values);
    ASSERT_EQ(LinkCounts(*pf), expectedPf.linkCounts);

    const NetworkResult pfq = source.FastPFQ(r, q);
    const DenseNetwork expectedQ =
        WithRemovals(ReferencePathfinderRelax(source, r, q, true), source);
    ASSERT_TRUE(pfq);
    ASSERT_EQ(Cells(*pfq), expectedQ.values);
    ASSERT_EQ(LinkCounts(*pfq), expectedQ.linkCounts);

    const NetworkResult pfq2 = source.FastPFQ2(r, q);
    const DenseNetwork forward = ReferencePathfinderRelax(source, r, q, true);
    const DenseNetwork backward = ReferencePathfinderRelax(source, r, q, false);
    ASSERT_TRUE(pfq2);
    for (std::int32_t i = 0; i < n; ++i) {
      for (std::int32_t j = i + 1; j < n; ++j) {
        const auto ij = static_cast<std::size_t>(i * n + j);
        const float s = source.Value(i, j);
        const bool kept = s == forward.values[ij] && s == backward.values[ij];
        ASSERT_EQ(pfq2->Value(i, j), kept ? (std::fabs(s) == 1.0f ? U : s) : N) << i << "," << j;
        ASSERT_EQ(pfq2->Value(j, i), pfq2->Value(i, j));
      }
    }
  }
}

TEST(Transform2Geodesic, AgreesWithTheStepByStepLoopsOnRandomMatrices) {
  std::mt19937 random(99);
  for (int round = 0; round < 60; ++round) {
    const std::int32_t n = 2 + static_cast<std::int32_t>(random() % 30);
    const std::int32_t type = 1 + static_cast<std::int32_t>(random() % 4);
    const ProximityMatrix source = MakeMatrix(n, type, RandomSymmetric(n, kLevels, random));
    const NetworkResult g = source.Transform2Geodesic();
    const DenseNetwork expected = ReferenceGeodesic(source);
    ASSERT_TRUE(g);
    ASSERT_EQ(Cells(*g), expected.values) << "round " << round;
    ASSERT_EQ(LinkCounts(*g), expected.linkCounts) << "round " << round;
  }
}

}  // namespace
}  // namespace sylvora
