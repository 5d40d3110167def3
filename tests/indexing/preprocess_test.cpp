// Assigning the corpus text to an index and preprocessing it into tokens.

#include <gtest/gtest.h>

#include "index_fixtures.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

struct PreprocessCase {
  const char* what;
  std::string text;
  bool tokeniseOnly;
  bool keepAbbrevs;
  std::uint8_t minLen;
  bool porter;
  std::string expected;
};

// Each step on its own is checked in the token list's tests; these cases check the steps run
// together and in order.
TEST(Preprocess, TurnsTextIntoCleanTokens) {
  testing::TempDir dir;
  const std::string stop = testing::WriteStopList(dir, {"the", "and", "with"});
  const PreprocessCase cases[] = {
      {"punctuation and digits separate; the lone t goes", "Don't stop-believing!! 2011", false,
       false, 3, false, "don stop believing"},
      {"Unicode lower case", "STRA\u00DFE Stra\u00DFe \u0394\u03AD\u03BB\u03C4\u03B1", false, false,
       3, false, "stra\u00DFe stra\u00DFe \u03B4\u03AD\u03BB\u03C4\u03B1"},
      {"a lower-cased letter may be shorter", "\u0130stanbul", false, false, 3, false, "istanbul"},
      {"abbreviations of any script kept", "\u00C9COLE \u0394\u0395 \u00C9cole", false, true, 3,
       false, "\u00C9COLE \u0394\u0395 \u00E9cole"},
      {"words of a script without case keep their length", "\u6771\u4EAC \u5927", false, false, 3,
       false, "\u6771\u4EAC"},
      {"only Latin-script words are stemmed", "caf\u00E9s \u6771\u4EACcats flooding", false, false,
       3, true, "caf\u00E9 \u6771\u4EACcats flood"},
      {"stop words removed after folding", "The storm and THE flood", false, false, 3, false,
       "storm flood"},
      {"tokenise only keeps case and punctuation", "Hello,  World", true, false, 3, false,
       "Hello, World"},
      {"tokenise only drops 1-character tokens", "a bc d", true, false, 3, false, "bc"},
      {"a 1-character token of 2 bytes is dropped too", "\u00E9 bc", true, false, 3, false, "bc"},
      {"tokenise only ignores the minimum length", "ab abc", true, false, 3, false, "ab abc"},
      {"stemming", "Flooding roads closed", false, false, 3, true, "flood road close"},
      {"stemming leaves abbreviations", "NASA launches", false, true, 3, true, "NASA launch"},
      {"empty text", "", false, true, 3, true, ""},
  };
  for (const PreprocessCase& c : cases) {
    const DocumentSet corpus = testing::TextCorpus({c.text});
    TermDocumentMatrix index = testing::Assigned(corpus);
    ASSERT_TRUE(index.Preprocess(c.tokeniseOnly, c.keepAbbrevs, c.minLen, stop, c.porter));
    EXPECT_EQ(index.Text(1), c.expected) << c.what;
    EXPECT_EQ(index.IsStemmed(), c.porter) << c.what;
  }
}

TEST(AssignText, JoinsTheExpressedFieldsWithSpaces) {
  DocumentSet corpus;
  corpus.SetDocuments({{"d", " ann ", "first  text ", "x", "", ""}, {"d", "bob", "", "", "", ""}},
                      7, 2);
  corpus.SetFieldExpressionPattern("0110");
  TermDocumentMatrix index;
  DocIndex count = 2;
  EXPECT_FALSE(index.TextAssigned());
  index.AssignText(corpus, count, false);
  EXPECT_TRUE(index.TextAssigned());
  EXPECT_EQ(index.DocCount(), 2);
  // " " + " ann " + " " + "first  text " trimmed; inner spaces stay.
  EXPECT_EQ(testing::Texts(index), (Strings{"ann  first  text", "bob"}));
  EXPECT_EQ(index.Text(0), "");
  EXPECT_EQ(index.Text(3), "");
}

TEST(AssignText, LowersTooLargeADocumentCountForTheCaller) {
  const DocumentSet corpus = testing::TextCorpus({"one", "two", "three"});
  TermDocumentMatrix index;
  DocIndex count = 10;
  index.AssignText(corpus, count, false);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(index.DocCount(), 3);

  TermDocumentMatrix none;
  DocIndex negative = -4;
  none.AssignText(corpus, negative, false);
  EXPECT_EQ(negative, 0);
  EXPECT_FALSE(none.TextAssigned());
}

TEST(AssignText, AssignsOnlyOnce) {
  const DocumentSet first = testing::TextCorpus({"first"});
  const DocumentSet second = testing::TextCorpus({"second", "more", "texts"});
  TermDocumentMatrix index;
  DocIndex count = 1;
  index.AssignText(first, count, false);
  index.SetVersion(7);
  count = 99;
  index.AssignText(second, count, true);
  EXPECT_EQ(count, 3);  // still clamped
  EXPECT_TRUE(index.IsURLIndex());
  EXPECT_EQ(testing::Texts(index), Strings{"first"});
  EXPECT_EQ(index.Version(), 7);  // the rest of the assignment did not run again
}

TEST(AssignText, ALinkIndexLosesEverySchemePrefix) {
  // "http://" goes first, then "https://": removing the first can make the second.
  const DocumentSet corpus =
      testing::TextCorpus({"http://t.co/a https://example.org/b", "see https://x.io/https://y",
                           "no link", "htthttp://ps://z"});
  TermDocumentMatrix index = testing::Assigned(corpus, true);
  EXPECT_TRUE(index.IsURLIndex());
  EXPECT_EQ(testing::Texts(index), (Strings{"t.co/a example.org/b", "see x.io/y", "no link", "z"}));
}

TEST(AssignText, BasePathIsTheCorpusPathUpToItsFirstDot) {
  testing::TempDir dir;
  std::filesystem::create_directory(dir.Path() / "data.old");
  const DocumentSet corpus = testing::TextCorpusFile(dir, "data.old/tweets.txt", {"text", "more"});
  TermDocumentMatrix index = testing::Assigned(corpus);
  EXPECT_EQ(index.BasePath(), (dir.Path() / "data").string());
  EXPECT_EQ(index.FilePath(), (dir.Path() / "data_0.tdm").string());
}

TEST(AssignText, APathWithoutADotGetsTemp) {
  DocumentSet corpus;
  corpus.SetDocuments({{"", "", "text", "", "", ""}}, 7, 1);
  ASSERT_EQ(corpus.FilePath().find('.'), std::string::npos) << corpus.FilePath();
  TermDocumentMatrix index = testing::Assigned(corpus);
  EXPECT_EQ(index.BasePath(), "/temp");
  EXPECT_EQ(index.Version(), 0);
}

TEST(Preprocess, WithoutTextOnlyMarksStemming) {
  TermDocumentMatrix index;
  EXPECT_TRUE(index.Preprocess(false, true, 3, "/no/such/stop/list", true));
  EXPECT_TRUE(index.IsStemmed());
  EXPECT_EQ(index.StopWordCount(), 0);
}

TEST(Preprocess, AMissingStopListIsAnErrorAndTheTextStaysUnprocessed) {
  const DocumentSet corpus = testing::TextCorpus({"The Storm, again!"});
  TermDocumentMatrix index = testing::Assigned(corpus);
  EXPECT_THROW(index.Preprocess(false, true, 3, "/no/such/stop/list.txt", true), StopListError);
  EXPECT_EQ(index.Text(1), "The Storm, again!");
  EXPECT_FALSE(index.IsStemmed());
  // Splitting at spaces needs no stop list.
  EXPECT_TRUE(index.Preprocess(true, false, 3, "/no/such/stop/list.txt", false));
  EXPECT_EQ(index.Text(1), "The Storm, again!");
}

TEST(Preprocess, LoadsTheStopListOnceWithTheFirstMinimumLength) {
  testing::TempDir dir;
  const std::string stop = testing::WriteStopList(dir, {"to", "the"});
  const DocumentSet corpus = testing::TextCorpus({"to the sea"});
  TermDocumentMatrix index = testing::Assigned(corpus);
  index.Preprocess(false, false, 2, stop, false);
  EXPECT_EQ(index.StopWordCount(), 2);
  EXPECT_EQ(index.Text(1), "sea");
  // A second run reads no file: the path no longer exists and the words stay.
  std::filesystem::remove(stop);
  EXPECT_TRUE(index.Preprocess(false, false, 3, stop, false));
  EXPECT_EQ(index.StopWordCount(), 2);
}

TEST(Preprocess, ACancelLeavesTheTextAsItWas) {
  std::vector<std::string> texts(10000, "Some Words Here");
  const DocumentSet corpus = testing::TextCorpus(texts);
  TermDocumentMatrix index = testing::Assigned(corpus);
  int calls = 0;
  const ProgressCallback cancel = [&](std::string_view, std::int64_t, std::int64_t) {
    ++calls;
    return false;
  };
  EXPECT_FALSE(index.Preprocess(true, false, 3, "", true, cancel));
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(index.Text(1), "Some Words Here");
  EXPECT_EQ(index.Text(10000), "Some Words Here");
  EXPECT_FALSE(index.IsStemmed());
}

}  // namespace
}  // namespace sylvora
