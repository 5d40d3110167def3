// An index built over several ranges of documents on their own threads is the index of one
// pass: same terms in the same order, same drops, frequencies, cells and texts.

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "index_fixtures.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

// Runs with the given number of worker threads.
class ThreadCount {
 public:
  explicit ThreadCount(int threads) {
    setenv("SYLVORA_THREADS", std::to_string(threads).c_str(), 1);
  }
  ~ThreadCount() { unsetenv("SYLVORA_THREADS"); }
};

// Letters for a number: digits would split a word.
std::string Letters(unsigned n) {
  std::string text;
  do {
    text += static_cast<char>('a' + n % 26);
    n /= 26;
  } while (n > 0);
  return text;
}

// 12,300 tweets (three ranges of documents) drawn from a vocabulary that keeps growing, so
// that every range meets terms no earlier range had: stemmable words, capitals, abbreviations,
// Cyrillic, accents, links.
std::vector<std::string> GrowingCorpus() {
  std::mt19937 random(7);
  const std::vector<std::string> shapes = {"running", "Flooding", "USA",           "москва",
                                           "x2",      "ponies",   "https://t.co/", "http://ex.com/",
                                           "café",    "the"};
  std::vector<std::string> texts;
  for (int d = 0; d < 12300; ++d) {
    std::string text;
    for (int w = 0; w < 8; ++w) {
      const std::string& shape = shapes[random() % shapes.size()];
      const auto limit = static_cast<unsigned>(50 + d / 4);
      text += shape + Letters(random() % limit) + (w % 3 == 0 ? ", " : " ");
    }
    texts.push_back(text);
  }
  return texts;
}

struct Built {
  std::vector<std::string> terms, someTexts;
  std::vector<std::int32_t> frequencies, letterStarts;
  std::int64_t dropped = 0;
  std::vector<std::vector<std::pair<std::int32_t, float>>> columns;
  bool operator==(const Built&) const = default;
};

Built Build(const DocumentSet& corpus, bool links, std::int32_t slots, int threads,
            const std::string& stopList) {
  const ThreadCount count(threads);
  TermDocumentMatrix index = testing::Assigned(corpus, links);
  index.Preprocess(links, true, 3, stopList, !links);
  Built built;
  for (DocIndex d = 1; d <= index.DocCount(); d += 997) built.someTexts.push_back(index.Text(d));
  index.BuildVocab(0, slots);
  built.dropped = index.DroppedTermCount();
  for (int b = 0; b < 28; ++b) built.letterStarts.push_back(index.LetterStart(b));
  index.BuildTDM(2, 15000);
  index.WeightMatrixValues(TermDocumentMatrix::kInverseDocumentFrequency);
  built.terms = testing::Terms(index);
  for (std::int32_t t = 1; t <= index.TermCount(); ++t) {
    built.frequencies.push_back(index.DocFreq(t));
    built.frequencies.push_back(index.GlobalFreq(t));
  }
  for (std::int32_t d = 1; d <= index.Matrix().ColCount(); ++d) {
    const SparseVectorSingle& column = *index.Matrix().Vector(d);
    auto& cells = built.columns.emplace_back();
    for (std::size_t k = 0; k < column.ElementIndexes().size(); ++k) {
      cells.emplace_back(column.ElementIndexes()[k], column.ElementValues()[k]);
    }
  }
  return built;
}

TEST(ParallelIndex, RangesOnThreadsGiveTheIndexOfOnePass) {
  const testing::TempDir dir;
  const std::string stopList = testing::WriteStopList(dir, {"thea", "theb", "thec"});
  const DocumentSet corpus = testing::TextCorpus(GrowingCorpus());
  for (const bool links : {false, true}) {
    for (const std::int32_t slots : {TermDocumentMatrix::kNoSlotLimit, 300}) {
      SCOPED_TRACE(std::string(links ? "links" : "words") + ", slots " + std::to_string(slots));
      const Built one = Build(corpus, links, slots, 1, stopList);
      ASSERT_GT(one.terms.size(), 100u);
      EXPECT_EQ(slots == 300, one.dropped > 0);
      EXPECT_EQ(Build(corpus, links, slots, 4, stopList), one);
    }
  }
}

TEST(ParallelIndex, ACancelInAnyStageStopsEveryRangeAndChangesNothing) {
  const ThreadCount count(4);
  TermDocumentMatrix index = testing::Assigned(testing::TextCorpus(GrowingCorpus()));
  const std::string before = index.Text(12300);
  const ProgressCallback cancel = [](std::string_view, std::int64_t done, std::int64_t) {
    return done == 0;
  };
  EXPECT_FALSE(index.Preprocess(true, false, 3, "", false, cancel));
  EXPECT_EQ(index.Text(12300), before);
  ASSERT_TRUE(index.Preprocess(true, false, 3, "", false));
  ASSERT_TRUE(index.BuildVocab(0, TermDocumentMatrix::kNoSlotLimit));
  EXPECT_FALSE(index.BuildTDM(1, 12300, cancel));
  EXPECT_EQ(index.Matrix().ColCount(), 0);
  EXPECT_TRUE(index.BuildTDM(1, 12300));
}

}  // namespace
}  // namespace sylvora
