// Term numbering by first-letter bucket and first appearance, and the per-bucket slot limit.

#include <gtest/gtest.h>

#include "index_fixtures.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

TEST(BuildVocab, OrderIsNotAlphabetical) {
  const TermDocumentMatrix index =
      testing::SpaceIndex({"zoo banana apple", "Zebra 9lives avocado _x", "apple cherry"});
  // Bucket 0 (anything not starting with a..z) first, in order of appearance.
  EXPECT_EQ(testing::Terms(index),
            (Strings{"Zebra", "9lives", "_x", "apple", "avocado", "banana", "cherry", "zoo"}));
  EXPECT_EQ(index.LetterStart(1), 4);
  EXPECT_EQ(index.LetterStart(2), 6);
  EXPECT_EQ(index.LetterStart(3), 7);
  EXPECT_EQ(index.LetterStart(26), 8);
  EXPECT_EQ(index.LetterStart(27), 9);
}

TEST(BuildVocab, AFullBucketDropsNewTermsAndCountsThem) {
  // Two slots per bucket: "ax" and "ay" fill bucket a; "az" and later "aw" are dropped, while
  // bucket b still takes its two and drops "bz" (twice, counted once).
  const TermDocumentMatrix index =
      testing::SpaceIndex({"ax ay az", "bx ax aw", "by bz ay bz"}, 1, true);
  EXPECT_EQ(testing::Terms(index), (Strings{"ax", "ay", "bx", "by"}));
  EXPECT_EQ(index.DroppedTermCount(), 3);
}

TEST(BuildVocab, AThousandSlotsPerBucketAtMost) {
  std::string text;
  for (int i = 0; i < 1200; ++i) text += "w" + std::to_string(i) + " ";
  text += "x1 w5";
  const TermDocumentMatrix index = testing::SpaceIndex({text}, 999);
  EXPECT_EQ(index.TermCount(), 1001);
  EXPECT_EQ(index.Term(1000), "w999");
  EXPECT_EQ(index.Term(1001), "x1");
  EXPECT_EQ(index.TermIndex("w1000"), -1);
  EXPECT_EQ(index.DroppedTermCount(), 200);
}

TEST(BuildVocab, WithoutALimitEveryTermIsKeptInTheSameOrder) {
  // More terms in one bucket than a 16-bit slot number holds, and more distinct tokens in one
  // document than 16-bit token numbers hold (they widen part way through it).
  std::string text = "x1";
  for (int i = 0; i < 70000; ++i) text += " w" + std::to_string(i);
  text += " a1 w7";
  const TermDocumentMatrix index =
      testing::SpaceIndex({text, "w69999 a1"}, TermDocumentMatrix::kNoSlotLimit, true);
  EXPECT_EQ(index.TermCount(), 70002);
  EXPECT_EQ(index.DroppedTermCount(), 0);
  EXPECT_EQ(index.Term(1), "a1");
  EXPECT_EQ(index.Term(2), "w0");
  EXPECT_EQ(index.Term(70001), "w69999");
  EXPECT_EQ(index.Term(70002), "x1");
  EXPECT_EQ(index.DocFreq(70001), 2);
  EXPECT_EQ(index.GlobalFreq(9), 2);  // w7
  EXPECT_EQ(index.GlobalFreq(1), 2);  // a1
}

// No tokens, or no slots at all, give the placeholder "foo".
TEST(BuildVocab, NoTokensGiveThePlaceholderFoo) {
  for (const Strings& texts : {Strings{""}, Strings{"", " "}, Strings{"a b c"}}) {
    const TermDocumentMatrix index = testing::SpaceIndex(texts);
    EXPECT_EQ(testing::Terms(index), Strings{"foo"});
    EXPECT_EQ(index.LetterStart(6), 1);
    EXPECT_EQ(index.LetterStart(7), 2);
    EXPECT_EQ(index.LetterStart(27), 2);
  }
  EXPECT_EQ(testing::Terms(testing::SpaceIndex({"cat dog"}, -1, true)), Strings{"foo"});
}

TEST(BuildVocab, AnotherGramLengthBuildsOnlyThePlaceholderAndACallStartsOver) {
  const DocumentSet corpus = testing::TextCorpus({"cat foo dog", "foo foo"});
  TermDocumentMatrix index = testing::Assigned(corpus);
  ASSERT_TRUE(index.BuildVocab(3, 999));
  EXPECT_EQ(testing::Terms(index), Strings{"foo"});
  // The placeholder is matched like any term when the text holds it.
  ASSERT_TRUE(index.BuildTDM(1, 10));
  EXPECT_EQ(index.DocFreq(1), 2);
  EXPECT_EQ(index.GlobalFreq(1), 3);
  // Called again, it starts over.
  TermDocumentMatrix again = testing::Assigned(testing::TextCorpus({"cat dog", "dog eel"}));
  again.BuildVocab(0, 999);
  again.BuildVocab(0, 0);  // one slot per bucket
  EXPECT_EQ(testing::Terms(again), (Strings{"cat", "dog", "eel"}));
  again.BuildVocab(0, 999);
  EXPECT_EQ(again.TermCount(), 3);
}

TEST(TermIndex, FindsTermsAndStemsTheQueryOfAStemmedIndex) {
  testing::TempDir dir;
  const std::string stop = testing::WriteStopList(dir, {"the"});
  const DocumentSet corpus = testing::TextCorpus({"The flooding continues", "flooded roads"});
  TermDocumentMatrix index = testing::Assigned(corpus);
  index.Preprocess(false, true, 3, stop, true);
  index.BuildVocab(0, 999);
  ASSERT_EQ(testing::Terms(index), (Strings{"continu", "flood", "road"}));
  // Case-sensitive; the query is stemmed only in a stemmed index.
  const TermDocumentMatrix plain = testing::SpaceIndex({"flooding roads"});
  EXPECT_EQ((std::vector<std::int32_t>{index.TermIndex("flood"), index.TermIndex("flooding"),
                                       index.TermIndex("roads"), index.TermIndex("Flood"),
                                       index.TermIndex(""), plain.TermIndex("flooding"),
                                       plain.TermIndex("flood")}),
            (std::vector<std::int32_t>{2, 2, 3, -1, -1, 1, -1}));
  // Terms out of range, and of an empty index, are empty texts.
  EXPECT_EQ(plain.Term(0) + plain.Term(-5) + plain.Term(3) + TermDocumentMatrix().Term(1), "");
  EXPECT_EQ(TermDocumentMatrix().TermIndex("x"), -1);
}

}  // namespace
}  // namespace sylvora
