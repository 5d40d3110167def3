// The per-interval series of a built session: each column on hand-made corpora, the chart's
// homogeneity and the hover text's, burst ranking, events, progress and cancel, the CSV text
// and file, and the bundled sample corpus.

#include "session/interval_series.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <sstream>
#include <tuple>

#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session/interval_models.h"
#include "session_fixtures.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::RecordingNotifier;
using testing::TempDir;

using testing::Tweet;

class IntervalSeriesTest : public ::testing::Test {
 protected:
  // Loads, indexes (every term kept) and builds the models with `length` hours.
  void Build(const std::vector<Tweet>& tweets, const std::string& length,
             const std::vector<TimelineEvent>& events = {}) {
    testing::LoadAndIndex(session_, dir_, tweets);
    RecordingNotifier quiet;
    ModelOptions options;
    options.intervalLength = length;
    options.events = events;
    const ModelReport built = BuildModels(session_, options, quiet);
    ASSERT_TRUE(built.built) << built.error;
  }

  IntervalSeries Series(std::uint8_t window = 1, std::int32_t measure = TextStream::kRatioBurst) {
    IntervalSeries series;
    EXPECT_TRUE(ComputeIntervalSeries(session_, window, measure, series));
    return series;
  }

  TempDir dir_;
  Session session_;
};

// Three intervals of two hours: storm talk, power talk with a link, then one mixed tweet.
std::vector<Tweet> ThreeIntervals() {
  return {{0, "storm harbour flood", "2", "-1"},
          {1, "storm harbour", "4", "-3"},
          {2, "power outage street http://t.co/abcdef", "1", "-2"},
          {3, "power outage", "3", "-1"},
          {4, "storm power", "1", "-1"}};
}

TEST_F(IntervalSeriesTest, OneRowPerIntervalWithCountsAndStarts) {
  Build(ThreeIntervals(), "2");
  const IntervalSeries series = Series();
  ASSERT_EQ(series.rows.size(), 3u);
  EXPECT_EQ(series.maxIntervalDocCount, 2);
  EXPECT_EQ(series.noveltyWindow, 1);
  EXPECT_EQ(series.burstMeasure, TextStream::kRatioBurst);
  const std::vector<std::string> starts = {"2013-09-02 00:00:00", "2013-09-02 02:00:00",
                                           "2013-09-02 04:00:00"};
  const std::vector<std::int32_t> documents = {2, 2, 1};
  const std::vector<std::int32_t> links = {0, 1, 0};
  for (std::size_t k = 0; k < 3; ++k) {
    SCOPED_TRACE(k);
    EXPECT_EQ(series.rows[k].interval, static_cast<std::int32_t>(k) + 1);
    EXPECT_EQ(series.rows[k].start, starts[k]);
    EXPECT_EQ(series.rows[k].documents, documents[k]);
    EXPECT_EQ(series.rows[k].documentsWithLinks, links[k]);
  }
  EXPECT_FLOAT_EQ(series.rows[0].linkRatio, 0.0f);
  EXPECT_FLOAT_EQ(series.rows[1].linkRatio, 0.5f);
  // A second run over the same models gives the same rows (the caches answer the same).
  std::ostringstream first, second;
  WriteIntervalSeriesCsv(first, series.rows);
  WriteIntervalSeriesCsv(second, Series().rows);
  EXPECT_EQ(first.str(), second.str());
}

TEST_F(IntervalSeriesTest, NoveltyFollowsTheWindow) {
  Build(ThreeIntervals(), "2");
  const IntervalSeries one = Series(1);
  EXPECT_FLOAT_EQ(one.rows[0].novelty, 0.0f);  // no full window before interval 1
  EXPECT_FLOAT_EQ(one.rows[1].novelty, 1.0f);  // shares no word with interval 1
  EXPECT_GT(one.rows[2].novelty, 0.0f);
  EXPECT_LT(one.rows[2].novelty, 1.0f);
  const IntervalSeries two = Series(2);
  EXPECT_FLOAT_EQ(two.rows[1].novelty, 0.0f);  // no full window of two before interval 2
  EXPECT_GT(two.rows[2].novelty, 0.0f);
  const IntervalSeries none = Series(0);
  for (const IntervalSeriesRow& row : none.rows) EXPECT_FLOAT_EQ(row.novelty, 0.0f);
  // The cheap refresh gives the same values.
  const std::vector<float> refreshed = IntervalNoveltySeries(session_.WordModel(), 2);
  ASSERT_EQ(refreshed.size(), 3u);
  for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(refreshed[k], two.rows[k].novelty);
}

TEST_F(IntervalSeriesTest, HomogeneityAsTheChartComputesIt) {
  // Interval 2 (hours 2-3): a, b, c where only a and c share a word. The chart compares each
  // document with its successor only: 0. The hover text's every-pair mean is not 0.
  // Interval 1: every pair, and a pair sharing everything.
  Build({{0, "storm harbour"},
         {0, "storm harbour", "2", "-1", "ann", 30},
         {2, "power outage"},
         {2, "flood river", "2", "-1", "ann", 20},
         {3, "power outage"},
         {4, "storm"}},
        "2");
  const IntervalSeries series = Series();
  ASSERT_EQ(series.rows.size(), 3u);
  EXPECT_NEAR(series.rows[0].homogeneity, 1.0f, 1e-6);
  EXPECT_EQ(series.rows[0].detailsHomogeneity, series.rows[0].homogeneity);
  EXPECT_EQ(series.rows[1].documents, 3);
  EXPECT_FLOAT_EQ(series.rows[1].homogeneity, 0.0f);
  // Pairs (a,b) 0, (a,c) 1, (b,c) 0: mean 1/3.
  EXPECT_NEAR(series.rows[1].detailsHomogeneity, 1.0f / 3.0f, 1e-6);
  // One document: no pair.
  EXPECT_FLOAT_EQ(series.rows[2].homogeneity, 0.0f);
  EXPECT_FLOAT_EQ(series.rows[2].detailsHomogeneity, 0.0f);
  // The model's cache answers the hover text's call with the same value.
  EXPECT_EQ(session_.WordModel().IntervalHomogScore(2, 1), series.rows[1].detailsHomogeneity);
}

// Each column's placement, sentiment and the ratio ranking are checked through the
// command line's CSV (cli/timeline_command_test.cpp) on this corpus. Every measure ranks only
// the words present (interval 3 holds two); an unknown measure scores 0, ties in term order.
TEST_F(IntervalSeriesTest, BurstWordsOfAnUnknownMeasureTieInTermOrder) {
  Build(ThreeIntervals(), "2");
  const IntervalSeries unknown = Series(1, 7);
  ASSERT_EQ(unknown.rows[2].bursts.size(), 2u);
  for (const BurstTerm& burst : unknown.rows[2].bursts) EXPECT_EQ(burst.score, 0.0f);
  const TermDocumentMatrix& words = session_.WordIndex();
  EXPECT_LT(words.TermIndex(unknown.rows[2].bursts[0].term),
            words.TermIndex(unknown.rows[2].bursts[1].term));
}

TEST_F(IntervalSeriesTest, ProgressOncePerIntervalAndCancel) {
  Build(ThreeIntervals(), "2");
  std::vector<std::int64_t> done;
  IntervalSeries series;
  ASSERT_TRUE(ComputeIntervalSeries(
      session_, 1, 0, series, [&](std::string_view stage, std::int64_t d, std::int64_t total) {
        EXPECT_EQ(stage, "series");
        EXPECT_EQ(total, 3);
        done.push_back(d);
        return true;
      }));
  EXPECT_EQ(done, (std::vector<std::int64_t>{1, 2, 3}));
  EXPECT_EQ(series.rows.size(), 3u);
  int calls = 0;
  EXPECT_FALSE(ComputeIntervalSeries(
      session_, 1, 0, series,
      [&](std::string_view, std::int64_t, std::int64_t) { return ++calls < 2; }));
  EXPECT_EQ(calls, 2);
  EXPECT_TRUE(series.rows.empty());
}

TEST(IntervalSeriesCsv, HeaderAndRowsInTheCommandsLayout) {
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInf = std::numeric_limits<float>::infinity();
  const IntervalSeriesRow row = {7,
                                 "2013-09-02 00:00:00",
                                 12,
                                 3,
                                 0.25f,
                                 0.1f,
                                 0.9f,
                                 0.25f,  //
                                 1.5f,
                                 1,
                                 2,
                                 kNaN,
                                 3,
                                 4,
                                 {{"storm", kInf}, {"a,b", 2.0f}},  //
                                 "|Line\nbreak"};
  std::ostringstream out;
  WriteIntervalSeriesCsv(out, {row});
  EXPECT_EQ(out.str(),
            std::string(kIntervalSeriesCsvHeader) +
                "\n7,2013-09-02 00:00:00,12,3,0.25,0.1,0.25,1.5,1,2,nan,3,4,storm,inf,\"a,b\",2,,,"
                "\"|Line\nbreak\"\n");
  std::ostringstream empty;
  WriteIntervalSeriesCsv(empty, {});
  EXPECT_EQ(empty.str(), std::string(kIntervalSeriesCsvHeader) + "\n");
}

// Scores print shortest, with named infinities and one "nan" whatever its sign.
TEST(IntervalSeriesCsv, ScoresAreWrittenShortest) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  EXPECT_EQ(ScoreText(0.0f) + " " + ScoreText(-2.5f) + " " + ScoreText(1.75f) + " " +
                ScoreText(-kInf) + " " + ScoreText(-std::numeric_limits<float>::quiet_NaN()),
            "0 -2.5 1.75 -inf nan");
}

TEST(IntervalSeriesCsv, FieldsAreQuotedOnlyWhenNeeded) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"plain", "plain"},
      {"", ""},
      {"a,b", "\"a,b\""},
      {"say \"hi\"", "\"say \"\"hi\"\"\""},
      {"two\nlines", "\"two\nlines\""},
      {"cr\r", "\"cr\r\""},
      {"café", "café"}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(CsvField(text), expected) << text;
}

TEST(IntervalSeriesCsv, FileWrittenAndFailureReported) {
  TempDir dir;
  IntervalSeriesRow row;
  row.start = "2013-09-02 00:00:00";
  const std::string path = (dir.Path() / "series.csv").string();
  std::string error;
  ASSERT_TRUE(WriteIntervalSeriesCsvFile(path, {row}, error)) << error;
  std::ostringstream expected;
  WriteIntervalSeriesCsv(expected, {row});
  EXPECT_EQ(testing::ReadFile(path), expected.str());
  const std::string bad = (dir.Path() / "missing" / "series.csv").string();
  EXPECT_FALSE(WriteIntervalSeriesCsvFile(bad, {row}, error));
  EXPECT_NE(error.find("missing"), std::string::npos) << error;
}

}  // namespace
}  // namespace sylvora
