// The interval model: bounds, gaps and empty intervals, TIFM cells, the one-interval failure,
// date-time bounds, term spans, the interval similarity model and events.

#include "temporal/text_stream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <tuple>

#include "common/errors.h"
#include "stream_fixtures.h"
#include "support/recording_notifier.h"

namespace sylvora {
namespace {

using testing::kElapsedField;
using testing::MakeStreamCorpus;
using testing::RecordingNotifier;
using testing::StreamCorpus;
using testing::StreamDoc;

std::vector<StreamDoc> AtTimes(const std::vector<std::int64_t>& times) {
  std::vector<StreamDoc> docs;
  for (const std::int64_t t : times) docs.push_back({t, "aa bb"});
  return docs;
}

bool Build(StreamCorpus& c, std::int32_t length, Notifier& notifier = DefaultNotifier()) {
  return c.stream->BuildTermIntervalFrequencyModel(kElapsedField, length, notifier);
}

// Interval bounds, document ranges and TIFM cells against a count over the documents of random
// time-ordered corpora: intervals start at the first value and include both bounds, an empty
// interval inside a gap points past its last document, and a cell is the share of the
// interval's documents holding the term.
TEST(TextStreamIntervals, AgreeWithACountOverTheDocuments) {
  std::mt19937 random(5);
  const std::vector<std::string> words = {"aa", "bb", "cc", "dd"};
  for (int round = 0; round < 150; ++round) {
    SCOPED_TRACE(round);
    const auto length = 1 + static_cast<std::int32_t>(random() % 12);
    std::vector<StreamDoc> docs;
    std::int64_t t = random() % 7;
    const int n = 2 + static_cast<int>(random() % 25);
    for (int d = 0; d < n; ++d) {
      if (random() % 3 == 0) t += random() % 30;
      if (d == n - 1) t = std::max(t, docs.front().time + length);  // at least two intervals
      std::string text = "aa";
      for (const std::string& w : words) {
        if (w != "aa" && random() % 3 == 0) text += " " + w;
      }
      docs.push_back({t, random() % 4 == 0
                             ? text.substr(std::min<std::size_t>(3, text.size())) + " zz"
                             : text});
    }
    StreamCorpus c = testing::Built(docs, length);
    const TextStream& s = *c.stream;
    const std::int64_t base = docs.front().time;
    const auto count = static_cast<std::int32_t>((docs.back().time - base) / length + 1);
    ASSERT_EQ(s.IntervalCount(), count);
    EXPECT_EQ(s.BaseValue(), base);
    std::int32_t before = 0;  // documents in earlier intervals
    std::int32_t largest = 0;
    for (std::int32_t i = 1; i <= count; ++i) {
      EXPECT_EQ(s.IntervalLBound(i), base + (i - 1) * length);
      EXPECT_EQ(s.IntervalUBound(i), base + i * length - 1);
      std::int32_t inside = 0;
      std::vector<int> holding(words.size(), 0);
      for (std::size_t d = 0; d < docs.size(); ++d) {
        if ((docs[d].time - base) / length + 1 != i) continue;
        ++inside;
        for (std::size_t w = 0; w < words.size(); ++w) {
          holding[w] += (" " + docs[d].text + " ").find(" " + words[w] + " ") != std::string::npos;
        }
      }
      EXPECT_EQ(s.IntervalDocCount(i), inside) << i;
      EXPECT_EQ(s.FirstDocumentIndex(i), before) << i;
      EXPECT_EQ(s.LastDocumentIndex(i), before + inside - 1) << i;
      for (std::size_t w = 0; w < words.size(); ++w) {
        const float share = inside == 0 ? 0.0f : static_cast<float>(double(holding[w]) / inside);
        EXPECT_EQ(s.IntervalFrequency(c.Term(words[w]), i), share) << words[w] << " in " << i;
      }
      before += inside;
      largest = std::max(largest, inside);
    }
    EXPECT_EQ(s.MaxIntervalDocCount(), largest);
    EXPECT_EQ(s.TIFM().RowCount(), c.index->TermCount());
  }
}

TEST(TextStreamTIFM, StoredZeroWeightsDoNotCount) {
  // "aa" is in every document: tf-idf leaves it a stored weight of 0, so it is never present.
  StreamCorpus c = MakeStreamCorpus({{0, "aa bb"}, {1, "aa"}, {10, "aa cc"}});
  c.index->WeightMatrixValues(TermDocumentMatrix::kInverseDocumentFrequency);
  ASSERT_TRUE(Build(c, 10));
  EXPECT_FLOAT_EQ(c.stream->IntervalFrequency(c.Term("aa"), 1), 0.0f);
  EXPECT_FLOAT_EQ(c.stream->IntervalFrequency(c.Term("bb"), 1), 0.5f);
  EXPECT_FLOAT_EQ(c.stream->IntervalFrequency(c.Term("cc"), 2), 1.0f);
}

TEST(TextStreamTIFM, DocumentsBeyondTheIndexHaveNoTerms) {
  StreamCorpus c = MakeStreamCorpus({{0, "aa"}, {1, "aa"}, {10, "aa"}, {11, "aa"}});
  // An index over the first two documents only.
  TermDocumentMatrix partial;
  DocIndex count = 2;
  partial.AssignText(*c.corpus, count, false);
  partial.Preprocess(true, false, 1, "", false);
  partial.BuildVocab(0, 999);
  partial.BuildTDM(1, 1000);
  c.stream->SetTermDocumentMatrix(partial);
  ASSERT_TRUE(Build(c, 10));
  EXPECT_EQ(c.stream->IntervalDocCount(2), 2);
  EXPECT_FLOAT_EQ(c.stream->IntervalFrequency(1, 1), 1.0f);
  EXPECT_FLOAT_EQ(c.stream->IntervalFrequency(1, 2), 0.0f);
}

TEST(TextStreamFailures, ACorpusInOneIntervalShowsTheMessageAndReturnsFalse) {
  StreamCorpus c = MakeStreamCorpus(AtTimes({0, 5, 23}));
  RecordingNotifier notifier;
  EXPECT_FALSE(Build(c, 24, notifier));
  ASSERT_EQ(notifier.Messages().size(), 1u);
  EXPECT_EQ(notifier.Messages()[0].icon, MessageIcon::kCritical);
  const TextStream& s = *c.stream;
  EXPECT_EQ(s.IntervalCount(), 1);
  EXPECT_EQ(s.IntervalDocCount(1), 0);  // sized and zero
  EXPECT_EQ(s.TIFM().Vector(1)->NZElementCount(), 0);
}

TEST(TextStreamFailures, LengthsBelowOneAndTooManyIntervalsAreRefused) {
  for (const std::int32_t length : {0, -1, -24}) {
    StreamCorpus c = MakeStreamCorpus(AtTimes({0, 50}));
    EXPECT_THROW(Build(c, length), RangeError) << length;
  }
  StreamCorpus c = MakeStreamCorpus(AtTimes({0, 2'000'000'000}));
  EXPECT_THROW(Build(c, 1), RangeError);
  TextStream unbound;
  EXPECT_THROW(unbound.BuildTermIntervalFrequencyModel(0, 1), RangeError);
  // Huge temporal values are held to the 32-bit range.
  StreamCorpus huge = MakeStreamCorpus(AtTimes({0, 10}));
  huge.corpus->SetText(0, kElapsedField, "-99999999999999999999");
  huge.corpus->SetText(1, kElapsedField, "99999999999999999999");
  EXPECT_THROW(Build(huge, 1), RangeError);  // 2^32 intervals
  ASSERT_TRUE(Build(huge, 1'000'000'000));
  EXPECT_EQ(huge.stream->BaseValue(), INT32_MIN);
  EXPECT_EQ(huge.stream->LastValue(), INT32_MAX);
  EXPECT_EQ(huge.stream->IntervalCount(), 5);
}

TEST(TextStreamFailures, AnUnboundStreamAnswersNothing) {
  // What a view may ask before any model is built.
  TextStream s;
  EXPECT_EQ(s.IntervalCount(), 0);
  EXPECT_THROW(s.IntervalDocCount(1), RangeError);
  EXPECT_EQ(s.IntervalBurstScores(1, 0).size(), 1u);
  EXPECT_EQ(s.IntervalNoveltyScore(2, 1), 1.0f);  // an empty NM: nothing alike
  EXPECT_EQ(s.IntervalHomogScore(0, 1), 0.0f);
  EXPECT_EQ(s.URLRatio(0), 0.0f);
  EXPECT_EQ(s.IntervalFromDateTime("2013-09-02 00:00:00", "h"), std::nullopt);
  EXPECT_EQ(s.IntervalDateTimeBounds(1, "h")[0], "");
  EXPECT_EQ(s.TermSentimentScores(1, 0, 0).size(), 1u);
  s.BuildIntervalSimilarityModel(10);
  EXPECT_EQ(s.NM().ColCount(), 0);
  s.BuildSentimentIntervalFrequencyModel(0, 0);
  EXPECT_EQ(s.SIFM().ColCount(), 0);
  EXPECT_EQ(s.TermIntervalSpans().first.size(), 1u);
}

TEST(TextStreamFailures, AccessorsRefuseIntervalsOutOfRange) {
  StreamCorpus c = testing::Built(AtTimes({0, 10}), 10);
  const TextStream& s = *c.stream;  // built; the unbound stream is the test above
  EXPECT_EQ(s.IntervalDocCount(0), 0);
  EXPECT_EQ(s.IntervalDocCount(-3), 0);
  EXPECT_THROW(s.IntervalDocCount(3), RangeError);
  EXPECT_NO_THROW(s.FirstDocumentIndex(0));
  EXPECT_THROW(s.FirstDocumentIndex(3), RangeError);
  EXPECT_THROW(s.LastDocumentIndex(-1), RangeError);
  EXPECT_THROW(s.Events(3), RangeError);
  EXPECT_FLOAT_EQ(s.IntervalFrequency(1, 3), 0.0f);  // a matrix read outside is 0
}

TEST(TextStreamFailures, AnUnsortedCorpusIsCountedWhereTheRowsFall) {
  // Row 1 (value 2) lies below interval 2's bounds: counted in interval 2. Row 3 (value 99)
  // lies past the last interval: counted in the last one.
  StreamCorpus c = testing::Built(AtTimes({0, 15, 2, 99, 25}), 10);
  const TextStream& s = *c.stream;
  ASSERT_EQ(s.IntervalCount(), 3);
  EXPECT_EQ(s.IntervalDocCount(1), 1);
  EXPECT_EQ(s.IntervalDocCount(2), 2);
  EXPECT_EQ(s.IntervalDocCount(3), 2);
  EXPECT_EQ(s.LastDocumentIndex(3), 4);

  // The last row earlier than the first: no interval to speak of.
  StreamCorpus backwards = MakeStreamCorpus(AtTimes({40, 20, 0}));
  RecordingNotifier notifier;
  EXPECT_FALSE(Build(backwards, 10, notifier));
  EXPECT_EQ(notifier.Messages().size(), 1u);
  EXPECT_EQ(backwards.stream->IntervalCount(), 0);
}

TEST(TextStreamFailures, ACancelEmptiesTheModel) {
  StreamCorpus c = MakeStreamCorpus(AtTimes({0, 10, 20, 30}));
  int calls = 0;
  const ProgressCallback cancel = [&](std::string_view, std::int64_t, std::int64_t) {
    return ++calls < 2;
  };
  EXPECT_FALSE(
      c.stream->BuildTermIntervalFrequencyModel(kElapsedField, 10, DefaultNotifier(), cancel));
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(c.stream->IntervalCount(), 0);
  EXPECT_EQ(c.stream->TIFM().ColCount(), 0);
}

TEST(TextStreamTerms, FirstAndLastIntervalsOfATerm) {
  StreamCorpus c =
      testing::Built({{0, "aa"}, {10, "bb"}, {20, "aa bb"}, {30, "cc"}, {40, "cc"}}, 10);
  const TextStream& s = *c.stream;
  for (const auto& [term, first, last] :
       {std::tuple{"aa", 1, 3}, std::tuple{"bb", 2, 3}, std::tuple{"cc", 4, 5}}) {
    EXPECT_EQ(s.FirstTermInterval(c.Term(term)), first) << term;
    EXPECT_EQ(s.LastTermInterval(c.Term(term)), last) << term;
  }
  // A term number that no interval holds.
  EXPECT_EQ(s.FirstTermInterval(99), 6);
  EXPECT_EQ(s.LastTermInterval(99), 0);

  const TextStream::TermSpans spans = s.TermIntervalSpans();
  ASSERT_EQ(spans.first.size(), static_cast<std::size_t>(c.index->TermCount()) + 1);
  for (std::int32_t t = 1; t <= c.index->TermCount(); ++t) {
    EXPECT_EQ(spans.first[static_cast<std::size_t>(t)], s.FirstTermInterval(t)) << t;
    EXPECT_EQ(spans.last[static_cast<std::size_t>(t)], s.LastTermInterval(t)) << t;
  }
}

TEST(TextStreamDates, IntervalBoundsFollowEachOther) {
  StreamCorpus c = testing::Built(AtTimes({0, 30, 100}), 24);
  const TextStream& s = *c.stream;
  const auto first = s.IntervalDateTimeBounds(1, "h");
  EXPECT_EQ(first[0], "2013-09-02 00:00:00");
  EXPECT_EQ(first[1], "2013-09-03 00:00:00");
  for (std::int32_t i = 1; i < s.IntervalCount(); ++i) {
    EXPECT_EQ(s.IntervalDateTimeBounds(i, "h")[1], s.IntervalDateTimeBounds(i + 1, "h")[0]);
  }
  EXPECT_EQ(s.IntervalDateTimeBounds(3, "n")[0], "2013-09-02 00:48:00");
  EXPECT_EQ(s.IntervalDateTimeBounds(1, "years")[0], "");
  // Quotes around the first date are ignored.
  StreamCorpus quoted = MakeStreamCorpus(AtTimes({0, 30}));
  quoted.corpus->SetText(0, testing::kDateField, "\"02/09/13 06:30:00\"");
  ASSERT_TRUE(Build(quoted, 24));
  EXPECT_EQ(quoted.stream->IntervalDateTimeBounds(2, "h")[0], "2013-09-03 06:30:00");
}

TEST(TextStreamDates, IntervalOfADateTimeIsTheOneWhoseSpanHoldsIt) {
  // Intervals of 4 hours from 2013-09-02 00:00: interval 1 holds 00:00 to 03:59.
  StreamCorpus c = testing::Built(AtTimes({0, 100}), 4);
  const TextStream& s = *c.stream;
  struct Case {
    const char* when;
    std::int32_t interval;
  };
  for (const Case& test : {Case{"2013-09-02 00:00:00", 1}, Case{"2013-09-02 01:00:00", 1},
                           Case{"2013-09-02 03:59:59", 1}, Case{"2013-09-02 04:00:00", 2},
                           Case{"2013-09-02 06:00:00", 2}, Case{"2013-09-02 10:00:00", 3},
                           Case{"2013-09-02 14:00:00", 4}, Case{"03/09/13 00:00:00", 7},
                           Case{"2013-09-01 23:00:00", 0}, Case{"2013-09-01 20:00:00", 0},
                           Case{"2013-09-01 19:00:00", -1}}) {
    EXPECT_EQ(s.IntervalFromDateTime(test.when, "h"), test.interval) << test.when;
  }
  EXPECT_EQ(s.IntervalFromDateTime("not a date", "h"), std::nullopt);
  EXPECT_EQ(s.IntervalFromDateTime("2013-09-02 10:00:00", "x"), std::nullopt);
}

TEST(TextStreamSimilarity, NMIsSymmetricWithOnesOnTheDiagonal) {
  StreamCorpus c = testing::Built(
      {{0, "aa bb"}, {1, "aa"}, {10, "aa bb"}, {11, "aa"}, {20, "cc dd"}, {30, "aa cc"}}, 10);
  c.stream->BuildIntervalSimilarityModel(9999);
  const SparseMatrixSingle& nm = c.stream->NM();
  ASSERT_EQ(nm.ColCount(), 4);
  for (std::int32_t i = 1; i <= 4; ++i) {
    EXPECT_FLOAT_EQ(nm.Value(i, i), 1.0f);
    for (std::int32_t k = 1; k <= 4; ++k) EXPECT_EQ(nm.Value(i, k), nm.Value(k, i));
  }
  // Intervals 1 and 2 hold the same terms in the same proportions.
  EXPECT_FLOAT_EQ(nm.Value(2, 1), 1.0f);
  // Intervals 1 and 3 share nothing.
  EXPECT_FLOAT_EQ(nm.Value(3, 1), 0.0f);
  // Interval 1 = (aa 1, bb .5), interval 4 = (aa 1, cc 1): 1 / (sqrt(1.25) sqrt(2)).
  EXPECT_NEAR(nm.Value(4, 1), 1.0 / std::sqrt(2.5), 1e-6);
}

TEST(TextStreamSimilarity, TruncationKeepsTheStrongestTermsOfEachInterval) {
  // With one term per interval kept, interval 1 keeps "aa" (1.0) and interval 2 keeps "bb"
  // (1.0): they no longer share anything.
  StreamCorpus c = testing::Built({{0, "aa bb"}, {1, "aa"}, {10, "aa bb"}, {11, "bb"}}, 10);
  c.stream->BuildIntervalSimilarityModel(0);
  EXPECT_GT(c.stream->NM().Value(2, 1), 0.5f);
  c.stream->BuildIntervalSimilarityModel(1);
  EXPECT_FLOAT_EQ(c.stream->NM().Value(2, 1), 0.0f);
  EXPECT_FLOAT_EQ(c.stream->NM().Value(1, 1), 1.0f);
  // TIFM itself is not truncated.
  EXPECT_FLOAT_EQ(c.stream->IntervalFrequency(c.Term("bb"), 1), 0.5f);
}

TEST(TextStreamEvents, DescriptionsAreAppendedAfterABar) {
  StreamCorpus c = testing::Built(AtTimes({0, 10, 20}), 10);
  TextStream& s = *c.stream;
  EXPECT_EQ(s.Events(2), "");
  s.SetEvents(2, "A");
  s.SetEvents(2, "B");
  EXPECT_EQ(s.Events(2), "|A|B");
  EXPECT_THROW(s.SetEvents(4, "C"), RangeError);
  // A rebuild forgets them.
  ASSERT_TRUE(Build(c, 10));
  EXPECT_EQ(s.Events(2), "");
}

}  // namespace
}  // namespace sylvora
