#include "sparse/sparse_vector_single.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <ostream>
#include <random>
#include <utility>
#include <vector>

#include "sparse/sorting_helpers.h"

namespace sylvora {
namespace {

using Elements = std::vector<std::pair<std::int32_t, float>>;

// The stored (element, value) pairs in list order.
Elements Stored(const SparseVectorSingle& v) {
  Elements out;
  for (std::int32_t k = 1; k <= v.NZElementCount(); ++k) {
    out.emplace_back(static_cast<std::int32_t>(v.ElementByListIndex(k)), v.ValueByListIndex(k));
  }
  return out;
}

SparseVectorSingle FromWrites(const Elements& writes) {
  SparseVectorSingle v;
  for (const auto& [element, value] : writes) v.SetValue(element, value);
  return v;
}

// A dense array with entry 0 unused.
std::vector<float> Dense(std::vector<float> oneBased) {
  oneBased.insert(oneBased.begin(), 0.0f);
  return oneBased;
}

TEST(SparseVectorSingleWrite, MatchesAnOrderedMapUnderRandomWritesAndDeletes) {
  std::mt19937 random(20240501);
  // Elements below 1 are never stored; zero and negative writes delete.
  std::uniform_int_distribution<std::int32_t> element(-2, 60);
  std::uniform_int_distribution<int> action(0, 9);
  std::uniform_real_distribution<float> value(-1.0f, 4.0f);
  SparseVectorSingle v;
  std::map<std::int32_t, float> model;
  for (int step = 0; step < 5000; ++step) {
    const std::int32_t e = element(random);
    if (action(random) == 0) {
      v.DeleteElement(e);
      model.erase(e);
    } else {
      const float x = value(random);
      v.SetValue(e, x);
      if (x <= 0.0f || e < 1) {
        model.erase(e);
      } else {
        model[e] = x;
      }
    }
  }
  EXPECT_EQ(Stored(v), Elements(model.begin(), model.end()));
  for (std::int32_t e = -2; e <= 61; ++e) {
    const auto it = model.find(e);
    EXPECT_EQ(v.Value(e), it == model.end() ? 0.0f : it->second) << e;
    EXPECT_EQ(v.IsEmpty(e), it == model.end()) << e;
  }
}

TEST(SparseVectorSingleDimensions, UndeclaredIsTheLargestElementAndZeroWhenEmpty) {
  SparseVectorSingle v;
  EXPECT_EQ(v.DimensionCount(), 0);
  v.SetValue(12, 1.0f);
  v.SetValue(4, 1.0f);
  EXPECT_EQ(v.DimensionCount(), 12);
  v.DeleteElement(12);
  EXPECT_EQ(v.DimensionCount(), 4);
}

TEST(SparseVectorSingleDimensions, SetVectorDeclaresItsDimensions) {
  SparseVectorSingle v;
  v.SetVector(Dense({0, 1, 0, 0, 0}), 5);
  EXPECT_EQ(v.DimensionCount(), 5);
  v.SetValue(9, 1.0f);  // a write past the declared size keeps the declaration
  EXPECT_EQ(v.DimensionCount(), 5);
}

TEST(SparseVectorSingleSetVector, StoresNonZeroEntriesIncludingNegatives) {
  SparseVectorSingle v = FromWrites({{1, 9.0f}, {7, 9.0f}});
  v.SetVector(Dense({0, -1, 0, 4}), 4);
  EXPECT_EQ(Stored(v), (Elements{{2, -1.0f}, {4, 4.0f}}));
  EXPECT_EQ(v.DimensionCount(), 4);
}

TEST(SparseVectorSingleSetVector, ReadsOnlyTheGivenDimensions) {
  SparseVectorSingle v;
  v.SetVector(Dense({1, 2, 3, 4}), 2);
  EXPECT_EQ(Stored(v), (Elements{{1, 1.0f}, {2, 2.0f}}));
  // Entries the array does not have count as 0.
  v.SetVector(Dense({1, 2}), 6);
  EXPECT_EQ(Stored(v), (Elements{{1, 1.0f}, {2, 2.0f}}));
  EXPECT_EQ(v.DimensionCount(), 6);
  v.SetVector(Dense({1, 2}), -3);
  EXPECT_EQ(v.NZElementCount(), 0);
  EXPECT_EQ(v.DimensionCount(), 0);
}

TEST(SparseVectorSingleGetVectorArr, ZeroAsksForTheDeclaredDimensions) {
  SparseVectorSingle v;
  v.SetVector(Dense({0, 2, 0, 5}), 4);
  EXPECT_EQ(v.GetVectorArr(0), Dense({0, 2, 0, 5}));
  EXPECT_EQ(v.GetVectorArr(6), Dense({0, 2, 0, 5, 0, 0}));
  EXPECT_EQ(v.GetVectorArr(3), Dense({0, 2, 0}));  // elements past 3 are left out
}

TEST(SparseVectorSingleGetVectorArr, UndeclaredVectorGivesNoElementsForZero) {
  const SparseVectorSingle v = FromWrites({{2, 1.0f}});
  EXPECT_EQ(v.GetVectorArr(0).size(), 1u);
  EXPECT_EQ(v.GetVectorArr(-5).size(), 1u);
  EXPECT_EQ(v.GetVectorArr(2), Dense({0, 1}));
}

TEST(SparseVectorSingleListIndex, ReadsAndWritesByListPosition) {
  SparseVectorSingle v = FromWrites({{10, 1.0f}, {20, 2.0f}, {30, 3.0f}});
  EXPECT_EQ(v.ElementByListIndex(2), 20.0f);
  EXPECT_EQ(v.ValueByListIndex(3), 3.0f);
  // The write stores what it is given, zero and negatives included, and moves nothing.
  v.SetValueByListIndex(1, 0.0f);
  v.SetValueByListIndex(2, -7.0f);
  EXPECT_EQ(Stored(v), (Elements{{10, 0.0f}, {20, -7.0f}, {30, 3.0f}}));
  EXPECT_FALSE(v.IsEmpty(10));
}

TEST(SparseVectorSingleListIndex, PositionsOutOfRangeReadZeroAndIgnoreWrites) {
  SparseVectorSingle v = FromWrites({{10, 1.0f}});
  for (const std::int32_t index : {0, -1, 2, 1000}) {
    SCOPED_TRACE(index);
    EXPECT_EQ(v.ValueByListIndex(index), 0.0f);
    EXPECT_EQ(v.ElementByListIndex(index), 0.0f);
    v.SetValueByListIndex(index, 5.0f);
  }
  EXPECT_EQ(Stored(v), (Elements{{10, 1.0f}}));
}

TEST(SparseVectorSingleMagnitude, IsTheEuclideanLength) {
  EXPECT_EQ(FromWrites({{1, 3.0f}, {8, 4.0f}}).Magnitude(), 5.0f);
  EXPECT_EQ(SparseVectorSingle().Magnitude(), 0.0f);
  SparseVectorSingle v;
  v.SetVector(Dense({-3, 0, 4}), 3);
  EXPECT_EQ(v.Magnitude(), 5.0f);
}

TEST(SparseVectorSingleMagnitude, AccumulatesInSinglePrecision) {
  // Each 9e-8 added to a float sum near 1 rounds up to one unit in the last place (1.19e-7),
  // so the float sum ends well above the exact one that a double sum would give.
  SparseVectorSingle v;
  std::vector<float> dense(1, 0.0f);
  dense.push_back(1.0f);
  for (int i = 0; i < 1000; ++i) dense.push_back(3e-4f);
  v.SetVector(dense, static_cast<std::int32_t>(dense.size()) - 1);
  float sum = 0.0f;
  for (std::size_t e = 1; e < dense.size(); ++e) sum += dense[e] * dense[e];
  EXPECT_EQ(v.Magnitude(), std::sqrt(sum));
}

struct SimilarityCase {
  const char* name;
  Elements stored;
  std::vector<float> other;  // dense, elements 1..
  std::int32_t metric;
  float otherMagnitude;
  float expected;
};

void PrintTo(const SimilarityCase& c, std::ostream* out) { *out << c.name; }

class SparseVectorSingleSimilarity : public ::testing::TestWithParam<SimilarityCase> {};

TEST_P(SparseVectorSingleSimilarity, GivesTheExpectedValue) {
  const SimilarityCase& c = GetParam();
  const SparseVectorSingle v = [&] {
    SparseVectorSingle out;
    std::vector<float> dense(1, 0.0f);
    for (const auto& [e, x] : c.stored) {
      if (dense.size() <= static_cast<std::size_t>(e))
        dense.resize(static_cast<std::size_t>(e) + 1);
      dense[static_cast<std::size_t>(e)] = x;
    }
    out.SetVector(dense, static_cast<std::int32_t>(dense.size()) - 1);
    return out;
  }();
  EXPECT_FLOAT_EQ(v.GetSimilarity(Dense(c.other), c.metric, c.otherMagnitude), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SparseVectorSingleSimilarity,
    ::testing::Values(
        SimilarityCase{"inner", {{1, 1}, {3, 2}}, {4, 9, 5}, 1, 0.0f, 14.0f},
        SimilarityCase{"otherMetricIsInner", {{1, 1}, {3, 2}}, {4, 9, 5}, 7, 1.0f, 14.0f},
        SimilarityCase{"cosine", {{1, 3}, {2, 4}}, {3, 4}, 2, 5.0f, 1.0f},
        SimilarityCase{
            "cosinePartial", {{1, 1}}, {1, 1}, 2, std::sqrt(2.0f), 1.0f / std::sqrt(2.0f)},
        SimilarityCase{"cosineZeroMagnitude", {{1, 1}}, {1}, 2, 0.0f, -1.0f},
        SimilarityCase{"cosineNegativeMagnitude", {{1, 1}}, {1}, 2, -3.0f, -1.0f},
        SimilarityCase{"cosineNegativeDotUnchanged", {{1, -2}, {2, 1}}, {3, 1}, 2, 1.0f, -5.0f},
        SimilarityCase{"cosineZeroDot", {{2, 1}}, {3, 0}, 2, 3.0f, 0.0f},
        SimilarityCase{"emptyInner", {}, {1, 2}, 1, 1.0f, 0.0f},
        SimilarityCase{"emptyCosineZeroMagnitude", {}, {0, 0}, 2, 0.0f, -1.0f},
        SimilarityCase{"elementsPastTheArrayCountZero", {{1, 2}, {9, 5}}, {3}, 1, 3.0f, 6.0f}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SparseVectorSingleTruncateLocal, WorksOnAVectorBuiltByWrites) {
  SparseVectorSingle v = FromWrites({{1, 1}, {2, 5}, {3, 5}, {4, 3}});
  v.TruncateLocal(2);
  EXPECT_EQ(Stored(v), (Elements{{2, 5.0f}, {3, 5.0f}}));
}

TEST(SparseVectorSingleTruncateLocal, DropsElementsPastTheDeclaredDimensions) {
  SparseVectorSingle v;
  v.SetVector(Dense({1, 2}), 2);
  v.SetValue(7, 9.0f);
  v.TruncateLocal(5);
  EXPECT_EQ(Stored(v), (Elements{{1, 1.0f}, {2, 2.0f}}));
}

// The truncation spelled out: SelectTopK over the dense copy, then SetVector.
Elements TruncatedBySelection(const SparseVectorSingle& v, std::int32_t count) {
  const std::int32_t n = v.DimensionCount();
  const std::vector<float> dense = v.GetVectorArr(n);
  std::int32_t k = count;
  const std::vector<std::int32_t> picks = SelectTopK(dense, -1, k, true, 1);
  std::vector<float> kept(dense.size(), 0.0f);
  for (std::size_t slot = 1; slot < picks.size(); ++slot) {
    if (picks[slot] >= 1)
      kept[static_cast<std::size_t>(picks[slot])] = dense[static_cast<std::size_t>(picks[slot])];
  }
  SparseVectorSingle expected;
  expected.SetVector(kept, n);
  return Stored(expected);
}

TEST(SparseVectorSingleTruncateLocal, AgreesWithSelectionOverTheDenseCopy) {
  std::mt19937 random(77);
  // Few distinct values make ties; stored zeros and negatives come from the list-index write;
  // large values and NaN take the slow path.
  const std::vector<float> palette = {
      1, 2, 2, 3, 0.5f, -1, -1, 0, 4e7f, -3e7f, std::numeric_limits<float>::quiet_NaN()};
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const std::int32_t n = 1 + static_cast<std::int32_t>(random() % 40);
    std::vector<float> dense(static_cast<std::size_t>(n) + 1, 0.0f);
    const bool exotic = round % 4 == 0;
    for (std::int32_t e = 1; e <= n; ++e) {
      if (random() % 3 != 0) continue;
      const std::size_t limit = exotic ? palette.size() : 7;
      dense[static_cast<std::size_t>(e)] = palette[random() % limit];
    }
    SparseVectorSingle v;
    v.SetVector(dense, n);
    if (v.NZElementCount() > 0 && round % 3 == 0) v.SetValueByListIndex(1, 0.0f);
    const std::int32_t count = static_cast<std::int32_t>(random() % (n + 3)) - 1;
    const Elements expected = TruncatedBySelection(v, count);
    v.TruncateLocal(count);
    const Elements actual = Stored(v);
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t k = 0; k < actual.size(); ++k) {
      EXPECT_EQ(actual[k].first, expected[k].first);
      if (!std::isnan(expected[k].second)) {
        EXPECT_EQ(actual[k].second, expected[k].second);
      }
    }
    EXPECT_EQ(v.DimensionCount(), n);
  }
}

TEST(SparseVectorSingleIteration, WalksTheElementsInAscendingOrder) {
  SparseVectorSingle v = FromWrites({{8, 1}, {2, 1}, {5, 1}});
  std::vector<std::int32_t> seen;
  for (std::int32_t e = v.FirstElementIndex(); e != -1; e = v.NextElementIndex()) seen.push_back(e);
  EXPECT_EQ(seen, (std::vector<std::int32_t>{2, 5, 8}));
  EXPECT_EQ(v.NextElementIndex(), -1);  // and stays past the end
  EXPECT_EQ(v.NextElementIndex(), -1);
  EXPECT_EQ(v.LastElementIndex(), 8);
  EXPECT_EQ(v.NextElementIndex(), -1);
  SparseVectorSingle empty;
  EXPECT_EQ(empty.FirstElementIndex(), -1);
  EXPECT_EQ(empty.LastElementIndex(), -1);
}

TEST(SparseVectorSingleIteration, WritesDoNotMoveTheCursor) {
  SparseVectorSingle v = FromWrites({{2, 1}, {4, 1}, {6, 1}});
  EXPECT_EQ(v.FirstElementIndex(), 2);
  EXPECT_EQ(v.NextElementIndex(), 4);  // cursor at position 2
  v.SetValue(1, 1.0f);                 // positions shift; the cursor does not
  EXPECT_EQ(v.NextElementIndex(), 4);  // position 3 now holds 4
  v.DeleteElement(1);
  EXPECT_EQ(v.NextElementIndex(), -1);  // position 4 is past the three elements left
}

TEST(SparseVectorSingleNormalise, ScalesToUnitLength) {
  SparseVectorSingle v = FromWrites({{1, 3}, {4, 4}});
  v.Normalise();
  EXPECT_EQ(Stored(v), (Elements{{1, 0.6f}, {4, 0.8f}}));
  EXPECT_FLOAT_EQ(v.Magnitude(), 1.0f);
}

TEST(SparseVectorSingleNormalise, LeavesAZeroMagnitudeVectorAlone) {
  SparseVectorSingle v = FromWrites({{3, 1}});
  v.SetValueByListIndex(1, 0.0f);
  v.Normalise();
  EXPECT_EQ(Stored(v), (Elements{{3, 0.0f}}));
  SparseVectorSingle empty;
  empty.Normalise();
  EXPECT_EQ(empty.NZElementCount(), 0);
}

}  // namespace
}  // namespace sylvora
