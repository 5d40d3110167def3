// The indexing workflow: five indexes from a loaded corpus, their options, and its failures.
// The word options (stemming, abbreviations, minimum length) reaching the word index are
// checked through the command line (cli/index_command_test.cpp).

#include "session/corpus_index.h"

#include <gtest/gtest.h>

#include <cctype>

#include "session/corpus_load.h"
#include "session_fixtures.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

// One tweet of a small hand-made corpus.
struct Tweet {
  std::string user, text, link = "", hashtags = "", mentions = "";
};

// A session holding `tweets` in six columns: user 1, text 2 (the only expressed field), link 3,
// hashtags 4, mentions 5, with those roles set as the load workflow sets them.
void Fill(Session& session, const std::vector<Tweet>& tweets) {
  std::vector<std::vector<std::string>> rows;
  for (const Tweet& t : tweets)
    rows.push_back({"", t.user, t.text, t.link, t.hashtags, t.mentions});
  DocumentSet& documents = session.Documents();
  documents.SetDocuments(rows, 7, static_cast<DocIndex>(rows.size()));
  documents.SetAuthorField(1);
  documents.SetContentField(2);
  documents.SetURLField(3);
  documents.SetKeyWordField(4);
  documents.SetRefListField(5);
  documents.SetFieldExpressionPattern("001");
}

const std::vector<Tweet> kTweets = {
    {"ann", "Storm warning for the harbour", "https://t.co/a", "#storm #wx", "@KWRN"},
    {"bob", "The storm is here, stay safe", "http://t.co/a", "#Storm", "@KWRN @ann"},
    {"ann", "Harbour flooded after the storm", "", "#flood", ""},
    {"cy", "Power is out on Main Street", "http://ex.org/p", "#power", "@ann"},
};

IndexOptions SmallOptions() {
  IndexOptions options;
  options.stopListPath = testing::StopListPath();
  options.minDocFrequency = 2;
  options.secondaryMinDocFrequency = 2;
  return options;
}

Strings Terms(const TermDocumentMatrix& index) {
  Strings terms;
  for (std::int32_t t = 1; t <= index.TermCount(); ++t) terms.push_back(index.Term(t));
  return terms;
}

TEST(BuildIndexes, BuildsTheFiveIndexesOfASmallCorpus) {
  Session session;
  Fill(session, kTweets);
  const IndexReport report = BuildIndexes(session, SmallOptions());
  ASSERT_TRUE(report.indexed) << report.error;
  EXPECT_TRUE(session.Indexed());
  EXPECT_EQ(report.minDocFrequency, 2);
  EXPECT_EQ(report.maxDocFrequency, 2);  // half of 4 documents

  // "storm" is in 3 documents, more than half: pruned. "harbour" is in 2.
  EXPECT_EQ(Terms(session.WordIndex()), Strings{"harbour"});
  EXPECT_TRUE(session.WordIndex().WeightsApplied());
  EXPECT_EQ(session.WordIndex().DocCount(), 4);
  EXPECT_EQ(Terms(session.LinkIndex()), Strings{"https://t.co/a"});
  EXPECT_EQ(session.LinkIndex().DocFreq(1), 2);
  EXPECT_EQ(Terms(session.HashtagIndex()), Strings{"storm"});            // cleaned and lower-cased
  EXPECT_EQ(Terms(session.MentionIndex()), (Strings{"@KWRN", "@ann"}));  // whole, case kept
  EXPECT_EQ(Terms(session.UserIndex()), Strings{"ann"});
  EXPECT_EQ(session.UserIndex().GlobalFreq(1), 2);
  for (const IndexKind kind : kIndexKinds) {
    EXPECT_EQ(session.Index(kind).Matrix().ColCount(), 4) << IndexKindName(kind);
  }
  // Every field is switched off afterwards.
  EXPECT_EQ(session.Documents().FieldExpressionPattern(), "000000");
}

TEST(BuildIndexes, DefaultBoundsFollowTheCorpusSize) {
  EXPECT_EQ(DefaultMinDocFrequency(5000), 7);
  EXPECT_EQ(DefaultMinDocFrequency(999), 2);
  EXPECT_EQ(DefaultMinDocFrequency(1000000), 1002);
  EXPECT_EQ(DefaultMaxDocFrequency(5000), 2500.0);
  EXPECT_EQ(DefaultMaxDocFrequency(5001), 2500.5);

  // A Max DF with a half rounds to the even neighbour: 2.5 documents count as 2.
  Session session;
  Fill(session, {{"u", "alpha"}, {"u", "alpha"}, {"u", "alpha beta"}, {"u", "beta"}, {"u", "x"}});
  IndexOptions options = SmallOptions();
  const IndexReport report = BuildIndexes(session, options);
  ASSERT_TRUE(report.indexed) << report.error;
  EXPECT_EQ(report.maxDocFrequency, 2);
  EXPECT_EQ(report.minDocFrequency, 2);
  EXPECT_EQ(Terms(session.WordIndex()), Strings{"beta"});

  // Words found in exactly half the documents are kept: "alpha" in 3 of 6 (kept), "beta" in 4
  // (removed), "gamma" in 2 (kept).
  Session six;
  Fill(six, {{"u", "alpha beta gamma"},
             {"u", "alpha beta gamma"},
             {"u", "alpha beta"},
             {"u", "beta"},
             {"u", "delta"},
             {"u", "delta"}});
  const IndexReport half = BuildIndexes(six, SmallOptions());
  ASSERT_TRUE(half.indexed) << half.error;
  EXPECT_EQ(half.maxDocFrequency, 3);
  EXPECT_EQ(Terms(six.WordIndex()), (Strings{"alpha", "delta", "gamma"}));
}

TEST(BuildIndexes, TheWordIndexMayCoverFewerDocumentsAndMoreFields) {
  Session session;
  Fill(session, kTweets);
  IndexOptions options = SmallOptions();
  options.wordDocumentCount = 2;
  options.wordFields = {1};  // the user column joins the text
  options.minDocFrequency = 1;
  options.maxDocFrequency = 2;
  const IndexReport report = BuildIndexes(session, options);
  ASSERT_TRUE(report.indexed) << report.error;
  EXPECT_EQ(report.wordDocuments, 2);
  EXPECT_EQ(session.WordIndex().DocCount(), 2);
  EXPECT_GT(session.WordIndex().TermIndex("ann"), 0);
  EXPECT_EQ(session.UserIndex().DocCount(), 4);
  EXPECT_EQ(session.Documents().FieldExpressionPattern(), "000000");

  // A second run covers only the fields it switches on.
  options.wordFields = {4};  // hashtags
  ASSERT_TRUE(BuildIndexes(session, options).indexed);
  EXPECT_EQ(session.WordIndex().TermIndex("ann"), -1);
  EXPECT_EQ(session.WordIndex().TermIndex("harbour"), -1);
  EXPECT_GT(session.WordIndex().TermIndex("storm"), 0);
}

TEST(BuildIndexes, TermsPerFirstLetterIsOffByDefaultAndCountsWhatItDrops) {
  // Mentions "@KWRN" and "@ann" share bucket 0, users "ann", "bob" and "cy" have a bucket each.
  struct Case {
    std::int32_t termsPerLetter;
    std::int64_t droppedMentions;
    Strings mentions;
  };
  for (const Case& c :
       {Case{0, 0, {"@KWRN", "@ann"}}, Case{1, 1, {"@KWRN"}}, Case{2, 0, {"@KWRN", "@ann"}}}) {
    Session session;
    Fill(session, kTweets);
    IndexOptions options = SmallOptions();
    options.termsPerLetter = c.termsPerLetter;
    const IndexReport report = BuildIndexes(session, options);
    ASSERT_TRUE(report.indexed) << report.error;
    const auto mentions = static_cast<std::size_t>(IndexKind::kMentions);
    EXPECT_EQ(report.droppedTerms[mentions], c.droppedMentions) << c.termsPerLetter;
    EXPECT_EQ(Terms(session.MentionIndex()), c.mentions) << c.termsPerLetter;
    const bool logged = report.log.find(
                            "mentions index: 1 terms dropped (more than 1 per first "
                            "letter)\r\n") != std::string::npos;
    EXPECT_EQ(logged, c.droppedMentions > 0) << report.log;
  }
  IndexOptions negative = SmallOptions();
  negative.termsPerLetter = -1;
  Session session;
  Fill(session, kTweets);
  EXPECT_FALSE(BuildIndexes(session, negative).indexed);
}

TEST(BuildIndexes, AMissingStopListStopsTheRunAndKeepsTheSessionsIndexes) {
  Session session;
  Fill(session, kTweets);
  ASSERT_TRUE(BuildIndexes(session, SmallOptions()).indexed);
  session.Documents().SetFieldExpressionPattern("001");
  IndexOptions options = SmallOptions();
  options.stopListPath = "/no/such/common_words.txt";
  const IndexReport report = BuildIndexes(session, options);
  EXPECT_FALSE(report.indexed);
  EXPECT_FALSE(report.cancelled);
  EXPECT_NE(report.error.find("/no/such/common_words.txt"), std::string::npos) << report.error;
  EXPECT_EQ(Terms(session.WordIndex()), Strings{"harbour"});  // the earlier run's
  EXPECT_EQ(session.Documents().FieldExpressionPattern(), "001000");
}

TEST(BuildIndexes, RefusesBadOptionsAndAnEmptySession) {
  Session empty;
  EXPECT_FALSE(BuildIndexes(empty, SmallOptions()).indexed);
  Session session;
  Fill(session, kTweets);
  IndexOptions options = SmallOptions();
  options.minChars = 256;
  EXPECT_NE(BuildIndexes(session, options).error.find("Min Chars"), std::string::npos);
  options = SmallOptions();
  options.maxDocFrequency = 1e12;
  EXPECT_NE(BuildIndexes(session, options).error.find("Max DF"), std::string::npos);
  EXPECT_FALSE(session.Indexed());
}

TEST(TermsByDocumentFrequency, OrdersByFallingFrequencyThenTermNumber) {
  Session session;
  Fill(session, {{"u", "aa bb"}, {"u", "bb cc"}, {"u", "cc dd"}, {"u", "bb"}});
  IndexOptions options = SmallOptions();
  options.minDocFrequency = 1;
  options.maxDocFrequency = 4;
  options.minChars = 2;
  ASSERT_TRUE(BuildIndexes(session, options).indexed);
  const TermDocumentMatrix& words = session.WordIndex();
  ASSERT_EQ(Terms(words), (Strings{"aa", "bb", "cc", "dd"}));
  EXPECT_EQ(TermsByDocumentFrequency(words, 10), (std::vector<std::int32_t>{2, 3, 1, 4}));
  EXPECT_EQ(TermsByDocumentFrequency(words, 2), (std::vector<std::int32_t>{2, 3}));
  EXPECT_TRUE(TermsByDocumentFrequency(words, 0).empty());
}

}  // namespace
}  // namespace sylvora
