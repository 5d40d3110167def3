#include "sparse/sorting_helpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace sylvora {
namespace {

using Positions = std::vector<std::int32_t>;

// Values at positions 1..n (entry 0 unused).
std::vector<float> OneBased(std::vector<float> values) {
  values.insert(values.begin(), 0.0f);
  return values;
}

struct TopKCase {
  const char* name;
  std::vector<float> values;  // the whole array, from position 0
  std::int32_t exclude;
  std::int32_t count;
  bool descending;
  std::uint8_t start;
  std::int32_t loweredCount;
  Positions expected;  // the whole result, from entry 0
};

void PrintTo(const TopKCase& c, std::ostream* out) { *out << c.name; }

class SelectTopK : public ::testing::TestWithParam<TopKCase> {};

TEST_P(SelectTopK, PicksTheExpectedPositions) {
  const TopKCase& c = GetParam();
  std::int32_t count = c.count;
  EXPECT_EQ(sylvora::SelectTopK(c.values, c.exclude, count, c.descending, c.start), c.expected);
  EXPECT_EQ(count, c.loweredCount);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SelectTopK,
    ::testing::Values(
        TopKCase{"tiesToTheLowerPosition", OneBased({1, 5, 5, 3}), -1, 2, true, 1, 2, {0, 2, 3}},
        TopKCase{"excluded", OneBased({1, 5, 5, 3}), 2, 2, true, 1, 2, {0, 3, 4}},
        TopKCase{"ascendingOne", OneBased({1, 5, 5, 3}), -1, 1, false, 1, 1, {0, 1}},
        TopKCase{
            "countLoweredToPositions", OneBased({1, 5, 5, 3}), -1, 10, true, 1, 4, {0, 2, 3, 4, 1}},
        TopKCase{"ascendingTies", OneBased({2, 1, 2, 1}), -1, 4, false, 1, 4, {0, 2, 4, 1, 3}},
        // From position 0 the count is lowered to two less than the number of values.
        TopKCase{"zeroBasedLowering", {0.3f, 0.9f, 0.1f, 0.7f}, 1, 5, true, 0, 2, {3, 0}},
        TopKCase{"zeroBasedAscending", {0.3f, 0.9f, 0.1f, 0.7f}, 2, 2, false, 0, 2, {0, 3}},
        // The value -1 takes part like any other.
        TopKCase{"minusOneIsAValue", {4, -1, 2, -1, 3}, 0, 3, false, 0, 3, {1, 3, 2}},
        // Nothing left to pick: the slot repeats the previous pick.
        TopKCase{"exhaustedRepeats", OneBased({7, 9}), 2, 2, true, 1, 2, {0, 1, 1}},
        TopKCase{"nothingEverPicked", OneBased({7}), 1, 1, true, 1, 1, {0, -1}},
        TopKCase{"zeroCount", OneBased({1, 2}), -1, 0, true, 1, 0, {0}},
        TopKCase{"negativeCount", OneBased({1, 2}), -1, -3, true, 1, -3, {0}},
        TopKCase{"emptyFromZero", {}, -1, 3, true, 0, -2, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SelectTopKProperties, DescendingPicksAreARankingByValueThenPosition) {
  std::mt19937 random(99);
  for (int round = 0; round < 200; ++round) {
    const std::size_t n = 1 + random() % 30;
    std::vector<float> values(n + 1);
    for (std::size_t p = 1; p <= n; ++p) values[p] = static_cast<float>(random() % 5);
    std::int32_t count = static_cast<std::int32_t>(n);
    const Positions picks = sylvora::SelectTopK(values, -1, count, true, 1);
    Positions ranking(n);
    for (std::size_t p = 0; p < n; ++p) ranking[p] = static_cast<std::int32_t>(p + 1);
    std::stable_sort(ranking.begin(), ranking.end(),
                     [&](std::int32_t a, std::int32_t b) { return values[a] > values[b]; });
    ranking.insert(ranking.begin(), 0);
    EXPECT_EQ(picks, ranking);
  }
}

EdgeRecord Edge(float weight, std::int32_t from, std::int32_t to) { return {weight, from, to}; }

// Equal weights end in the order this Shell sort leaves them, worked out by hand pass by pass:
//  * 1 1 2 1 descending: the gap-2 pass moves the 2 past the first 1, which then sits after the
//    second: no stable sort would leave them so.
//  * 3 1 3 2 3 descending. Gap 2: D moves above B -> A D C B E. Gap 1: C moves above D ->
//    A C D B E; E moves above B and D, not above C -> A C E D B.
//  * 2 1 2 0 1 2 0 1 ascending; gaps 4, 2, 1. Each pass moves a record only past records of
//    strictly larger weight. Gap 4: e above a, g above c -> e b g d a f c h. Gap 2: evens e g a
//    c -> g e a c; odds b d f h -> d b h f. Gap 1: h moves above a only -> g d e b h a c f.
TEST(SortEdges, TiesEndInTheShellSortOrder) {
  struct Case {
    std::vector<float> weights;
    bool descending;
    std::vector<std::int32_t> order;  // of the records' first positions
  };
  const Case cases[] = {
      {{0.5f, 0.9f, 0.1f}, true, {1, 0, 2}},
      {{0.5f, 0.9f, 0.1f}, false, {2, 0, 1}},
      {{1, 1, 2, 1}, true, {2, 1, 0, 3}},
      {{2, 2, 1, 2}, false, {2, 1, 0, 3}},
      {{3, 1, 3, 2, 3}, true, {0, 2, 4, 3, 1}},
      {{2, 1, 2, 0, 1, 2, 0, 1}, false, {6, 3, 4, 1, 7, 0, 2, 5}},
      {{}, true, {}},
      {{1}, false, {0}},
  };
  for (const Case& c : cases) {
    std::vector<EdgeRecord> edges;
    for (std::size_t i = 0; i < c.weights.size(); ++i) {
      const auto node = static_cast<std::int32_t>(i);
      edges.push_back(Edge(c.weights[i], node, node + 10));
    }
    SortEdges(edges, c.descending);
    std::vector<std::int32_t> order;
    for (const EdgeRecord& e : edges) {
      EXPECT_EQ(e.ToNode, e.FromNode + 10);  // the nodes travel with their weight
      order.push_back(e.FromNode);
    }
    EXPECT_EQ(order, c.order);
  }
}

TEST(SortEdges, SortsRandomListsIntoAPermutation) {
  std::mt19937 random(12);
  for (int round = 0; round < 50; ++round) {
    std::vector<EdgeRecord> edges(random() % 200);
    for (std::size_t i = 0; i < edges.size(); ++i) {
      edges[i] = Edge(static_cast<float>(random() % 20) / 4.0f, static_cast<std::int32_t>(i), 0);
    }
    std::vector<EdgeRecord> sorted = edges;
    const bool descending = round % 2 == 0;
    SortEdges(sorted, descending);
    for (std::size_t i = 1; i < sorted.size(); ++i) {
      if (descending) {
        EXPECT_GE(sorted[i - 1].Weight, sorted[i].Weight);
      } else {
        EXPECT_LE(sorted[i - 1].Weight, sorted[i].Weight);
      }
    }
    std::vector<bool> seen(edges.size(), false);
    for (const EdgeRecord& e : sorted) {
      EXPECT_EQ(e.Weight, edges[static_cast<std::size_t>(e.FromNode)].Weight);
      seen[static_cast<std::size_t>(e.FromNode)] = true;
    }
    EXPECT_TRUE(std::all_of(seen.begin(), seen.end(), [](bool b) { return b; }));
  }
}

TEST(SortEdges, ReportsEachPassAndStopsWhenAsked) {
  std::vector<EdgeRecord> edges;
  for (std::int32_t i = 0; i < 8; ++i) edges.push_back(Edge(static_cast<float>(i), i, i));
  std::vector<std::int64_t> passes;
  const ProgressCallback counting = [&](std::string_view, std::int64_t done, std::int64_t total) {
    EXPECT_EQ(total, 3);  // gaps 4, 2, 1
    passes.push_back(done);
    return true;
  };
  SortEdges(edges, true, counting);
  EXPECT_EQ(passes, (std::vector<std::int64_t>{1, 2, 3}));
  EXPECT_EQ(edges.front().Weight, 7.0f);

  // Ascending 0..7 sorted descending, stopped after the gap-4 pass: only that pass ran.
  std::vector<EdgeRecord> stopped;
  for (std::int32_t i = 0; i < 8; ++i) stopped.push_back(Edge(static_cast<float>(i), i, i));
  SortEdges(stopped, true, [](std::string_view, std::int64_t, std::int64_t) { return false; });
  std::vector<std::int32_t> order;
  for (const EdgeRecord& e : stopped) order.push_back(e.FromNode);
  EXPECT_EQ(order, (std::vector<std::int32_t>{4, 5, 6, 7, 0, 1, 2, 3}));
}

}  // namespace
}  // namespace sylvora
