// Counting terms per document and pruning by document frequency, against the plain algorithm.

#include <gtest/gtest.h>

#include <random>

#include "index_fixtures.h"
#include "indexing/character_classes.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

TEST(BuildTDM, ReleasesTheTextOnlyWhenItPrunes) {
  const TermDocumentMatrix pruned = testing::SpaceIndex({"cat dog", "dog eel"}, 999, true, 1, 2);
  EXPECT_EQ(pruned.Text(1), "");
  EXPECT_TRUE(pruned.TextAssigned());
  EXPECT_EQ(pruned.DocCount(), 2);

  TermDocumentMatrix kept = testing::SpaceIndex({"cat dog", "dog eel"}, 999, true, 5, 9);
  EXPECT_EQ(kept.Text(1), "cat dog");
  // The text is still there, so other bounds can be tried.
  ASSERT_TRUE(kept.BuildTDM(2, 2));
  EXPECT_EQ(testing::Terms(kept), Strings{"dog"});
  EXPECT_FALSE(kept.BuildTDM(1, 2));  // the text is gone now
  EXPECT_FALSE(kept.LastError().empty());
  EXPECT_EQ(testing::Terms(kept), Strings{"dog"});
}

TEST(BuildTDM, NeedsAVocabulary) {
  const DocumentSet corpus = testing::TextCorpus({"cat"});
  TermDocumentMatrix index = testing::Assigned(corpus);
  EXPECT_FALSE(index.BuildTDM(1, 1));
  EXPECT_EQ(index.TermCount(), 0);
}

// A link seen with "https://" gets it back; one seen under both schemes is one term. A link
// index left unpruned keeps its bare terms.
TEST(BuildTDM, ALinkIndexPutsItsSchemeBackOnEveryTerm) {
  for (const bool pruned : {true, false}) {
    const DocumentSet corpus =
        testing::TextCorpus({"https://t.co/a", "http://t.co/a http://ex.org/b", "https://ex.org/b",
                             "http://plain.io/c", pruned ? "http://plain.io/c" : ""});
    TermDocumentMatrix index = testing::Assigned(corpus, true);
    index.Preprocess(true, false, 3, "", false);
    index.BuildVocab(0, 999);
    ASSERT_TRUE(index.BuildTDM(pruned ? 2 : 3, 3));  // unpruned: nothing has DF 3
    EXPECT_EQ(testing::Terms(index),
              (pruned ? Strings{"https://ex.org/b", "http://plain.io/c", "https://t.co/a"}
                      : Strings{"ex.org/b", "plain.io/c", "t.co/a"}));
    EXPECT_EQ(index.TermIndex("https://t.co/a"), pruned ? 3 : -1);
  }
}

TEST(BuildTDM, ACancelLeavesTheIndexAsItWas) {
  std::vector<std::string> texts(10000, "cat dog");
  TermDocumentMatrix index = testing::SpaceIndex(texts);
  const ProgressCallback cancel = [](std::string_view, std::int64_t, std::int64_t) {
    return false;
  };
  EXPECT_FALSE(index.BuildTDM(1, 10000, cancel));
  EXPECT_EQ(index.DocFreq(1), 0);
  EXPECT_EQ(index.Matrix().ColCount(), 0);
  EXPECT_EQ(index.Text(1), "cat dog");
  EXPECT_TRUE(index.BuildTDM(1, 10000));
  EXPECT_EQ(index.DocFreq(1), 10000);
}

// The counting of the index checked against the plain algorithm it replaces: buckets of slots
// scanned in order, a dense count array per document, and pruning by moving kept terms down.
struct Reference {
  Strings terms;
  std::vector<std::int32_t> docFreq, globalFreq;
  std::vector<std::vector<float>> dense;  // dense[d][t - 1]
};

Reference ReferenceIndex(const std::vector<Strings>& documents, int maxCharSlotSz,
                         std::int32_t minDF, std::int32_t maxDF) {
  const std::size_t slots = static_cast<std::size_t>(maxCharSlotSz + 1);
  std::vector<Strings> table(27, Strings(slots));
  int termCount = 0;
  for (const Strings& document : documents) {
    for (const std::string& token : document) {
      Strings& bucket = table[static_cast<std::size_t>(FirstLetterBucket(token))];
      for (std::string& slot : bucket) {
        if (slot == token) break;
        if (slot.empty()) {
          slot = token;
          ++termCount;
          break;
        }
      }
    }
  }
  Reference ref;
  if (termCount == 0) table[6][0] = "foo";
  std::vector<int> letterStart(28);
  for (int b = 0; b < 27; ++b) {
    letterStart[static_cast<std::size_t>(b)] = static_cast<int>(ref.terms.size()) + 1;
    for (const std::string& slot : table[static_cast<std::size_t>(b)]) {
      if (slot.empty()) break;
      ref.terms.push_back(slot);
    }
  }
  letterStart[27] = static_cast<int>(ref.terms.size()) + 1;
  const std::size_t n = ref.terms.size();
  ref.docFreq.assign(n, 0);
  ref.globalFreq.assign(n, 0);
  for (const Strings& document : documents) {
    std::vector<float> counts(n, 0.0f);
    for (const std::string& token : document) {
      const int b = FirstLetterBucket(token);
      for (int t = letterStart[static_cast<std::size_t>(b)];
           t < letterStart[static_cast<std::size_t>(b) + 1]; ++t) {
        if (ref.terms[static_cast<std::size_t>(t) - 1] == token) {
          if (counts[static_cast<std::size_t>(t) - 1] == 0)
            ++ref.docFreq[static_cast<std::size_t>(t) - 1];
          counts[static_cast<std::size_t>(t) - 1] += 1;
          ++ref.globalFreq[static_cast<std::size_t>(t) - 1];
          break;
        }
      }
    }
    ref.dense.push_back(counts);
  }
  std::vector<std::size_t> kept;
  for (std::size_t t = 0; t < n; ++t) {
    if (ref.docFreq[t] >= minDF && ref.docFreq[t] <= maxDF) kept.push_back(t);
  }
  if (kept.empty()) return ref;
  Reference pruned;
  for (const std::size_t t : kept) {
    pruned.terms.push_back(ref.terms[t]);
    pruned.docFreq.push_back(ref.docFreq[t]);
    pruned.globalFreq.push_back(ref.globalFreq[t]);
  }
  for (const auto& counts : ref.dense) {
    std::vector<float> column;
    for (const std::size_t t : kept) column.push_back(counts[t]);
    pruned.dense.push_back(column);
  }
  return pruned;
}

TEST(BuildTDM, MatchesThePlainAlgorithmOnRandomCorpora) {
  std::mt19937 random(20240611);
  const std::string letters = "abcdeXYZ";
  for (int round = 0; round < 40; ++round) {
    const int docCount = 1 + static_cast<int>(random() % 60);
    const int maxCharSlotSz = static_cast<int>(random() % 6);
    std::vector<Strings> documents;
    std::vector<std::string> texts;
    for (int d = 0; d < docCount; ++d) {
      Strings tokens;
      const int length = static_cast<int>(random() % 12);
      for (int i = 0; i < length; ++i) {
        std::string token(1, letters[random() % letters.size()]);
        token += static_cast<char>('a' + random() % 4);
        if (random() % 2) token += static_cast<char>('a' + random() % 3);
        tokens.push_back(token);
      }
      std::string text;
      for (const std::string& token : tokens) text += (text.empty() ? "" : " ") + token;
      documents.push_back(tokens);
      texts.push_back(text);
    }
    const auto minDF = static_cast<std::int32_t>(random() % 4);
    // Bounds that nothing meets, crossed ones included, leave the index unpruned.
    const auto maxDF = minDF - 1 + static_cast<std::int32_t>(random() % (docCount + 2));
    const Reference ref = ReferenceIndex(documents, maxCharSlotSz, minDF, maxDF);
    const TermDocumentMatrix index =
        testing::SpaceIndex(texts, static_cast<std::int16_t>(maxCharSlotSz), true, minDF, maxDF);

    ASSERT_EQ(testing::Terms(index), ref.terms) << "round " << round;
    for (std::size_t t = 0; t < ref.terms.size(); ++t) {
      const auto term = static_cast<std::int32_t>(t) + 1;
      ASSERT_EQ(index.DocFreq(term), ref.docFreq[t]) << "round " << round << " term " << term;
      ASSERT_EQ(index.GlobalFreq(term), ref.globalFreq[t]) << "round " << round;
    }
    const auto dense = index.Matrix().GetDenseMatrix();
    ASSERT_EQ(dense.size(), ref.terms.size());
    for (std::size_t t = 0; t < ref.terms.size(); ++t) {
      for (int d = 0; d < docCount; ++d) {
        ASSERT_EQ(dense[t][static_cast<std::size_t>(d)], ref.dense[static_cast<std::size_t>(d)][t])
            << "round " << round << " term " << t + 1 << " doc " << d + 1;
      }
    }
  }
}

}  // namespace
}  // namespace sylvora
