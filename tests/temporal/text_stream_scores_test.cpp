// The scores of the interval model: the three burst scores, novelty windows, homogeneity and
// its cache, the link ratio and the sentiment model with its statistics.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "common/errors.h"
#include "stream_fixtures.h"
#include "temporal/text_stream.h"

namespace sylvora {
namespace {

using testing::Built;
using testing::kElapsedField;
using testing::kNegField;
using testing::kPosField;
using testing::MakeStreamCorpus;
using testing::StreamCorpus;
using testing::StreamDoc;

// Eight documents in four intervals of two:
//   1: "aa bb", "aa"     aa 1.0, bb 0.5
//   2: "aa cc", "cc"     aa 0.5, cc 1.0
//   3: "aa", "dd"        aa 0.5, dd 0.5
//   4: "aa bb", "aa bb"  aa 1.0, bb 1.0
// aa: df 6 of N 8; bb: df 3; cc: df 2; dd: df 1.
std::vector<StreamDoc> FourIntervals() {
  return {{0, "aa bb"}, {1, "aa"},  {10, "aa cc"}, {11, "cc"},
          {20, "aa"},   {21, "dd"}, {30, "aa bb"}, {31, "aa bb"}};
}

// The four intervals above, built, with their terms' numbers.
class FourIntervalsTest : public ::testing::Test {
 protected:
  StreamCorpus c = Built(FourIntervals());
  TextStream& s = *c.stream;
  const std::int32_t aa = c.Term("aa"), bb = c.Term("bb"), cc = c.Term("cc"), dd = c.Term("dd");
};

TEST_F(FourIntervalsTest, RatioBurstComparesTheIntervalWithTheCorpus) {
  // f / (df / N) x ln(100 f + 1)
  EXPECT_FLOAT_EQ(s.RatioBurstScore(aa, 1), static_cast<float>(1.0 / (6.0 / 8) * std::log(101.0)));
  EXPECT_FLOAT_EQ(s.RatioBurstScore(bb, 1), static_cast<float>(0.5 / (3.0 / 8) * std::log(51.0)));
  EXPECT_FLOAT_EQ(s.RatioBurstScore(cc, 2), static_cast<float>(1.0 / (2.0 / 8) * std::log(101.0)));
  EXPECT_FLOAT_EQ(s.RatioBurstScore(cc, 1), 0.0f);
}

TEST_F(FourIntervalsTest, TemporalRatioComparesWithThePreviousInterval) {
  for (const std::int32_t t : {aa, bb, cc}) {
    EXPECT_EQ(s.TemporalRatioBurstScore(t, 1), s.RatioBurstScore(t, 1)) << t;
    EXPECT_EQ(s.TemporalRatioBurstScore(t, 0), 0.0f);
    EXPECT_EQ(s.TemporalRatioBurstScore(t, -2), 0.0f);
  }
  // aa: 0.5 after 1.0.
  EXPECT_FLOAT_EQ(s.TemporalRatioBurstScore(aa, 2), static_cast<float>(0.5 * std::log(51.0)));
  // aa: 1.0 after 0.5.
  EXPECT_FLOAT_EQ(s.TemporalRatioBurstScore(aa, 4), static_cast<float>(2.0 * std::log(101.0)));
  // cc was absent before interval 2: the global ratio.
  EXPECT_EQ(s.TemporalRatioBurstScore(cc, 2), s.RatioBurstScore(cc, 2));
  // bb absent in 3, present in 4: the global ratio.
  EXPECT_EQ(s.TemporalRatioBurstScore(bb, 4), s.RatioBurstScore(bb, 4));
  // Absent in the interval: 0.
  EXPECT_EQ(s.TemporalRatioBurstScore(bb, 2), 0.0f);
}

TEST_F(FourIntervalsTest, ZScoreUsesThePopulationDeviationOverAllIntervals) {
  // aa: 1, .5, .5, 1: mean .75, deviation .25.
  EXPECT_FLOAT_EQ(s.TermIntervalZScore(aa, 1), 1.0f);
  EXPECT_FLOAT_EQ(s.TermIntervalZScore(aa, 2), -1.0f);
  // dd: 0, 0, .5, 0: mean .125, deviation sqrt((3 x .015625 + .140625) / 4) = .2165...
  const double m = 0.125, sd = std::sqrt((3 * m * m + (0.5 - m) * (0.5 - m)) / 4);
  EXPECT_NEAR(s.TermIntervalZScore(dd, 3), (0.5 - m) / sd, 1e-5);
  // Absent in the interval: -m / s.
  EXPECT_NEAR(s.TermIntervalZScore(dd, 1), -m / sd, 1e-5);
  // Outside the terms: 0.
  EXPECT_EQ(s.TermIntervalZScore(0, 1), 0.0f);
  EXPECT_EQ(s.TermIntervalZScore(99, 1), 0.0f);
}

TEST(BurstScores, ZScoreOfAnEvenTermIsNotANumberOrInfinite) {
  StreamCorpus c = Built({{0, "aa"}, {10, "aa"}, {20, "aa"}});
  TextStream& s = *c.stream;
  EXPECT_TRUE(std::isnan(s.TermIntervalZScore(1, 2)));  // (1 - 1) / 0
  const float outside = s.TermIntervalZScore(1, 0);     // (0 - 1) / 0
  EXPECT_TRUE(std::isinf(outside));
  EXPECT_LT(outside, 0.0f);
}

TEST_F(FourIntervalsTest, ZScoreStatisticsAreCachedUntilTheNextBuild) {
  EXPECT_FLOAT_EQ(s.TermIntervalZScore(aa, 1), 1.0f);
  // Changing a cell changes f but not the cached mean and deviation.
  s.TIFM().SetValue(aa, 2, 1.0f);
  EXPECT_FLOAT_EQ(s.TermIntervalZScore(aa, 2), 1.0f);
  ASSERT_TRUE(s.BuildTermIntervalFrequencyModel(kElapsedField, 20));
  // Length 20: interval 1 = rows 0..3 and interval 2 = rows 4..7, "aa" in 3 of 4 in both.
  EXPECT_TRUE(std::isnan(s.TermIntervalZScore(aa, 1)));
}

TEST_F(FourIntervalsTest, IntervalBurstScoresListsEveryTerm) {
  const std::int32_t terms = c.index->TermCount();
  for (std::int32_t measure = 0; measure <= 2; ++measure) {
    const std::vector<float> scores = s.IntervalBurstScores(3, measure);
    ASSERT_EQ(scores.size(), static_cast<std::size_t>(terms) + 1);
    EXPECT_EQ(scores[0], 0.0f);
    for (std::int32_t t = 1; t <= terms; ++t) {
      const float expected = measure == 0   ? s.RatioBurstScore(t, 3)
                             : measure == 1 ? s.TemporalRatioBurstScore(t, 3)
                                            : s.TermIntervalZScore(t, 3);
      EXPECT_EQ(scores[static_cast<std::size_t>(t)], expected) << measure << " " << t;
    }
  }
  for (const std::int32_t measure : {3, -1}) {
    const std::vector<float> zeros = s.IntervalBurstScores(3, measure);
    ASSERT_EQ(zeros.size(), static_cast<std::size_t>(terms) + 1);
    for (const float v : zeros) EXPECT_EQ(v, 0.0f);
  }
}

TEST(Novelty, IsOneMinusTheMeanSimilarityToTheWindow) {
  StreamCorpus c = Built({{0, "aa"}, {10, "aa"}, {20, "aa"}, {30, "aa"}, {40, "aa"}});
  TextStream& s = *c.stream;
  // Similarities set by hand: the lower triangle is what novelty reads.
  s.NM().Reset(5, 5);
  s.NM().SetValue(4, 3, 0.5f);
  s.NM().SetValue(4, 2, 0.25f);
  s.NM().SetValue(4, 1, 0.75f);
  s.NM().SetValue(5, 4, 0.2f);
  s.NM().SetValue(3, 4, 0.9f);                          // upper triangle: not read for interval 4
  EXPECT_EQ(s.IntervalNoveltyScore(3, 3), 0.0f);        // no full window
  EXPECT_FLOAT_EQ(s.IntervalNoveltyScore(4, 3), 0.5f);  // 1 - 1.5 / 3
  EXPECT_FLOAT_EQ(s.IntervalNoveltyScore(4, 1), 0.5f);
  EXPECT_FLOAT_EQ(s.IntervalNoveltyScore(4, 2), 0.625f);  // 1 - .75 / 2
  EXPECT_FLOAT_EQ(s.IntervalNoveltyScore(5, 1), 0.8f);
  EXPECT_EQ(s.IntervalNoveltyScore(1, 1), 0.0f);
  EXPECT_EQ(s.IntervalNoveltyScore(2, 1), 1.0f);  // NM(2, 1) is 0
  EXPECT_EQ(s.IntervalNoveltyScore(4, 0), 0.0f);
}

TEST(Homogeneity, IsTheMeanCosineOfTheSampledPairs) {
  // Interval 1: "aa bb", "aa", "cc": cos(1,2) = 1/sqrt2, cos(1,3) = 0, cos(2,3) = 0.
  StreamCorpus c = Built({{0, "aa bb"}, {1, "aa"}, {2, "cc"}, {10, "aa"}, {11, "aa"}, {20, "aa"}});
  TextStream& s = *c.stream;
  EXPECT_NEAR(s.IntervalHomogScore(1, 1), (1.0 / std::sqrt(2.0)) / 3, 1e-6);
  // Identical documents: the self-similarity, 1.
  EXPECT_FLOAT_EQ(s.IntervalHomogScore(2, 1), 1.0f);
  // One document: 0.
  EXPECT_EQ(s.IntervalHomogScore(3, 1), 0.0f);
  EXPECT_EQ(s.IntervalHomogScore(0, 1), 0.0f);
  EXPECT_THROW(s.IntervalHomogScore(4, 1), RangeError);
  EXPECT_THROW(s.IntervalHomogScore(-1, 1), RangeError);
  // "x" is too short to be a term: against its empty column the cosine is -1.
  EXPECT_EQ(Built({{0, "aa"}, {1, "x"}, {10, "aa"}}).stream->IntervalHomogScore(1, 1), -1.0f);
}

TEST(Homogeneity, TheSampleStepThinsTheInnerLoopAndTheFirstResultIsCached) {
  // Four documents alternating between two disjoint terms. Every pair: (0,2) and (1,3) are 1,
  // the other four 0: 2 / 6. Step 2 compares (0,1), (0,3), (1,2), (2,3); step 3 (0,1), (1,2),
  // (2,3): all 0.
  const std::vector<StreamDoc> docs = {{0, "aa"}, {1, "bb"}, {2, "aa"}, {3, "bb"}, {10, "aa"}};
  EXPECT_EQ(Built(docs).stream->IntervalHomogScore(1, 2), 0.0f);
  EXPECT_EQ(Built(docs).stream->IntervalHomogScore(1, 4), 0.0f);
  StreamCorpus c = Built(docs);
  TextStream& s = *c.stream;
  const float first = s.IntervalHomogScore(1, 1);
  EXPECT_NEAR(first, 2.0 / 6, 1e-6);
  EXPECT_EQ(s.IntervalHomogScore(1, 4), first);  // another step returns the cached value
  ASSERT_TRUE(s.BuildTermIntervalFrequencyModel(kElapsedField, 10));  // a rebuild empties it
  EXPECT_EQ(s.IntervalHomogScore(1, 4), 0.0f);
}

TEST(Homogeneity, ChartSampleStep) {
  EXPECT_EQ(TextStream::ChartHomogSampleStep(1, 500), 1);
  EXPECT_EQ(TextStream::ChartHomogSampleStep(2, 500), 500);
  EXPECT_EQ(TextStream::ChartHomogSampleStep(3, 0), 1);
  EXPECT_EQ(TextStream::ChartHomogSampleStep(3, 100000), 32767);
}

TEST(LinkRatio, IsTheShareOfDocumentsWithALink) {
  StreamCorpus c = Built({{0, "aa", "http://a"},
                          {1, "aa", ""},
                          {2, "aa", "http://b"},
                          {3, "aa", ""},
                          {10, "aa", ""},
                          {30, "aa", "http://c"}});
  TextStream& s = *c.stream;
  // Interval 2 has no link, interval 3 no document; interval 0 is none.
  EXPECT_EQ((std::vector<float>{s.URLRatio(0), s.URLRatio(1), s.URLRatio(2), s.URLRatio(3),
                                s.URLRatio(4)}),
            (std::vector<float>{0, 0.5f, 0, 0, 1}));
  EXPECT_EQ(std::pair(s.URLCount(1), s.URLCount(3)), std::pair(2, 0));
}

// An interval of four documents with negative strengths -1, -1, -2, -3 (counts 2, 1, 1, 0, 0)
// and positive strengths 4, 4, 2, 5; then an empty interval; then two documents.
std::vector<StreamDoc> SentimentDocs() {
  return {{0, "aa", "", "4", "-1"}, {1, "aa bb", "", "4", "-1"}, {2, "bb", "", "2", "-2"},
          {3, "aa", "", "5", "-3"}, {20, "aa", "", "3", "-5"},   {21, "bb", "", "3", "-4"}};
}

TEST(Sentiment, CountsEachDocumentOnceOnEachSideAndItsStatistics) {
  StreamCorpus c = Built(SentimentDocs());
  TextStream& s = *c.stream;
  s.BuildSentimentIntervalFrequencyModel(kPosField, kNegField);
  const SparseMatrixSingle& sifm = s.SIFM();
  ASSERT_EQ(sifm.RowCount(), 10);
  ASSERT_EQ(sifm.ColCount(), 3);
  // Rows 1..5 are -5..-1; rows 6..10 are +1..+5.
  const std::vector<float> first = {0, 0, 1, 1, 2, 0, 1, 0, 2, 1};
  const std::vector<float> third = {1, 1, 0, 0, 0, 0, 0, 2, 0, 0};
  for (std::int32_t row = 1; row <= 10; ++row) {
    EXPECT_EQ(sifm.Value(row, 1), first[static_cast<std::size_t>(row) - 1]) << row;
    EXPECT_EQ(sifm.Value(row, 2), 0.0f) << row;  // the empty interval keeps a zero column
    EXPECT_EQ(sifm.Value(row, 3), third[static_cast<std::size_t>(row) - 1]) << row;
  }
  // A valence is replaced by its sign.
  // Mean, mode and median of an interval and side. The median of interval 1's negative side is
  // 2 (2/4 is not above .5; 3/4 is); in interval 3 ties go to the weaker strength (-5 and -4
  // once each) and the median is 5 (1/2 then 2/2). An empty interval, and no valence, give 0.
  const auto statistics = [&](std::int32_t interval, std::int16_t valence) {
    return std::tuple(s.IntervalSentimentMean(interval, valence),
                      s.IntervalSentimentMode(interval, valence),
                      s.IntervalSentimentMedian(interval, valence));
  };
  EXPECT_EQ(statistics(1, -1), std::tuple(1.75f, 1, 2));
  EXPECT_EQ(statistics(1, 7), std::tuple(3.75f, 4, 4));
  EXPECT_EQ(statistics(3, -1), std::tuple(4.5f, 4, 5));
  EXPECT_EQ(statistics(2, 1), std::tuple(0.0f, 0, 0));
  EXPECT_EQ(std::get<0>(statistics(1, 0)), 0.0f);
  std::int16_t valence = -32000;
  s.IntervalSentimentMode(1, valence);
  EXPECT_EQ(valence, -1);
}

TEST(Sentiment, StrengthsOutOfRangeCountAsTheWeakest) {
  StreamCorpus c = Built({{0, "aa", "", "9", "-1"},
                          {1, "aa", "", "3", "2"},
                          {2, "aa", "", "0", "-6"},
                          {10, "aa", "", "1", "-1"}});
  TextStream& s = *c.stream;
  s.BuildSentimentIntervalFrequencyModel(kPosField, kNegField);
  EXPECT_EQ(s.SIFM().Value(6, 1), 2.0f);  // +1: "9" and "0"
  EXPECT_EQ(s.SIFM().Value(8, 1), 1.0f);  // +3
  EXPECT_EQ(s.SIFM().Value(5, 1), 3.0f);  // -1: "-1", "2" and "-6"
}

TEST(Sentiment, ACorpusWithoutSentimentKeepsAZeroModel) {
  for (const auto& [pos, neg] : {std::pair{"0", "-1"}, {"2", "0"}, {"", ""}, {"n/a", "-2"}}) {
    StreamCorpus c =
        Built({{0, "aa", "", "2", "-2"}, {1, "aa", "", pos, neg}, {10, "aa", "", "3", "-3"}});
    TextStream& s = *c.stream;
    s.BuildSentimentIntervalFrequencyModel(kPosField, kNegField);
    EXPECT_EQ(s.SIFM().ColCount(), 2);
    for (std::int32_t i = 1; i <= 2; ++i) {
      EXPECT_EQ(s.SIFM().Vector(i)->NZElementCount(), 0) << pos << " " << neg;
      std::int16_t valence = 1;
      EXPECT_EQ(s.IntervalSentimentMean(i, valence), 0.0f);
    }
  }
  // Before the interval model is built: sized by strength, no intervals.
  StreamCorpus c = MakeStreamCorpus(SentimentDocs());
  c.stream->BuildSentimentIntervalFrequencyModel(kPosField, kNegField);
  EXPECT_EQ(c.stream->SIFM().RowCount(), 10);
  EXPECT_EQ(c.stream->SIFM().ColCount(), 0);
}

TEST(Sentiment, TermScoresAverageTheDocumentsHoldingTheTerm) {
  StreamCorpus c = Built(SentimentDocs());
  TextStream& s = *c.stream;
  const auto scores = s.TermSentimentScores(1, kPosField, kNegField);
  ASSERT_EQ(scores.size(), static_cast<std::size_t>(c.index->TermCount()) + 1);
  // aa in rows 0, 1, 3: positive 4, 4, 5; negative -1, -1, -3.
  const auto aa = scores[static_cast<std::size_t>(c.Term("aa"))];
  EXPECT_FLOAT_EQ(aa[0], 13.0f / 3);
  EXPECT_FLOAT_EQ(aa[1], -5.0f / 3);
  // bb in rows 1, 2: positive 4, 2; negative -1, -2.
  const auto bb = scores[static_cast<std::size_t>(c.Term("bb"))];
  EXPECT_FLOAT_EQ(bb[0], 3.0f);
  EXPECT_FLOAT_EQ(bb[1], -1.5f);
  // Nothing in the empty interval.
  for (const auto& score : s.TermSentimentScores(2, kPosField, kNegField)) {
    EXPECT_EQ(score[0], 0.0f);
    EXPECT_EQ(score[1], 0.0f);
  }
  EXPECT_EQ(s.TermIntervalSentimentMean(c.Term("aa"), 1, 1), 0.0f);
}

}  // namespace
}  // namespace sylvora
