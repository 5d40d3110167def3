// The indexing workflow: five indexes from a loaded corpus, their options, and its failures.

#include "session/corpus_index.h"

#include <gtest/gtest.h>

#include <cctype>

#include "session/corpus_load.h"
#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

std::string StopListPath() { return (testing::SourceDir() / "data" / "common_words.txt").string(); }

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
  options.stopListPath = StopListPath();
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
  EXPECT_EQ(report.status, "All done :-)");

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

TEST(BuildIndexes, KeepsWordsFoundInExactlyHalfTheDocumentsAtTheDefaultMaxDF) {
  Session session;
  // "alpha" in 3 of 6 documents (kept), "beta" in 4 (removed), "gamma" in 2 (kept).
  Fill(session, {{"u", "alpha beta gamma"},
                 {"u", "alpha beta gamma"},
                 {"u", "alpha beta"},
                 {"u", "beta"},
                 {"u", "delta"},
                 {"u", "delta"}});
  IndexOptions options = SmallOptions();
  const IndexReport report = BuildIndexes(session, options);
  ASSERT_TRUE(report.indexed) << report.error;
  EXPECT_EQ(report.maxDocFrequency, 3);
  EXPECT_EQ(Terms(session.WordIndex()), (Strings{"alpha", "delta", "gamma"}));
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
}

struct OptionCase {
  const char* what;
  bool porter;
  bool abbreviations;
  int minChars;
  Strings words;
};

TEST(BuildIndexes, WordOptionsReachTheWordIndex) {
  const std::vector<Tweet> tweets = {{"u", "NASA flooding ox", "", "", ""},
                                     {"u", "NASA flooded ox", "", "", ""}};
  const OptionCase cases[] = {
      {"defaults", true, true, 3, {"NASA", "flood"}},
      {"no stemming", false, true, 3, {"NASA", "flooding", "flooded"}},
      {"no abbreviations", true, false, 3, {"flood", "nasa"}},
      {"two characters", true, true, 2, {"NASA", "flood", "ox"}},
  };
  for (const OptionCase& c : cases) {
    Session session;
    Fill(session, tweets);
    IndexOptions options = SmallOptions();
    options.minDocFrequency = 1;
    options.maxDocFrequency = 2;
    options.porter = c.porter;
    options.abbreviations = c.abbreviations;
    options.minChars = c.minChars;
    const IndexReport report = BuildIndexes(session, options);
    ASSERT_TRUE(report.indexed) << c.what << ": " << report.error;
    EXPECT_EQ(Terms(session.WordIndex()), c.words) << c.what;
    EXPECT_EQ(session.WordIndex().IsStemmed(), c.porter) << c.what;
  }
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

TEST(BuildIndexes, WritesTheIndexingLogOfTheWordIndex) {
  Session session;
  Fill(session, kTweets);
  const IndexReport report = BuildIndexes(session, SmallOptions());
  ASSERT_TRUE(report.indexed);
  const std::string& log = report.log;
  EXPECT_TRUE(log.starts_with("Assigning text for processing...[Completed in ")) << log;
  EXPECT_NE(log.find(" s]\r\nPre-processing input text... [Completed in "), std::string::npos);
  EXPECT_NE(log.find("Building vocabulary..."), std::string::npos);
  EXPECT_NE(log.find(" index terms retained [Completed in "), std::string::npos);
  EXPECT_NE(log.find("Counting Term-Doc occurrences...Terms retained within DF bounds = 1 "
                     "[Completed in "),
            std::string::npos)
      << log;
  EXPECT_NE(log.find(" s\r\nAll done! [20"), std::string::npos) << log;
  EXPECT_TRUE(log.ends_with("]\r\n"));

  Strings stages;
  for (const StageTiming& stage : report.stages) stages.push_back(stage.stage);
  EXPECT_EQ(stages.size(), 5u + 4 * 4);
  EXPECT_EQ(stages.front(), "words: assign");
  EXPECT_EQ(stages[4], "words: tf-idf");
  EXPECT_EQ(stages[5], "links: assign");
  EXPECT_EQ(stages.back(), "users: counts");
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

TEST(BuildIndexes, ACancelKeepsTheSessionAsItWas) {
  Session session;
  Fill(session, kTweets);
  std::vector<std::string> stages;
  const ProgressCallback cancelHashtags = [&](std::string_view stage, std::int64_t, std::int64_t) {
    stages.emplace_back(stage);
    return !stage.starts_with("hashtags");
  };
  const IndexReport report = BuildIndexes(session, SmallOptions(), cancelHashtags);
  EXPECT_FALSE(report.indexed);
  EXPECT_TRUE(report.cancelled);
  EXPECT_FALSE(session.Indexed());
  EXPECT_EQ(session.WordIndex().TermCount(), 0);
  ASSERT_FALSE(stages.empty());
  EXPECT_EQ(stages.front(), "words: Assigning text");
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

// The bundled sample through load and indexing: indexes a reader of the corpus recognises.
class SampleIndexes : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    session_ = new Session;
    testing::RecordingNotifier notifier;
    LoadOptions load;
    load.path = (testing::SourceDir() / "data" / "sample_twitter11.txt").string();
    ASSERT_TRUE(LoadCorpus(*session_, load, notifier).loaded);
    IndexOptions options;
    options.stopListPath = StopListPath();
    report_ = new IndexReport(BuildIndexes(*session_, options));
  }
  static void TearDownTestSuite() {
    delete session_;
    delete report_;
  }
  static Session* session_;
  static IndexReport* report_;
};

Session* SampleIndexes::session_ = nullptr;
IndexReport* SampleIndexes::report_ = nullptr;

TEST_F(SampleIndexes, UsesTheDefaultBounds) {
  ASSERT_TRUE(report_->indexed) << report_->error;
  EXPECT_EQ(report_->minDocFrequency, 7);
  EXPECT_EQ(report_->maxDocFrequency, 2500);
  EXPECT_EQ(report_->wordDocuments, 5000);
}

TEST_F(SampleIndexes, WordsAreTheStorysStemmedVocabularyWithoutStopWords) {
  const TermDocumentMatrix& words = session_->WordIndex();
  EXPECT_GT(words.TermCount(), 300);
  EXPECT_TRUE(words.IsStemmed());
  EXPECT_TRUE(words.WeightsApplied());
  for (const char* word : {"storm", "power", "marisol", "harbour", "flooding", "outages"}) {
    EXPECT_GT(words.TermIndex(word), 0) << word;
  }
  for (const char* stop : {"the", "and", "about", "with"}) {
    EXPECT_EQ(words.TermIndex(stop), -1) << stop;
  }
  for (std::int32_t t = 1; t <= words.TermCount(); ++t) {
    const std::string& term = words.Term(t);
    EXPECT_GE(words.DocFreq(t), 7) << term;
    EXPECT_LE(words.DocFreq(t), 2500) << term;
    EXPECT_LE(term.size(), 15u) << term;
    for (const char c : term) EXPECT_FALSE(std::isdigit(static_cast<unsigned char>(c))) << term;
  }
  // The most frequent word of a storm corpus is about the storm.
  const auto top = TermsByDocumentFrequency(words, 10);
  Strings topTerms;
  for (const std::int32_t t : top) topTerms.push_back(words.Term(t));
  EXPECT_NE(std::find(topTerms.begin(), topTerms.end(), "power"), topTerms.end());
  EXPECT_NE(std::find(topTerms.begin(), topTerms.end(), "marisol"), topTerms.end());
}

TEST_F(SampleIndexes, SecondaryIndexesHoldWholeTagsLinksMentionsAndUsers) {
  const TermDocumentMatrix& tags = session_->HashtagIndex();
  EXPECT_GT(tags.TermIndex("marisol"), 0);
  EXPECT_GT(tags.TermIndex("wrennaoutage"), 0);
  for (std::int32_t t = 1; t <= tags.TermCount(); ++t) {
    for (const char c : tags.Term(t)) EXPECT_TRUE(std::islower(static_cast<unsigned char>(c)));
    EXPECT_GE(tags.DocFreq(t), 2);
  }
  const TermDocumentMatrix& links = session_->LinkIndex();
  EXPECT_GT(links.TermCount(), 20);
  for (std::int32_t t = 1; t <= links.TermCount(); ++t) {
    const std::string& link = links.Term(t);
    EXPECT_TRUE(link.starts_with("http://") || link.starts_with("https://")) << link;
    EXPECT_EQ(link.find("://", link.find("://") + 1), std::string::npos) << link;
  }
  const TermDocumentMatrix& mentions = session_->MentionIndex();
  EXPECT_GT(mentions.TermCount(), 20);
  const TermDocumentMatrix& users = session_->UserIndex();
  EXPECT_GT(users.TermCount(), 100);
  // A user's document frequency is the number of tweets the corpus has from that user.
  const DocumentSet& documents = session_->Documents();
  const std::int32_t topUser = TermsByDocumentFrequency(users, 1)[0];
  DocIndex tweets = 0;
  for (DocIndex d = 0; d < documents.DocumentCount(); ++d) {
    tweets += documents.Text(d, documents.AuthorField()) == users.Term(topUser);
  }
  EXPECT_EQ(users.DocFreq(topUser), tweets);
  EXPECT_GT(tweets, 50);
}

TEST_F(SampleIndexes, TheWordMatrixMatchesTheTermStatistics) {
  const TermDocumentMatrix& words = session_->WordIndex();
  const SparseMatrixSingle& matrix = words.Matrix();
  ASSERT_EQ(matrix.ColCount(), 5000);
  ASSERT_EQ(matrix.RowCount(), words.TermCount());
  std::vector<std::int32_t> docFreq(static_cast<std::size_t>(words.TermCount()) + 1, 0);
  for (std::int32_t d = 1; d <= matrix.ColCount(); ++d) {
    for (const std::int32_t t : matrix.Vector(d)->ElementIndexes())
      ++docFreq[static_cast<std::size_t>(t)];
  }
  for (std::int32_t t = 1; t <= words.TermCount(); ++t) {
    ASSERT_EQ(docFreq[static_cast<std::size_t>(t)], words.DocFreq(t)) << words.Term(t);
  }
}

}  // namespace
}  // namespace sylvora
