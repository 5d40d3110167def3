// Named-column CSV: RFC 4180 records, the mapping of columns to roles, and the failures.

#include <gtest/gtest.h>

#include <string>

#include "corpus/corpus_import.h"
#include "corpus/csv_import.h"

namespace sylvora {
namespace {

constexpr FieldIndex kDate = 0, kUser = 1, kText = 2, kId = 3, kName = 4, kReposts = 11, kLink = 12,
                     kPos = 13, kNeg = 14, kNet = 15;

bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::vector<std::vector<std::string>> Records(std::string text) {
  CsvReader reader(text.data(), text.size());
  std::vector<std::vector<std::string>> records;
  std::vector<std::string_view> cells;
  while (reader.Next(cells)) records.emplace_back(cells.begin(), cells.end());
  EXPECT_EQ(reader.Error(), "");
  return records;
}

TEST(CsvReader, QuotedFieldsHoldCommasQuotesAndLineBreaks) {
  const auto records = Records(
      "a,b,c\r\n"
      "1,\"two, with comma\",\"say \"\"hi\"\"\"\r\n"
      "2,\"line one\nline two\",\"crlf\r\ninside\"\n"
      "3,,\"\"\n"
      "4,tab\there,\"x\"y\n"
      "\n"
      "5,last,no newline");
  ASSERT_EQ(records.size(), 7u);
  EXPECT_EQ(records[0], (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(records[1], (std::vector<std::string>{"1", "two, with comma", "say \"hi\""}));
  EXPECT_EQ(records[2], (std::vector<std::string>{"2", "line one line two", "crlf inside"}));
  EXPECT_EQ(records[3], (std::vector<std::string>{"3", "", ""}));
  EXPECT_EQ(records[4], (std::vector<std::string>{"4", "tab here", "xy"}));
  EXPECT_EQ(records[5], (std::vector<std::string>{""}));
  EXPECT_EQ(records[6], (std::vector<std::string>{"5", "last", "no newline"}));
}

TEST(CsvReader, RecordLinesCountLineBreaksInsideQuotes) {
  std::string text = "h1,h2\n\"a\nb\nc\",x\nnext,y\n";
  CsvReader reader(text.data(), text.size());
  std::vector<std::string_view> cells;
  for (const int line : {1, 2, 5}) {
    ASSERT_TRUE(reader.Next(cells));
    EXPECT_EQ(reader.Line(), line);
  }
  EXPECT_FALSE(reader.Next(cells));
}

struct MapCase {
  std::vector<std::string> header;
  std::vector<std::pair<std::string, std::string>> map;
  std::vector<int> expected;  // date, user, text, link, positive, negative, id, name, retweets
};

TEST(CsvColumns, BuiltInNamesAndOverrides) {
  const MapCase cases[] = {
      {{"timestamp", "author", "body", "url"}, {}, {0, 1, 2, 3, -1, -1, -1, -1, -1}},
      {{"Created At", "Screen_Name", "TEXT", "Link", "Sent+", "Sent-"},
       {},
       {0, 1, 2, 3, 4, 5, -1, -1, -1}},
      // "timestamp" is preferred to "date"; "name" is the real name, "username" the user.
      {{"date", "name", "username", "timestamp", "content", "id", "retweet_count"},
       {},
       {3, 2, 4, -1, -1, -1, 5, 1, 6}},
      {{"posted", "who", "what"},
       {{"date", "posted"}, {"user", "who"}, {"text", "WHAT"}},
       {0, 1, 2, -1, -1, -1, -1, -1, -1}},
      // A mapped column is not taken again by a built-in name.
      {{"text", "summary", "date"}, {{"text", "summary"}}, {2, -1, 1, -1, -1, -1, -1, -1, -1}},
  };
  for (const auto& c : cases) {
    std::vector<int> columns;
    std::string error;
    ASSERT_TRUE(MapCsvColumns("f.csv", c.header, c.map, columns, error)) << error;
    EXPECT_EQ(columns, c.expected) << c.header[0];
  }
}

TEST(CsvColumns, MissingRoleUnknownRoleAndUnknownColumnAreNamed) {
  std::vector<int> columns;
  std::string error;
  EXPECT_FALSE(MapCsvColumns("f.csv", {"when", "author", "body"}, {}, columns, error));
  EXPECT_EQ(error,
            "'f.csv' has no column for the date-time role (looked for timestamp, created_at, "
            "date, datetime, date_time, time, created, published, posted_at); its header is: "
            "when, author, body. Map a column to the role \"date\"");
  EXPECT_FALSE(MapCsvColumns("f.csv", {"date", "author", "words"}, {}, columns, error));
  EXPECT_TRUE(Has(error, "no column for the text role")) << error;
  EXPECT_TRUE(Has(error, "its header is: date, author, words")) << error;
  EXPECT_FALSE(MapCsvColumns("f.csv", {"date", "text"}, {{"mood", "date"}}, columns, error));
  EXPECT_TRUE(Has(error, "Unknown role \"mood\"")) << error;
  EXPECT_FALSE(MapCsvColumns("f.csv", {"date", "text"}, {{"user", "who"}}, columns, error));
  EXPECT_EQ(error,
            "The column map names \"who\" for the user role, but 'f.csv' has no such column; its "
            "header is: date, text");
}

class CsvImport : public ::testing::Test {
 protected:
  DetectionOutcome Import(const std::string& csv, bool skipBad = false,
                          std::vector<std::pair<std::string, std::string>> map = {}) {
    documents_ = DocumentSet();
    ImportOptions options;
    options.skipBad = skipBad;
    options.columnMap = std::move(map);
    return ImportCorpusBytes("posts.csv", csv, options, documents_, report_);
  }
  std::string Cell(DocIndex doc, FieldIndex field) const { return documents_.Text(doc, field); }

  DocumentSet documents_;
  ImportReport report_;
};

TEST_F(CsvImport, RecordsFillTheTwitter11Fields) {
  ASSERT_EQ(Import("id,created_at,username,name,text,url,retweet_count,sentiment_positive,"
                   "sentiment_negative\n"
                   "7,2013-09-09 21:00:05,bob,\"Jones, Bob\",\"Storm, \"\"big\"\" one\nsee "
                   "#Marisol\",http://example.com/x,2,3,-1\n"
                   "8,1378760405,ann,Ann,plain,,0,,\n"),
            DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(report_.detection.shape, ImportShape::kNamedCsv);
  ASSERT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(Cell(0, kDate), "Mon Sep 09 21:00:05 +0000 2013");
  EXPECT_EQ(Cell(0, kUser), "bob");
  EXPECT_EQ(Cell(0, kText), "Storm, \"big\" one see #Marisol");
  EXPECT_EQ(Cell(0, kName), "Jones, Bob");
  EXPECT_EQ(Cell(0, kNet), "2");
  EXPECT_EQ(Cell(1, kDate), "Mon Sep 09 21:00:05 +0000 2013");
  EXPECT_EQ(Cell(1, kNet), "");
  EXPECT_EQ(Cell(1, 5), "");
}

// One column may play two roles; each cell keeps bytes of its own. (The mapping itself is
// checked on MapCsvColumns above.)
TEST_F(CsvImport, OneColumnMayPlayTwoRoles) {
  ASSERT_EQ(Import("date,text\n2013-09-09T10:00:00Z,hello\n", false,
                   {{"user", "text"}, {"text", "text"}}),
            DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(Cell(0, kUser), "hello");
  documents_.SetText(0, kUser, "x");
  EXPECT_EQ(Cell(0, kText), "hello");
}

TEST_F(CsvImport, FailuresNameTheLineAndKeepNothing) {
  const std::pair<std::string, std::string> cases[] = {
      {"date,text\n2013-09-09T10:00:00Z,ok\n2013-09-09T11:00:00Z,\"open\n",
       "'posts.csv': unbalanced quotes: the quoted field opened on line 3 is never closed"},
      {"date,text\n2013-09-09T10:00:00Z,ok\n2013-09-09T11:00:00Z,one,two\n",
       "'posts.csv' line 3: 3 columns where the header has 2"},
      {"date,text\n2013-09-09T10:00:00Z,ok\nsoon,text\n",
       "'posts.csv' line 3: the date \"soon\" is in no layout known"},
      {"date,text\n,text\n", "'posts.csv' line 2: no date (column \"date\" is empty)"},
      {"date,text\n2013-09-09T10:00:00Z,\n",
       "'posts.csv' line 2: no text (column \"text\" is empty)"},
      {"date,text\n", "holds no post"},
  };
  for (const auto& [csv, message] : cases) {
    EXPECT_EQ(Import(csv), DetectionOutcome::kError) << csv;
    EXPECT_TRUE(Has(report_.error, message)) << report_.error;
    EXPECT_EQ(documents_.DocumentCount(), 0);
  }
}

TEST_F(CsvImport, SkipBadCountsBadRecordsButNotBrokenQuotes) {
  ASSERT_EQ(Import("date,text\n2013-09-09T10:00:00Z,ok\nsoon,x\n2013-09-09T11:00:00Z,a,b\n"
                   "2013-09-09T12:00:00Z,fine\n",
                   true),
            DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(documents_.DocumentCount(), 2);
  EXPECT_EQ(report_.skipped, 2);
  EXPECT_EQ(Import("date,text\n2013-09-09T10:00:00Z,ok\n\"open,x\n", true),
            DetectionOutcome::kError);
  EXPECT_TRUE(Has(report_.error, "unbalanced quotes")) << report_.error;
}

// Regression: a quote left open swallowed the next record silently (12 records read as 11,
// nothing skipped). A quoted cell now stops at a line that reads as a record of its own.
TEST_F(CsvImport, AnUnbalancedQuoteIsABadRecordWithItsLine) {
  const std::string broken =
      "date,text\n2013-09-09T10:00:00Z,\"open quote\n2013-09-09T11:00:00Z,next\"\n"
      "2013-09-09T12:00:00Z,last\n";
  struct Case {
    std::string csv;
    bool skipBad;
    DocIndex documents;   // -1: the import fails
    std::string message;  // in the error or the first skipped sample
  };
  const std::vector<Case> cases = {
      {broken, false, -1,
       "'posts.csv' line 2: unbalanced quotes: the quoted field opened on line 2 runs into line 3"},
      {broken, true, 2, "'posts.csv' line 2: unbalanced quotes"},
      // Line breaks inside a quoted tweet stay part of it, commas and all.
      {"date,text\n2013-09-09T10:00:00Z,\"two\nlines, still one\"\n2013-09-09T11:00:00Z,b\n", false,
       2, ""},
  };
  for (const Case& c : cases) {
    const DetectionOutcome outcome = Import(c.csv, c.skipBad);
    if (c.documents < 0) {
      EXPECT_EQ(outcome, DetectionOutcome::kError) << c.csv;
      EXPECT_TRUE(Has(report_.error, c.message)) << report_.error;
      continue;
    }
    ASSERT_EQ(outcome, DetectionOutcome::kImport) << report_.error;
    EXPECT_EQ(documents_.DocumentCount(), c.documents) << c.csv;
    if (c.message.empty()) {
      EXPECT_EQ(report_.skipped, 0);
      EXPECT_EQ(Cell(0, kText), "two lines, still one");
    } else {
      EXPECT_EQ(report_.skipped, 1);
      ASSERT_FALSE(report_.skippedSamples.empty());
      EXPECT_TRUE(Has(report_.skippedSamples[0], c.message)) << report_.skippedSamples[0];
      EXPECT_EQ(Cell(0, kText), "next\"");
    }
  }
}

TEST_F(CsvImport, Windows1252AndByteOrderMarkAndCrLf) {
  ASSERT_EQ(Import("\xEF\xBB\xBF"
                   "date,text\r\n2013-09-09T10:00:00Z,caf\xC3\xA9\r\n"),
            DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(Cell(0, kText), "caf\xC3\xA9");
  // Only the bytes that are not UTF-8 are read as Windows-1252; the other lines stay UTF-8.
  ASSERT_EQ(Import("date,text\n2013-09-09T10:00:00Z,caf\xE9 \x93quoted\x94\n"
                   "2013-09-09T11:00:00Z,\xE6\x9D\xB1\xE4\xBA\xAC\n"),
            DetectionOutcome::kImport)
      << report_.error;
  EXPECT_EQ(Cell(0, kText), "caf\xC3\xA9 \xE2\x80\x9Cquoted\xE2\x80\x9D");
  EXPECT_EQ(Cell(1, kText), "\xE6\x9D\xB1\xE4\xBA\xAC");
  ASSERT_EQ(report_.warnings.size(), 1u);
  EXPECT_TRUE(Has(report_.warnings[0], "1 line had bytes that are not UTF-8"))
      << report_.warnings[0];
}

}  // namespace
}  // namespace sylvora
