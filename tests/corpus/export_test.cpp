#include <gtest/gtest.h>

#include "corpus/corpus_fixtures.h"
#include "corpus/document_set.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::MakeSet;
using testing::ReadFile;
using testing::TempDir;

TEST(ExportTSV, WritesHeaderWithTrailingTabAndRows) {
  TempDir dir;
  DocumentSet set = MakeSet({{"1", "2"}, {"3", "4"}}, 11);
  set.InitFieldDefs(12, "", "");
  set.SetFieldName(0, "A");
  set.SetFieldName(1, "B");
  // Format 11 has three fields; the third stays empty.
  const std::string path = (dir.Path() / "out.tsv").string();
  ASSERT_TRUE(set.ExportTSV(path, true));
  EXPECT_EQ(ReadFile(path), "A\tB\tContent\t\r\n1\t2\t\r\n3\t4\t\r\n");
  ASSERT_TRUE(set.ExportTSV(path, false));
  EXPECT_EQ(ReadFile(path), "1\t2\t\r\n3\t4\t\r\n");
}

TEST(ExportTSV, OneFieldPerLineAndTheFileLoadsAgain) {
  TempDir dir;
  DocumentSet single = MakeSet({{"first text"}, {"second text"}}, 0);
  const std::string path = (dir.Path() / "single.tsv").string();
  ASSERT_TRUE(single.ExportTSV(path, false));
  EXPECT_EQ(ReadFile(path), "first text\r\nsecond text\r\n");

  DocumentSet tweets = MakeSet({{"20110105T10:00:00Z", "ann", "hello world", "2", "-1", "1"},
                                {"20110105T11:00:00Z", "bob", "good evening", "3", "-2", "1"}},
                               7);
  std::string roundTrip = (dir.Path() / "tweets.tsv").string();
  ASSERT_TRUE(tweets.ExportTSV(roundTrip, false));
  DocumentSet loaded;
  ASSERT_TRUE(loaded.LoadDocuments(roundTrip, 7, "\n", 0, 0, false)) << loaded.LastError();
  ASSERT_EQ(loaded.DocumentCount(), 2);
  for (FieldIndex f = 0; f < 6; ++f) EXPECT_EQ(loaded.Text(1, f), tweets.Text(1, f));
}

TEST(ExportRIS, ElevenLinesPerDocument) {
  TempDir dir;
  DocumentSet set = MakeSet({{"JOUR", "", "2001", "A title", "An abstract", "note"}}, 6);
  const std::string path = (dir.Path() / "out.ris").string();
  ASSERT_TRUE(set.ExportRIS(path));
  EXPECT_EQ(ReadFile(path),
            "TY - \r\nAN - \r\nAU - \r\nPY - 2001\r\nTI - A title\r\nT2 - \r\n"
            "AB - An abstract\r\nDO - \r\nUR - \r\nER - \r\n\r\n");
}

TEST(ExportRIS, EmptySetGivesAnEmptyFileAndBadRolesWriteNothing) {
  TempDir dir;
  DocumentSet empty;
  const std::string path = (dir.Path() / "empty.ris").string();
  ASSERT_TRUE(empty.ExportRIS(path));
  EXPECT_EQ(ReadFile(path), "");

  DocumentSet set = MakeSet({{"a", "b"}}, 11);
  set.SetTitleField(9);
  const std::string bad = (dir.Path() / "bad.ris").string();
  EXPECT_FALSE(set.ExportRIS(bad));
  EXPECT_NE(set.LastError().find("TitleField"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(bad));
}

}  // namespace
}  // namespace sylvora
