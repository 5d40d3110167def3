#include "sparse/sparse_vector_single.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>
#include <random>
#include <string>
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

// Loading, dense copies, magnitude, similarity and normalising against the dense array on
// random sizes: zeros, negatives, ties, elements past the declared size and past the other
// array's end, and sums kept in single precision in ascending element order.
TEST(SparseVectorSingleDense, AgreesWithTheDenseArrayOnRandomSizes) {
  std::mt19937 random(2024);
  const std::vector<float> palette = {0, 0, 0, 1, 2, 0.5f, -1, 3e-4f, 1e-3f, 7};
  const auto pick = [&] { return palette[random() % palette.size()]; };
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    const auto size = static_cast<std::int32_t>(random() % 30);  // entries 1..size
    std::vector<float> dense(static_cast<std::size_t>(size) + 1, 0.0f);
    for (std::int32_t e = 1; e <= size; ++e) dense[static_cast<std::size_t>(e)] = pick();
    // Dimensions below, at and past the array's end; negative declares nothing.
    const std::int32_t dims = static_cast<std::int32_t>(random() % (size + 6)) - 2;
    SparseVectorSingle v = FromWrites({{3, 9.0f}});  // replaced by the load
    v.SetVector(dense, dims);
    const std::int32_t n = std::max(dims, 0);
    std::vector<float> expected(static_cast<std::size_t>(n) + 1, 0.0f);
    Elements stored;
    float sum = 0.0f;
    for (std::int32_t e = 1; e <= std::min(n, size); ++e) {
      const float x = dense[static_cast<std::size_t>(e)];
      expected[static_cast<std::size_t>(e)] = x;
      if (x != 0.0f) stored.emplace_back(e, x), sum += x * x;
    }
    ASSERT_EQ(Stored(v), stored);
    EXPECT_EQ(v.DimensionCount(), n);
    EXPECT_EQ(v.GetVectorArr(0), expected);
    const auto m = static_cast<std::int32_t>(random() % 35) - 2;
    std::vector<float> copy = expected;
    if (m != 0) copy.resize(static_cast<std::size_t>(std::max(m, 0)) + 1, 0.0f);  // 0: declared
    EXPECT_EQ(v.GetVectorArr(m), copy);
    EXPECT_EQ(v.Magnitude(), std::sqrt(sum));

    std::vector<float> other(random() % 35 + 1, 0.0f);
    for (std::size_t e = 1; e < other.size(); ++e) other[e] = pick();
    float dot = 0.0f;
    for (const auto& [e, x] : stored) {
      if (static_cast<std::size_t>(e) < other.size()) dot += x * other[static_cast<std::size_t>(e)];
    }
    const float otherMagnitude = pick();
    EXPECT_EQ(v.GetSimilarity(other, 1, otherMagnitude), dot);
    EXPECT_EQ(v.GetSimilarity(other, 7, otherMagnitude), dot);  // any measure but 2: inner
    const float cosine = otherMagnitude <= 0.0f ? -1.0f
                         : dot > 0.0f           ? dot / (v.Magnitude() * otherMagnitude)
                                                : dot;
    EXPECT_EQ(v.GetSimilarity(other, 2, otherMagnitude), cosine);

    const float magnitude = v.Magnitude();
    v.Normalise();
    for (std::size_t k = 0; k < stored.size(); ++k) {
      EXPECT_EQ(v.ValueByListIndex(static_cast<std::int32_t>(k) + 1),
                magnitude > 0.0f ? stored[k].second / magnitude : stored[k].second);
    }
  }
}

TEST(SparseVectorSingleListIndex, ReadsAndWritesByListPosition) {
  SparseVectorSingle v = FromWrites({{10, 1.0f}, {20, 2.0f}, {30, 3.0f}});
  EXPECT_EQ(v.ElementByListIndex(2), 20.0f);
  EXPECT_EQ(v.ValueByListIndex(3), 3.0f);
  // The write stores what it is given, zero and negatives included, and moves nothing.
  v.SetValueByListIndex(1, 0.0f);
  v.SetValueByListIndex(2, -7.0f);
  EXPECT_FALSE(v.IsEmpty(10));
  // Positions out of range read 0 and ignore writes.
  for (const std::int32_t index : {0, -1, 4, 1000}) {
    EXPECT_EQ(v.ValueByListIndex(index), 0.0f) << index;
    EXPECT_EQ(v.ElementByListIndex(index), 0.0f) << index;
    v.SetValueByListIndex(index, 5.0f);
  }
  EXPECT_EQ(Stored(v), (Elements{{10, 0.0f}, {20, -7.0f}, {30, 3.0f}}));
}

// On a vector built by writes (dimensions undeclared), and past the declared dimensions.
TEST(SparseVectorSingleTruncateLocal, WorksOnAVectorBuiltByWritesAndDropsElementsPastItsSize) {
  SparseVectorSingle written = FromWrites({{1, 1}, {2, 5}, {3, 5}, {4, 3}});
  written.TruncateLocal(2);
  EXPECT_EQ(Stored(written), (Elements{{2, 5.0f}, {3, 5.0f}}));
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
  EXPECT_EQ(v.LastElementIndex(), 8);
  SparseVectorSingle empty;
  EXPECT_EQ(empty.FirstElementIndex(), -1);
  EXPECT_EQ(empty.LastElementIndex(), -1);
  // Writes do not move the cursor.
  SparseVectorSingle w = FromWrites({{2, 1}, {4, 1}, {6, 1}});
  EXPECT_EQ(w.FirstElementIndex(), 2);
  EXPECT_EQ(w.NextElementIndex(), 4);  // cursor at position 2
  w.SetValue(1, 1.0f);                 // positions shift; the cursor does not
  EXPECT_EQ(w.NextElementIndex(), 4);  // position 3 now holds 4
  w.DeleteElement(1);
  EXPECT_EQ(w.NextElementIndex(), -1);  // position 4 is past the three elements left
}

TEST(SparseVectorSingleCopy, CopiesAndMovesKeepContentDimensionsAndCursor) {
  // Each source declares 10 dimensions and has its cursor at position 1. The copy then gets
  // elements 3 and 9 written, and its next element shows where its cursor stood.
  struct Case {
    const char* name;
    Elements writes;
    bool deleteAll;  // empty it again by deletes, which keep its storage
  };
  const std::vector<Case> cases = {
      {"never written", {}, false},
      {"emptied by deletes", {{4, 1}, {6, 2}}, true},
      {"one element", {{2, 5}}, false},
      {"grown in the middle", {{1, 1}, {2, 2}, {7, 3}, {5, 4}, {8, 5}, {6, 6}, {2, 7}}, false},
  };
  enum class Way { kConstruct, kAssignOverLarger, kAssignOverEmpty, kMoveConstruct, kMoveAssign };
  for (const Case& c : cases) {
    for (const Way way : {Way::kConstruct, Way::kAssignOverLarger, Way::kAssignOverEmpty,
                          Way::kMoveConstruct, Way::kMoveAssign}) {
      SCOPED_TRACE(std::string(c.name) + ", way " + std::to_string(static_cast<int>(way)));
      SparseVectorSingle source;
      source.SetVector({}, 10);
      for (const auto& [element, value] : c.writes) source.SetValue(element, value);
      if (c.deleteAll) {
        while (source.NZElementCount() > 0) source.DeleteElement(source.ElementIndexes().back());
      }
      source.FirstElementIndex();
      const Elements expected = Stored(source);

      SparseVectorSingle target = FromWrites({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}});
      if (way == Way::kAssignOverEmpty) target = SparseVectorSingle();
      SparseVectorSingle copy;
      switch (way) {
        case Way::kConstruct:
          copy = SparseVectorSingle(source);
          break;
        case Way::kAssignOverLarger:
        case Way::kAssignOverEmpty:
          target = source;
          copy = std::move(target);
          break;
        case Way::kMoveConstruct:
          copy = SparseVectorSingle(std::move(source));
          break;
        case Way::kMoveAssign:
          target = std::move(source);
          copy = std::move(target);
          break;
      }
      if (way != Way::kMoveConstruct && way != Way::kMoveAssign) {
        EXPECT_EQ(Stored(source), expected);
      }
      EXPECT_EQ(Stored(copy), expected);
      EXPECT_EQ(copy.DimensionCount(), 10);
      copy.SetValue(3, 0.5f);
      copy.SetValue(9, 0.5f);
      Elements grown = expected;
      grown.emplace_back(3, 0.5f);
      grown.emplace_back(9, 0.5f);
      std::sort(grown.begin(), grown.end());
      EXPECT_EQ(Stored(copy), grown);
      EXPECT_EQ(copy.NextElementIndex(), grown[1].first);
    }
  }
}

TEST(SparseVectorSingleNormalise, LeavesAZeroMagnitudeVectorAlone) {
  SparseVectorSingle v = FromWrites({{3, 1}});
  v.SetValueByListIndex(1, 0.0f);
  v.Normalise();
  EXPECT_EQ(Stored(v), (Elements{{3, 0.0f}}));
}

}  // namespace
}  // namespace sylvora
