#include <gtest/gtest.h>

#include "corpus/corpus_fixtures.h"
#include "corpus/document_set.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::Column;
using testing::TempDir;
using testing::Tsv;

const std::string kHeader7 = "DateTime\tUser\tTweet\tSent+\tSent-\tSentSum";

std::string Tweet7(int i) {
  return Tsv({"2011010" + std::to_string(i) + "T10:00:00Z", "user" + std::to_string(i),
              "tweet number " + std::to_string(i), "2", "-1", "1"});
}

class Loading : public ::testing::Test {
 protected:
  bool Load(std::string_view content, int dType, int minDocLen = 0, int maxCount = 0) {
    path_ = dir_.WriteFile("corpus.txt", content);
    return set_.LoadDocuments(path_, dType, "\n", minDocLen, maxCount, false);
  }

  TempDir dir_;
  std::string path_;
  DocumentSet set_;
};

// A six-column file with a header row is loaded through the load workflow
// (session/corpus_load_test.cpp), which skips the header.
TEST_F(Loading, CarriageReturnsAreRemovedAndWindows1252IsDecoded) {
  ASSERT_TRUE(Load(Tsv({"d1",
                        "b\xE9"
                        "b",
                        "caf\xE9 time", "1", "-1", "0"}) +
                       "\r\n" + Tweet7(2) + "\r\n",
                   7));
  EXPECT_EQ(set_.Text(0, 1),
            "b\xC3\xA9"
            "b");
  EXPECT_EQ(set_.Text(0, 5), "0");
  EXPECT_EQ(set_.Text(1, 5), "1");
}

TEST_F(Loading, MinimumLengthAndDocumentLimit) {
  std::string content = "short one\n";  // 9 characters: 18 bytes
  for (int i = 1; i <= 5; ++i) content += Tweet7(i) + "\n";
  ASSERT_TRUE(Load(content, 7, 20, 2));
  EXPECT_EQ(Column(set_, 1), (std::vector<std::string>{"user1", "user2"}));
  // "tiny" (4 characters) passes a minimum of 2 bytes but is too short to parse, so the last
  // row of the table stays empty.
  DocumentSet shortRecord;
  std::string path = dir_.WriteFile("short.txt", Tweet7(1) + "\ntiny\n" + Tweet7(2));
  ASSERT_TRUE(shortRecord.LoadDocuments(path, 7, "\n", 2, 0, false));
  EXPECT_EQ(Column(shortRecord, 1), (std::vector<std::string>{"user1", "user2", ""}));
}

TEST_F(Loading, TwitterRepairJoinsTweetsSplitByTabs) {
  ASSERT_TRUE(Load(
      Tsv({"2011-01-01 10:00", "bob", "good", "morning", "1", "0", "1"}) + "\n" + Tweet7(2), 7));
  EXPECT_EQ(set_.Text(0, 255), "2011-01-01 10:00bobgoodmorning101");
}

TEST_F(Loading, TwitterRepairDropsColumnsStartingBelowHyphen) {
  ASSERT_TRUE(Load(Tsv({"d1", "ann", "#tag first", "3", "-2", "1"}) + "\n" +
                       Tsv({"d2", "   bob", "\"quoted\"", "4", "-1", "3"}) + "\n" +
                       Tsv({"d3", "", "  spaced", "5", "-5", "0"}),
                   7));
  // The hashtag column goes and the sentiment columns move one place to the left.
  EXPECT_EQ(Column(set_, 2)[0], "3");
  EXPECT_EQ(Column(set_, 3)[0], "-2");
  EXPECT_EQ(Column(set_, 5)[0], "");
  EXPECT_EQ(set_.Text(1, 1), "bob");
  EXPECT_EQ(set_.Text(1, 2), "4");
  // An empty column goes; the column moving into its place is not examined (keeps spaces).
  EXPECT_EQ(set_.Text(2, 1), "  spaced");
}

TEST_F(Loading, TwitterRepairOfALineWithThousandsOfTabsIsLinear) {
  std::string line = "d1\tuser\ttext";
  for (int i = 0; i < 200000; ++i) line += "\tpiece";
  line += "\t2\t-1\t1";
  ASSERT_TRUE(Load(line + "\n" + Tweet7(2), 7));
  EXPECT_EQ(set_.Text(0, 2).size(), 4u + 5u * 200000u);
  EXPECT_EQ(set_.Text(0, 3), "2");
}

// A header of another width replaces the format's field names (up to the first empty header
// cell); one of the same width keeps them.
TEST_F(Loading, RadianHeaderOfOtherWidthReplacesTheFieldNames) {
  std::vector<std::string> header;
  for (int i = 0; i < 25; ++i) header.push_back("COL" + std::to_string(i));
  std::vector<std::string> row(25, "value");
  ASSERT_TRUE(Load(Tsv(header) + "\n" + Tsv(row) + "\n" + Tsv(row) + "\n", 9));
  EXPECT_EQ(set_.FieldCount(), 25);
  EXPECT_EQ(set_.FieldName(24), "COL24");
  EXPECT_EQ(set_.FieldExpressionPattern(), std::string(25, '0'));
  EXPECT_EQ(set_.DocumentCount(), 2);
  const std::string eight = Tsv({"one", "two", "three", "four", "five", "six", "seven", "eight"});
  DocumentSet stopped;
  std::string path =
      dir_.WriteFile("h.txt", "Alpha\tBeta\t\tDelta\tE\tF\tG\tH\n" + eight + "\n" + eight);
  ASSERT_TRUE(stopped.LoadDocuments(path, 9, "\n", 0, 0, false));
  EXPECT_EQ(stopped.FieldCount(), 2);
  EXPECT_EQ(stopped.FieldName(1), "Beta");
  EXPECT_EQ(stopped.Text(1, 1), "two");
  const std::string seven = Tsv({"1", "headline", "author", "content text", "url", "m", "d"});
  DocumentSet same;
  path = dir_.WriteFile("s.txt", "a\tb\tc\td\te\tf\tg\n" + seven + "\n" + seven);
  ASSERT_TRUE(same.LoadDocuments(path, 9, "\n", 0, 0, false));
  EXPECT_EQ(same.FieldName(3), "CONTENT");
  EXPECT_EQ(same.Text(0, 3), "content text");
}

// Regression: the parse test compared UTF-8 bytes with 16 where 8 characters are meant, so a
// record of 9 to 16 ASCII characters was counted but left unparsed and later rows shifted.
TEST_F(Loading, RecordsOfMoreThanEightCharactersAreParsed) {
  struct Case {
    std::string record;
    std::string cell;  // what its row holds
  };
  const std::vector<Case> cases = {
      {"12345678", ""},                          // 8 characters: counted, never parsed
      {"123456789", "123456789"},                // 9 characters
      {"abcdefghijklmnop", "abcdefghijklmnop"},  // 16 characters, 16 bytes
      {"caf\xC3\xA9 caf\xC3\xA9", "caf\xC3\xA9 caf\xC3\xA9"},  // 9 characters, 11 bytes
      {"\xE5\xAD\x97\xE5\xAD\x97\xE5\xAD\x97\xE5\xAD\x97\xE5\xAD\x97\xE5\xAD\x97",
       ""},  // 6 characters in 18 bytes: too short
  };
  for (const Case& c : cases) {
    DocumentSet set;
    std::string path =
        dir_.WriteFile("all.txt", "first record here|" + c.record + "|last one here");
    ASSERT_TRUE(set.LoadDocuments(path, 0, "|", 0, 0, false)) << c.record;
    ASSERT_EQ(set.DocumentCount(), 3) << c.record;
    const bool parsed = !c.cell.empty();
    EXPECT_EQ(set.Text(1, 0), parsed ? c.cell : "last one here") << c.record;
    EXPECT_EQ(set.Text(2, 0), parsed ? "last one here" : "") << c.record;
  }
}

TEST_F(Loading, DefinitionFormatReadsItsFieldsFromTheHeadOfTheFile) {
  ASSERT_TRUE(
      Load("2\n<a>,</a>,Alpha\n\"<b>\",\"</b>\",Beta\n"
           "<a>first one</a><b>x y</b>\n<a>second</a><b>z</b> tail\n",
           1));
  EXPECT_EQ(set_.FieldCount(), 2);
  EXPECT_EQ(set_.FieldName(1), "Beta");
  ASSERT_EQ(set_.DocumentCount(), 2);
  EXPECT_EQ(set_.Text(0, 0), "first one");
  EXPECT_EQ(set_.Text(1, 1), "z");
  DocumentSet undefined;
  std::string path = dir_.WriteFile("tagged.txt", "<a>first one</a>\n<a>second one</a>\n");
  EXPECT_FALSE(undefined.LoadDocuments(path, 1, "\n", 0, 0, false));
  EXPECT_NE(undefined.LastError().find("defines no fields"), std::string::npos);
}

TEST_F(Loading, TaggedNewsArticles) {
  ASSERT_TRUE(
      Load("<DOC><DOCNO> 12 </DOCNO><TEXT>  Line one\nline  two   end </TEXT></DOC>\n"
           "<DOC><DOCNO>13</DOCNO><HEADLINE>Head</HEADLINE></DOC>",
           2));
  EXPECT_EQ(set_.DocumentCount(), 2);
  EXPECT_EQ(set_.Text(0, 0) + "|" + set_.Text(0, 5), "12|Line oneline two  end");
  EXPECT_EQ(set_.Text(1, 3) + "|" + set_.Text(1, 5), "Head|");
  EXPECT_GT(set_.WordCount(), 0);
}

TEST_F(Loading, LineTagsNeedTheLineFeedBeforeThem) {
  const std::string record1 =
      "TI First title\nAU Someone\nSO Journal\nPY 2001\nTC 3\nAB Abstract one\nUT x";
  const std::string record2 =
      "\nTI Second title\nAU Other\nSO Journal\nPY 2002\nTC 4\nAB Abstract two\nUT y";
  ASSERT_TRUE(Load(record1 + "\nER\n" + record2 + "\nER\n", 3));
  // The first tag stands on the very first line: no line feed before it.
  EXPECT_EQ(set_.Text(0, 0) + "|" + set_.Text(0, 1), "|Someone");
  EXPECT_EQ(set_.Text(1, 0) + "|" + set_.Text(1, 2), "Second title|2002");
}

TEST_F(Loading, WholeTextFormatCountsWordsAndCharacters) {
  path_ = dir_.WriteFile("all.txt", "  alpha beta gamma delta |epsilon zeta eta theta|");
  ASSERT_TRUE(set_.LoadDocuments(path_, 0, "|", 0, 0, false));
  EXPECT_EQ(set_.DocumentCount(), 2);
  EXPECT_EQ(Column(set_, 0),
            (std::vector<std::string>{"alpha beta gamma delta", "epsilon zeta eta theta"}));
  EXPECT_EQ(set_.WordCount(), (6 + 1) + (3 + 1));
  EXPECT_EQ(set_.CharCount(), 25 + 22);
}

TEST_F(Loading, SaveValidDocsWritesKeptRecordsAndRenames) {
  std::string content = kHeader7 + "\nx\n";
  for (int i = 1; i <= 3; ++i) content += Tweet7(i) + "\n";
  path_ = dir_.WriteFile("tweets.v1.txt", content);
  ASSERT_TRUE(set_.LoadDocuments(path_, 7, "\n", 10, 2, true));
  EXPECT_EQ(set_.DocumentCount(), 2);
  EXPECT_EQ(path_, (dir_.Path() / "tweets_N2.txt").string());
  EXPECT_EQ(set_.FilePath(), path_);
  const std::string saved = testing::ReadFile(path_);
  EXPECT_EQ(saved, kHeader7 + "\n\r\n" + Tweet7(1) + "\n\r\n" + Tweet7(2) + "\n\r\n" + Tweet7(3) +
                       "\n\r\n");
}

TEST_F(Loading, ASetThatHoldsDocumentsRefusesToLoad) {
  ASSERT_TRUE(Load(Tweet7(1) + "\n" + Tweet7(2), 7));
  std::string path = path_;
  EXPECT_FALSE(set_.LoadDocuments(path, 7, "\n", 0, 0, false));
  EXPECT_EQ(set_.DocumentCount(), 2);
  EXPECT_NE(set_.LastError().find("clear it"), std::string::npos);
}

TEST_F(Loading, BadFilesFailWithAReasonAndLeaveTheSetUsable) {
  struct Case {
    std::string name;
    std::string content;
    std::string reason;
  };
  const std::string binary(
      "\x7F"
      "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0\x03\0>\0",
      20);
  const Case cases[] = {
      {"empty.txt", "", "holds 0 records"},
      {"one.txt", Tweet7(1) + "\n", "holds 1 record "},
      {"binary.bin", binary + binary, "NUL bytes"},
      {"noseparator.txt", std::string(5'000'000, 'a'), "holds 1 record "},
  };
  for (const auto& c : cases) {
    DocumentSet set;
    std::string path = dir_.WriteFile(c.name, c.content);
    EXPECT_FALSE(set.LoadDocuments(path, 7, "\n", 0, 0, false)) << c.name;
    EXPECT_EQ(set.DocumentCount(), 0) << c.name;
    EXPECT_NE(set.LastError().find(c.reason), std::string::npos)
        << c.name << ": " << set.LastError();
    std::string good = dir_.WriteFile("good.txt", Tweet7(1) + "\n" + Tweet7(2));
    EXPECT_TRUE(set.LoadDocuments(good, 7, "\n", 0, 0, false)) << set.LastError();
  }
}

TEST_F(Loading, WrongFormatLoadsButKeepsCellsWhereTheyFall) {
  // A tagged file read as tab-separated: each line becomes one document with one column.
  ASSERT_TRUE(Load("<DOC><DOCNO>1</DOCNO></DOC>\n<DOC><DOCNO>2</DOCNO></DOC>", 8));
  EXPECT_EQ(set_.Text(1, 0), "<DOC><DOCNO>2</DOCNO></DOC>");
  EXPECT_EQ(set_.Text(1, 2), "");
}

TEST_F(Loading, ProgressCanCancelTheLoad) {
  std::string content;
  for (int i = 0; i < 20000; ++i) content += Tweet7(1) + "\n";
  path_ = dir_.WriteFile("big.txt", content);
  const ProgressCallback cancel = [](std::string_view stage, std::int64_t, std::int64_t) {
    return stage.starts_with("Reading");
  };
  EXPECT_FALSE(set_.LoadDocuments(path_, 7, "\n", 0, 0, false, cancel));
  EXPECT_EQ(set_.LastError(), "Loading cancelled");
  EXPECT_EQ(set_.DocumentCount(), 0);
}

}  // namespace
}  // namespace sylvora
