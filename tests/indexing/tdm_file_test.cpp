// The ".tdm" file: writing, version numbering, reading back, and files that are not right.

#include <gtest/gtest.h>

#include <cmath>

#include "index_fixtures.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

const Strings kTexts = {"aa bb bb", "aa cc", "cc dd", "aa"};

// An index over kTexts whose corpus lies in `dir` as "tweets.txt" (so files are tweets_N.tdm).
TermDocumentMatrix BuiltIndex(const testing::TempDir& dir) {
  const DocumentSet corpus = testing::TextCorpusFile(dir, "tweets.txt", kTexts);
  TermDocumentMatrix index = testing::Assigned(corpus);
  index.Preprocess(true, false, 3, "", false);
  index.BuildVocab(0, 999);
  index.BuildTDM(1, 4);
  return index;
}

// An index with text assigned and nothing else, ready for LoadTDM.
TermDocumentMatrix EmptyIndex(const testing::TempDir& dir, DocIndex documents) {
  const Strings texts(static_cast<std::size_t>(documents), "x");
  const DocumentSet corpus = testing::TextCorpusFile(dir, "tweets.txt", texts);
  TermDocumentMatrix index;
  DocIndex count = documents;
  index.AssignText(corpus, count, false);
  return index;
}

std::string Path(const testing::TempDir& dir, const char* name) {
  return (dir.Path() / name).string();
}

TEST(SaveTDM, WritesAHeaderAndOneLineOfWeightsPerTerm) {
  testing::TempDir dir;
  TermDocumentMatrix index = BuiltIndex(dir);
  ASSERT_EQ(testing::Terms(index), (Strings{"aa", "bb", "cc", "dd"}));
  ASSERT_TRUE(index.SaveTDM(0, false, false, false)) << index.LastError();
  EXPECT_EQ(index.FilePath(), Path(dir, "tweets_0.tdm"));
  EXPECT_EQ(testing::ReadFile(index.FilePath()),
            "4\t4\tWeight=0\tNormalise=False\r\n"
            "aa\t1\t1\t0\t1\r\n"
            "bb\t2\t0\t0\t0\r\n"
            "cc\t0\t1\t1\t0\r\n"
            "dd\t0\t0\t1\t0\r\n");
  // Weights in the general number form.
  ASSERT_TRUE(index.SaveTDM(1, true, false, false));
  const std::string text = testing::ReadFile(index.FilePath());
  // aa is in 3 of 4 documents: ln(4/3) = 0.287682072451781, halved in document 1 where bb
  // occurs twice; bb, normalised to 1 there, is in 1 document: ln(4) = 1.38629436111989.
  EXPECT_NE(text.find("4\t4\tWeight=1\tNormalise=True\r\n"), std::string::npos);
  EXPECT_NE(text.find("aa\t0.14384103622589\t0.287682072451781\t0\t0.287682072451781\r\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("bb\t1.38629436111989\t0\t0\t0\r\n"), std::string::npos) << text;
}

TEST(SaveTDM, WritesSmallAndLargeWeightsInExponentForm) {
  testing::TempDir dir;
  dir.WriteFile("tweets_0.tdm",
                "1\t4\tWeight=0\tNormalise=False\r\nterm\t1E-05\t0.25\t3\t2251799813685248\r\n");
  TermDocumentMatrix index = EmptyIndex(dir, 4);
  index.LoadTDM(false);
  index.SetVersion(1);
  ASSERT_TRUE(index.SaveTDM(0, false, false, false));
  // The cells are floats: 1E-05 is stored as 9.99999974737875E-06; 2^51 is exact.
  EXPECT_EQ(testing::ReadFile(Path(dir, "tweets_1.tdm")),
            "1\t4\tWeight=0\tNormalise=False\r\nterm\t9.99999974737875E-06\t0.25\t3\t2."
            "25179981368525E+15\r\n");
}

TEST(SaveTDM, NewVersionTakesTheLowestFreeNumber) {
  testing::TempDir dir;
  TermDocumentMatrix index = BuiltIndex(dir);
  dir.WriteFile("tweets_0.tdm", "old");
  dir.WriteFile("tweets_1.tdm", "old");
  dir.WriteFile("tweets_3.tdm", "old");
  ASSERT_TRUE(index.SaveTDM(0, false, false, true));
  EXPECT_EQ(index.Version(), 2);
  EXPECT_EQ(index.FilePath(), Path(dir, "tweets_2.tdm"));
  EXPECT_EQ(testing::ReadFile(Path(dir, "tweets_0.tdm")), "old");
  ASSERT_TRUE(index.SaveTDM(0, false, false, true));
  EXPECT_EQ(index.Version(), 4);
  // Without a new version the current file is overwritten; a dense save writes the header only.
  index.SetVersion(0);
  ASSERT_TRUE(index.SaveTDM(2, true, true, false));
  EXPECT_EQ(testing::ReadFile(Path(dir, "tweets_0.tdm")), "4\t4\tWeight=2\tNormalise=True\r\n");
}

TEST(SaveTDM, FailsWhenEveryVersionIsTakenOrTheFileCannotBeWritten) {
  testing::TempDir dir;
  TermDocumentMatrix index = BuiltIndex(dir);
  for (int v = 0; v < 256; ++v) dir.WriteFile("tweets_" + std::to_string(v) + ".tdm", "x");
  index.SetVersion(9);
  EXPECT_FALSE(index.SaveTDM(0, false, false, true));
  EXPECT_EQ(index.Version(), 9);
  EXPECT_NE(index.LastError().find("0 to 255"), std::string::npos);

  std::filesystem::remove(Path(dir, "tweets_17.tdm"));
  std::filesystem::create_directory(Path(dir, "tweets_17.tdm"));  // free by name, not writable
  EXPECT_FALSE(index.SaveTDM(0, false, false, true));
  EXPECT_EQ(index.Version(), 9);
  EXPECT_FALSE(index.LastError().empty());
}

TEST(LoadTDM, ReadsBackWhatSaveWrote) {
  testing::TempDir dir;
  TermDocumentMatrix saved = BuiltIndex(dir);
  saved.WeightMatrixValues(1);
  ASSERT_TRUE(saved.SaveTDM(0, false, false, false));

  TermDocumentMatrix loaded = EmptyIndex(dir, 4);
  loaded.LoadTDM(false);
  EXPECT_EQ(testing::Terms(loaded), testing::Terms(saved));
  EXPECT_EQ(loaded.DocCount(), 4);
  for (std::int32_t t = 1; t <= 4; ++t) {
    EXPECT_EQ(loaded.DocFreq(t), 0);
    EXPECT_EQ(loaded.GlobalFreq(t), 0);
    for (std::int32_t d = 1; d <= 4; ++d) {
      EXPECT_EQ(loaded.Matrix().Value(t, d), saved.Matrix().Value(t, d)) << t << "," << d;
    }
  }
  EXPECT_FALSE(loaded.WeightsApplied());
}

TEST(LoadTDM, ReadsTheDocumentFrequencyFieldWhenTold) {
  testing::TempDir dir;
  dir.WriteFile("tweets_0.tdm",
                "2\t3\tWeight=0\tNormalise=False\r\n"
                "storm\t2\t1.5\t0\t2\r\n"
                "rain\t1\t0\t0.25\t0\r\n");
  TermDocumentMatrix index = EmptyIndex(dir, 3);
  index.LoadTDM(true);
  EXPECT_EQ(testing::Terms(index), (Strings{"storm", "rain"}));
  EXPECT_EQ(std::pair(index.DocFreq(1), index.DocFreq(2)), std::pair(2, 1));
  EXPECT_EQ(index.Matrix().GetDenseMatrix(),
            (std::vector<std::vector<float>>{{1.5f, 0, 2}, {0, 0.25f, 0}}));
  // The loaded weights take schemes like counts do.
  EXPECT_DOUBLE_EQ(index.TermWeight(1, 1, 1, false), 1.5 * std::log(3.0 / 2.0));
}

// Only the assigned documents are read, a file of fewer documents lowers the count, weights of 0
// or below leave the cell empty, LF line ends do, and an empty file gives no terms.
TEST(LoadTDM, ReadsWhatTheFileAndTheAssignmentShare) {
  struct Case {
    std::string file;
    DocIndex assigned, documents;
    std::vector<float> cells;  // term 1, documents 1..documents
  };
  const Case cases[] = {
      {"1\t10\tWeight=0\tNormalise=False\r\nterm\t1\t2\t3\t4\t5\t6\t7\t8\t9\t10\r\n",
       8,
       8,
       {1, 2, 3, 4, 5, 6, 7, 8}},
      {"1\t2\tWeight=0\tNormalise=False\nterm\t1\t2\n", 5, 2, {1, 2}},
      {"1\t3\tWeight=0\tNormalise=False\r\nterm\t0\t-1.5\t1E-05\r\n", 3, 3, {0, 0, 1e-05f}},
      {"", 2, 2, {}},
  };
  for (const Case& c : cases) {
    testing::TempDir dir;
    dir.WriteFile("tweets_0.tdm", c.file);
    TermDocumentMatrix index = EmptyIndex(dir, c.assigned);
    index.LoadTDM(false);
    EXPECT_EQ(index.DocCount(), c.documents) << c.file;
    EXPECT_EQ(index.Matrix().ColCount(), c.documents) << c.file;
    EXPECT_EQ(index.TermCount(), c.cells.empty() ? 0 : 1) << c.file;
    for (std::size_t d = 0; d < c.cells.size(); ++d) {
      const auto doc = static_cast<std::int32_t>(d) + 1;
      EXPECT_EQ(index.Matrix().Value(1, doc), c.cells[d]) << c.file;
      EXPECT_EQ(index.Matrix().IsEmpty(1, doc), c.cells[d] == 0.0f) << c.file;
    }
  }
}

// A missing version, or an index that already has terms, raises error 5000 and leaves the
// index as it was.
TEST(LoadTDM, AMissingVersionOrAnIndexWithTermsRaisesError5000) {
  testing::TempDir dir;
  TermDocumentMatrix empty = EmptyIndex(dir, 2);
  empty.SetVersion(3);
  try {
    empty.LoadTDM(false);
    FAIL() << "no error";
  } catch (const TdmVersionError& error) {
    EXPECT_EQ(error.Number(), 5000);
    EXPECT_EQ(error.Path(), Path(dir, "tweets_3.tdm"));
  }
  EXPECT_EQ(empty.TermCount(), 0);
  TermDocumentMatrix index = BuiltIndex(dir);
  ASSERT_TRUE(index.SaveTDM(0, false, false, false));
  EXPECT_THROW(index.LoadTDM(false), TdmVersionError);
  EXPECT_EQ(index.TermCount(), 4);
  EXPECT_EQ(index.DocFreq(1), 3);
}

struct BadFile {
  const char* what;
  const char* content;
  bool dfField;
  int line;
  const char* message;
};

TEST(LoadTDM, ABadFileIsAnErrorNamingTheLineAndLeavesTheIndexUnchanged) {
  const BadFile cases[] = {
      {"header without counts", "5\r\n", false, 1, "document count"},
      {"text for the term count", "many\t3\r\n", false, 1, "\"many\""},
      {"negative document count", "1\t-3\r\n", false, 1, "\"-3\""},
      {"truncated: a term line missing", "2\t3\r\nterm\t1\t2\t3\r\n", false, 2,
       "before term 2 of 2"},
      {"a weight missing", "1\t3\r\nterm\t1\t2\r\n", false, 2, "document 3"},
      {"text for a weight", "1\t3\r\nterm\t1\tabc\t3\r\n", false, 2, "\"abc\""},
      {"a weight with trailing text", "1\t3\r\nterm\t1\t2x\t3\r\n", false, 2, "\"2x\""},
      {"an empty weight", "1\t3\r\nterm\t1\t\t3\r\n", false, 2, "document 2"},
      {"text for the document frequency", "1\t3\r\nterm\tfew\t1\t2\t3\r\n", true, 2, "\"few\""},
      {"no document frequency", "1\t3\r\nterm\r\n", true, 2, "document frequency"},
  };
  for (const BadFile& c : cases) {
    testing::TempDir dir;
    dir.WriteFile("tweets_0.tdm", c.content);
    TermDocumentMatrix index = EmptyIndex(dir, 3);
    try {
      index.LoadTDM(c.dfField);
      ADD_FAILURE() << c.what << ": no error";
    } catch (const TdmFileError& error) {
      EXPECT_EQ(error.Line(), c.line) << c.what;
      EXPECT_EQ(error.Path(), Path(dir, "tweets_0.tdm")) << c.what;
      EXPECT_NE(std::string(error.what()).find(c.message), std::string::npos)
          << c.what << ": " << error.what();
      EXPECT_NE(std::string(error.what()).find("tweets_0.tdm"), std::string::npos) << c.what;
    }
    EXPECT_EQ(index.TermCount(), 0) << c.what;
    EXPECT_EQ(index.DocCount(), 3) << c.what;
    EXPECT_EQ(index.Matrix().ColCount(), 0) << c.what;
  }
}

}  // namespace
}  // namespace sylvora
