// The model building of the "(Re)Build Views" workflow: the length checks with their messages
// and questions, the five models, the TrunK choice, events and the sentiment model.

#include "session/interval_models.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "session/cluster_maps.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"
#include "session_fixtures.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::RecordedMessage;
using testing::RecordingNotifier;
using testing::TempDir;

using testing::Tweet;

class IntervalModels : public ::testing::Test {
 protected:
  // Loads and indexes the tweets (every term kept).
  void Prepare(const std::vector<Tweet>& tweets) { testing::LoadAndIndex(session_, dir_, tweets); }

  ModelReport Build(const std::string& length, const ModelOptions& base = {}) {
    ModelOptions options = base;
    options.intervalLength = length;
    return BuildModels(session_, options, notifier_);
  }

  const std::vector<RecordedMessage>& Messages() const { return notifier_.Messages(); }

  TempDir dir_;
  Session session_;
  RecordingNotifier notifier_;
};

// Tweets every two hours over 48 hours: hours 0, 2, ..., 48.
std::vector<Tweet> EveryTwoHours() {
  std::vector<Tweet> tweets;
  for (int h = 0; h <= 48; h += 2) {
    tweets.push_back({h, h < 24 ? "harbour storm warning #storm @port" : "power outage street",
                      h % 4 == 0 ? "3" : "1", h < 24 ? "-2" : "-4", h % 6 == 0 ? "bob" : "ann"});
  }
  return tweets;
}

TEST_F(IntervalModels, BuildsTheFiveModelsOverTheSameIntervals) {
  Prepare(EveryTwoHours());
  const ModelReport report = Build("4");
  ASSERT_TRUE(report.built) << report.error;
  EXPECT_TRUE(Messages().empty());
  EXPECT_TRUE(session_.ModelsBuilt());
  EXPECT_EQ(session_.IntervalLength(), 4);
  EXPECT_EQ(session_.IntervalUnit(), "h");
  EXPECT_EQ(report.intervalCount, 13);  // 48 \ 4 + 1
  EXPECT_EQ(report.maxIntervalDocCount, 2);
  for (const IndexKind kind : kIndexKinds) {
    const TextStream& model = session_.Model(kind);
    EXPECT_EQ(model.IntervalCount(), 13) << IndexKindName(kind);
    EXPECT_EQ(model.TDM(), &session_.Index(kind));
    EXPECT_EQ(model.Corpus(), &session_.Documents());
    for (std::int32_t i = 1; i <= 13; ++i) {
      EXPECT_EQ(model.IntervalDocCount(i), session_.WordModel().IntervalDocCount(i));
      EXPECT_EQ(model.FirstDocumentIndex(i), session_.WordModel().FirstDocumentIndex(i));
    }
  }
  // The cells are the interval model's (checked there). No interval has 26 distinct words; NM
  // and the sentiment model were built (interval 1: hours 0 and 2, positive 3 and 1).
  const TextStream& words = session_.WordModel();
  EXPECT_EQ(words.IntervalDocCount(13), 1);  // hour 48 alone
  EXPECT_EQ(report.trunK, 9999);
  EXPECT_FLOAT_EQ(words.NM().Value(2, 1), 1.0f);
  std::int16_t positive = 1;
  EXPECT_FLOAT_EQ(words.IntervalSentimentMean(1, positive), 2.0f);
  // Only the words model has similarity and sentiment models.
  EXPECT_EQ(session_.Model(IndexKind::kHashtags).NM().ColCount(), 0);
  EXPECT_EQ(session_.Model(IndexKind::kHashtags).SIFM().ColCount(), 0);
}

// Regression: a second indexing run left the models of the first one built, counting terms by
// the old numbering.
TEST_F(IntervalModels, IndexingAgainDropsTheModels) {
  Prepare(EveryTwoHours());
  ASSERT_TRUE(Build("4").built);
  IndexOptions index;
  index.stopListPath = testing::StopListPath();
  index.minDocFrequency = 1;
  index.maxDocFrequency = 1e9;
  ASSERT_TRUE(BuildIndexes(session_, index).indexed);
  EXPECT_FALSE(session_.ModelsBuilt());
  for (const IndexKind kind : kIndexKinds) EXPECT_EQ(session_.Model(kind).IntervalCount(), 0);
  EXPECT_EQ(session_.IntervalLength(), 0);
  // Clearing the indexes clears them too.
  ASSERT_TRUE(Build("4").built);
  session_.ClearIndexes();
  EXPECT_FALSE(session_.ModelsBuilt());
  EXPECT_EQ(session_.WordModel().IntervalCount(), 0);
}

TEST_F(IntervalModels, LengthsThatAreNoPositiveNumberAreRefused) {
  EXPECT_FALSE(Build("4").built);  // nothing to model before indexing, and nothing said
  EXPECT_TRUE(Messages().empty());
  Prepare(EveryTwoHours());
  ASSERT_TRUE(Build("4").built);
  for (const std::string length : {"0", "-5", "abc", "", "0.4", "  -1"}) {
    notifier_ = RecordingNotifier();
    const ModelReport report = Build(length);
    EXPECT_FALSE(report.built) << length;
    ASSERT_EQ(Messages().size(), 1u) << length;
    EXPECT_EQ(Messages()[0].text, kIntervalLengthInvalidMessage);
    // The models of the last build stay.
    EXPECT_EQ(session_.WordModel().IntervalCount(), 13);
  }
  // A leading number is enough, and halves round to even.
  EXPECT_EQ(Build("4 hours").intervalLength, 4);
  EXPECT_EQ(Build("2.5").intervalLength, 2);
  ModelOptions fortnights;
  fortnights.unitCode = "fortnight";
  EXPECT_NE(Build("4", fortnights).error.find("fortnight"), std::string::npos);
}

// A length giving fewer than two intervals is refused through the command line
// (cli/timeline_command_test.cpp).
TEST_F(IntervalModels, FewIntervalsAskFirstAndCancelKeepsTheOldModels) {
  Prepare(EveryTwoHours());
  ASSERT_TRUE(Build("4").built);
  const ModelReport few = Build("24");  // 48 / 24 = 2: goes on after the question
  ASSERT_TRUE(few.built) << few.error;
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_TRUE(Messages()[0].question);
  EXPECT_EQ(few.intervalCount, 3);
  ASSERT_TRUE(Build("4").built);
  notifier_.QueueAnswer(Answer::kCancel);
  const ModelReport report = Build("12");  // 48 / 12 = 4 intervals
  EXPECT_FALSE(report.built);
  EXPECT_TRUE(report.cancelled);
  EXPECT_TRUE(session_.ModelsBuilt());
  EXPECT_EQ(session_.WordModel().IntervalCount(), 13);
  EXPECT_EQ(session_.IntervalLength(), 4);
}

TEST_F(IntervalModels, ALargeIntervalAsksOnlyWhenItsTweetMapWouldBeSlowAndSaysTheEstimate) {
  std::vector<Tweet> tweets(2001, Tweet{0, "storm harbour"});
  for (int h = 1; h <= 30; ++h) tweets.push_back({h, "calm"});
  Prepare(tweets);
  // 2,001 tweets map in well under ten seconds: no question.
  const ModelReport quick = Build("1");
  ASSERT_TRUE(quick.built) << quick.error;
  EXPECT_TRUE(Messages().empty());

  ModelOptions slow;
  slow.largeIntervalQuestionSeconds = 0.0;
  notifier_.QueueAnswer(Answer::kCancel);
  const ModelReport report = Build("1", slow);
  EXPECT_FALSE(report.built);
  EXPECT_TRUE(report.cancelled);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_TRUE(Messages()[0].question);
  EXPECT_NE(Messages()[0].text.find("largest interval, 2001 tweets, would take about "),
            std::string::npos);
  EXPECT_FALSE(session_.ModelsBuilt());
  EXPECT_EQ(session_.WordModel().IntervalCount(), 0);

  // OK goes on.
  const ModelReport again = Build("1", slow);
  ASSERT_TRUE(again.built) << again.error;
  EXPECT_EQ(again.maxIntervalDocCount, 2001);
}

TEST_F(IntervalModels, TooManyIntervalsForTheTermTimeLineShowAnotice) {
  Prepare(EveryTwoHours());
  ModelOptions options;
  options.maxVisibleColumns = 12;
  options.applicationTitle = "Sylvora v1";
  ASSERT_TRUE(Build("4", options).built);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0].title, "Sylvora v1");
  EXPECT_EQ(Messages()[0].icon, MessageIcon::kInformation);
  notifier_ = RecordingNotifier();
  options.maxVisibleColumns = 13;
  ASSERT_TRUE(Build("4", options).built);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(IntervalModels, EventsArePlacedInTheirIntervals) {
  Prepare(EveryTwoHours());
  ModelOptions options;
  options.events = {{"2013-09-02 09:00:00", "landfall"},
                    {"02/09/13 09:30:00", "surge"},
                    {"2013-09-03 20:00:00", "power back"},
                    {"2013-10-30 00:00:00", "far away"},
                    {"someday", "unknown"}};
  const ModelReport report = Build("4", options);
  ASSERT_TRUE(report.built);
  const TextStream& words = session_.WordModel();
  // Intervals of 4 hours: hour 9 lies in interval 3 (hours 8 to 11), hour 44 in interval 12.
  EXPECT_EQ(words.Events(2), "");
  EXPECT_EQ(words.Events(3), "|landfall|surge");
  EXPECT_EQ(words.Events(12), "|power back");
  EXPECT_EQ(report.warnings.size(), 2u);
}

// A words model whose intervals hold the given numbers of distinct terms.
TextStream ModelWithDistinctTerms(const std::vector<std::int32_t>& counts) {
  TextStream model;
  model.TIFM().Reset(100, static_cast<std::int32_t>(counts.size()));
  for (std::size_t i = 0; i < counts.size(); ++i) {
    for (std::int32_t t = 1; t <= counts[i]; ++t) {
      model.TIFM().SetValue(t, static_cast<std::int32_t>(i) + 1, 0.5f);
    }
  }
  return model;
}

TEST(ChooseTrunK, TakesTheSmallestIntervalWithAtLeast26Terms) {
  struct Case {
    std::vector<std::int32_t> counts;
    std::int32_t trunK;
  };
  for (const Case& test : {Case{{30, 27, 10, 40}, 27}, Case{{26, 25, 80}, 26},
                           Case{{25, 3, 0}, 9999}, Case{{}, 9999}, Case{{99, 100}, 99}}) {
    EXPECT_EQ(ChooseTrunK(ModelWithDistinctTerms(test.counts)), test.trunK);
  }
}

}  // namespace
}  // namespace sylvora

namespace sylvora {
namespace {

// A build that would pass the memory budget is refused before it grows, naming the interval
// count and a length that fits; the length it names builds within the same budget.
TEST_F(IntervalModels, BuildsPastTheMemoryBudgetAreRefusedWithALengthThatFits) {
  struct Case {
    std::int64_t budget;
    const char* stage;  // what passes the budget
    const char* fits;   // the length the message proposes
  };
  // Length 2: 25 intervals at 1,024 bytes, and 144 pairs of intervals sharing terms at 32.
  Prepare(EveryTwoHours());
  for (const Case c : {Case{20'000, "intervals", "3"}, Case{28'000, "pairs", "3"}}) {
    SCOPED_TRACE(c.stage);
    const std::size_t before = Messages().size();
    ModelOptions options;
    options.memoryBudgetBytes = c.budget;
    const ModelReport refused = Build("2", options);
    EXPECT_FALSE(refused.built);
    EXPECT_FALSE(session_.ModelsBuilt());
    EXPECT_EQ(session_.WordModel().NM().ColCount(), 0);
    EXPECT_NE(refused.error.find("25 intervals"), std::string::npos) << refused.error;
    EXPECT_NE(refused.error.find(std::string("at least ") + c.fits + " hours"), std::string::npos)
        << refused.error;
    ASSERT_EQ(Messages().size(), before + 1);
    EXPECT_EQ(Messages().back().title, kIntervalLengthTitle);
    const ModelReport fitted = Build(c.fits, options);
    EXPECT_TRUE(fitted.built) << fitted.error;
  }
}

}  // namespace
}  // namespace sylvora
