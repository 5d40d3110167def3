// Term weights: computed per cell (TermWeight) and applied to the whole matrix
// (WeightMatrixValues).

#include <gtest/gtest.h>

#include <cmath>

#include "index_fixtures.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

// Terms: aa (DF 3, GF 6: 1 + 2 + 3), bb (DF 1, GF 4), cc (DF 2, GF 2).
TermDocumentMatrix Sample() {
  return testing::SpaceIndex({"aa bb bb bb bb", "aa aa cc", "aa aa aa cc"}, 999, true, 1, 3);
}

struct WeightCase {
  const char* what;
  std::int32_t term, doc, scheme;
  bool normalise;
  double expected;
};

TEST(TermWeight, WeighsByTheScheme) {
  const TermDocumentMatrix index = Sample();
  ASSERT_EQ(testing::Terms(index), (std::vector<std::string>{"aa", "bb", "cc"}));
  const double ln3 = std::log(3.0), ln15 = std::log(1.5);
  const WeightCase cases[] = {
      {"raw", 2, 1, 0, false, 4.0},
      {"raw, absent cell", 3, 1, 0, false, 0.0},
      {"idf of a term in every document is 0", 1, 3, 1, false, 0.0},
      {"idf", 2, 1, 1, false, 4.0 * ln3},
      {"idf", 3, 2, 1, false, 1.0 * ln15},
      {"mean frequency: 6 in 3 documents is 2 x tf", 1, 3, 2, false, 2.0 * 3.0},
      {"mean frequency", 2, 1, 2, false, 4.0 * 4.0},
      {"unknown scheme", 2, 1, 3, false, 0.0},
      {"unknown scheme", 2, 1, -1, false, 0.0},
      {"normalised raw: tf / largest tf of the document", 1, 1, 0, true, 0.25},
      {"normalised raw", 2, 1, 0, true, 1.0},
      {"normalised idf", 3, 3, 1, true, static_cast<double>(1.0f / 3.0f) * ln15},
      {"term 0", 0, 1, 0, false, 0.0},
      {"term past the end", 4, 1, 0, false, 0.0},
      {"document 0", 1, 0, 0, false, 0.0},
      {"document past the end", 1, 4, 0, false, 0.0},
  };
  for (const WeightCase& c : cases) {
    EXPECT_DOUBLE_EQ(index.TermWeight(c.term, c.doc, c.scheme, c.normalise), c.expected) << c.what;
  }
}

TEST(TermWeight, NormalisesByARunningMaximumRoundedAtEachNewHigh) {
  // Cells of document 1 in term order: 2.4 (maximum 2), 2.45 (above 2: rounds to 2 again),
  // 2.6 (above 2: maximum 3). Document 2 holds 0.4 only: its maximum rounds to 0.
  testing::TempDir dir;
  const DocumentSet corpus = testing::TextCorpusFile(dir, "n.txt", {"x", "y"});
  dir.WriteFile("n_0.tdm",
                "3\t2\tWeight=0\tNormalise=True\r\n"
                "a\t2.4\t0.4\r\nb\t2.45\t0\r\nc\t2.6\t0\r\n");
  TermDocumentMatrix index = testing::Assigned(corpus);
  index.LoadTDM(false);
  EXPECT_DOUBLE_EQ(index.TermWeight(1, 1, 0, true), static_cast<double>(2.4f / 3.0f));
  EXPECT_DOUBLE_EQ(index.TermWeight(3, 1, 0, true), static_cast<double>(2.6f / 3.0f));
  EXPECT_EQ(index.TermWeight(1, 2, 0, true), 0.0);

  // With 2.4 and then 2.45 alone the maximum stays 2.
  dir.WriteFile("n_1.tdm", "2\t1\tWeight=0\tNormalise=True\r\na\t2.4\r\nb\t2.45\r\n");
  TermDocumentMatrix second;
  DocIndex two = 2;
  second.AssignText(corpus, two, false);
  second.SetVersion(1);
  second.LoadTDM(false);
  EXPECT_DOUBLE_EQ(second.TermWeight(2, 1, 0, true), static_cast<double>(2.45f / 2.0f));
  // An empty document normalises to 0.
  EXPECT_EQ(testing::SpaceIndex({"aa", ""}, 999, true, 1, 2).TermWeight(1, 2, 0, true), 0.0);
}

TEST(WeightMatrixValues, StoresTfIdfAndTermWeightThenReturnsItWhateverTheScheme) {
  TermDocumentMatrix index = Sample();
  ASSERT_TRUE(index.WeightMatrixValues(1));
  EXPECT_TRUE(index.WeightsApplied());
  const float bb = static_cast<float>(4.0 * std::log(3.0));
  EXPECT_EQ(index.Matrix().Value(2, 1), bb);
  // A term in every document keeps a stored weight of 0 (the cell stays, holding 0).
  EXPECT_EQ(index.Matrix().Vector(1)->NZElementCount(), 2);
  EXPECT_EQ(index.Matrix().Value(1, 1), 0.0f);
  for (const std::int32_t scheme : {0, 1, 2, 7}) {
    EXPECT_DOUBLE_EQ(index.TermWeight(2, 1, scheme, false), static_cast<double>(bb)) << scheme;
  }
  EXPECT_EQ(index.TermFreq(2, 1), 4);  // 4.394... rounds to 4
}

TEST(WeightMatrixValues, OtherSchemesOnlyMarkTheWeightsApplied) {
  for (const std::int32_t scheme : {0, 2, 5}) {
    TermDocumentMatrix index = Sample();
    ASSERT_TRUE(index.WeightMatrixValues(scheme));
    EXPECT_TRUE(index.WeightsApplied());
    EXPECT_EQ(index.Matrix().Value(2, 1), 4.0f);
    EXPECT_EQ(index.TermWeight(2, 1, 1, false), 4.0);  // no factor once applied
  }
}

TEST(WeightMatrixValues, ACancelChangesNoCell) {
  std::vector<std::string> texts(10000, "aa bb");
  texts.push_back("aa");
  TermDocumentMatrix index = testing::SpaceIndex(texts, 999, true, 1, 100000);
  const ProgressCallback cancel = [](std::string_view, std::int64_t, std::int64_t) {
    return false;
  };
  EXPECT_FALSE(index.WeightMatrixValues(1, cancel));
  EXPECT_FALSE(index.WeightsApplied());
  EXPECT_EQ(index.Matrix().Value(2, 1), 1.0f);
}

struct FreqCase {
  float cell;
  std::int16_t expected;
};

TEST(TermFreq, RoundsHalvesToEvenAndGivesZeroOnErrors) {
  const TermDocumentMatrix index = Sample();
  EXPECT_EQ(index.TermFreq(2, 1), 4);
  EXPECT_EQ(index.TermFreq(0, 1), 0);
  EXPECT_EQ(index.TermFreq(2, 9), 0);
  EXPECT_EQ(index.TermFreq(-3, -3), 0);

  // Weights read back from a file give cells with fractions.
  testing::TempDir dir;
  const DocumentSet corpus = testing::TextCorpusFile(dir, "f.txt", {"x", "y"});
  const FreqCase cases[] = {{2.5f, 2}, {3.5f, 4}, {0.5f, 0}, {1.4f, 1}, {40000.0f, 0}};
  std::string file = std::to_string(std::size(cases)) + "\t1\tWeight=0\tNormalise=False\r\n";
  for (const FreqCase& c : cases) file += "t\t" + std::to_string(c.cell) + "\r\n";
  dir.WriteFile("f_0.tdm", file);
  TermDocumentMatrix loaded;
  DocIndex count = 2;
  loaded.AssignText(corpus, count, false);
  loaded.LoadTDM(false);
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(loaded.TermFreq(static_cast<std::int32_t>(i) + 1, 1), cases[i].expected)
        << cases[i].cell;
  }
}

}  // namespace
}  // namespace sylvora
