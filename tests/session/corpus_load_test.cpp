#include "session/corpus_load.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/recording_notifier.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::RecordingNotifier;
using testing::TempDir;

std::string Line(const std::vector<std::string>& cells) {
  std::string line;
  for (const auto& cell : cells) line += (line.empty() ? "" : "\t") + cell;
  return line + "\n";
}

std::string Twitter11(const std::string& date, const std::string& user, const std::string& text,
                      const std::string& link = "") {
  return Line({date, user, text, "123", "Real " + user, "10", "20", "0", "UTC", "", "99", "0", link,
               "2", "-1", "1"});
}

class CorpusLoad : public ::testing::Test {
 protected:
  LoadReport Load(const std::string& content, bool radian = false, std::string unit = "h") {
    LoadOptions options;
    options.path = dir_.WriteFile("corpus.txt", content);
    options.radian = radian;
    options.minDocLen = 0;
    options.unitCode = unit;
    return LoadCorpus(session_, options, notifier_);
  }

  TempDir dir_;
  Session session_;
  RecordingNotifier notifier_;
};

// Regression: the layout was decided by the first line's first 1024 characters, so a long
// first message or a short first line read a sixteen-column export as the six-column one.
TEST_F(CorpusLoad, LayoutIsDecidedByTheFirstSeveralLines) {
  const std::string wide = Twitter11("Wed Aug 28 10:30:00 +0000 2013", "bob", "hello");
  const std::string narrow = "20110105T10:00:00Z\tann\tsome words\t1\t0\t1\n";
  struct Case {
    std::string content;
    CorpusFormat format;
  };
  const std::vector<Case> cases = {
      {Twitter11("Wed Aug 28 10:30:00 +0000 2013", "bob", std::string(3000, 'x')) + wide,
       CorpusFormat::kTwitter11},                                     // a long first message
      {"DateTime\tTweet\n" + wide + wide, CorpusFormat::kTwitter11},  // a short first line
      {"\n\n" + wide, CorpusFormat::kTwitter11},                      // empty lines first
      {narrow + narrow + narrow, CorpusFormat::kTwitter},
      // A six-column export with one tweet split by tabs stays six-column.
      {"a\tb\tc\td\te\tf\tg\th\ti\n" + narrow + narrow, CorpusFormat::kTwitter},
  };
  std::string error;
  for (const Case& c : cases) {
    EXPECT_EQ(ChooseCorpusFormat(dir_.WriteFile("layout.txt", c.content), false, error), c.format)
        << c.content.substr(0, 40);
  }
  // The Radian 6 switch overrides the columns; a missing file has no layout.
  EXPECT_EQ(ChooseCorpusFormat(dir_.WriteFile("six.txt", narrow), true, error),
            CorpusFormat::kRadian6);
  EXPECT_FALSE(ChooseCorpusFormat((dir_.Path() / "none").string(), false, error).has_value());
}

TEST_F(CorpusLoad, Twitter11ExportBecomesASortedCorpusWithDerivedFields) {
  const LoadReport report =
      Load(Twitter11("Wed Aug 28 10:30:00 +0000 2013", "bob",
                     "RT @ann: #storm news http://t.co/abcdefgh") +
           Twitter11("Wed Aug 28 09:10:00 +0000 2013", "ann", "Calm #sea at @pier",
                     "http://kept.example/x") +
           Twitter11("Tue Aug 27 23:59:00 +0000 2013", "cy", "night http://ab"));
  ASSERT_TRUE(report.loaded) << report.error;
  const DocumentSet& docs = session_.Documents();
  EXPECT_EQ(session_.Corpus().format, CorpusFormat::kTwitter11);
  EXPECT_EQ(session_.Corpus().sentimentNegativeField, 14);
  ASSERT_EQ(docs.DocumentCount(), 3);
  // Newest-first export reversed into time order without the sort notice.
  EXPECT_TRUE(notifier_.Messages().empty());
  EXPECT_EQ(docs.Text(0, 0), "27/08/13 23:59:00");
  EXPECT_EQ(docs.Text(2, 0), "28/08/13 10:30:00");
  // Elapsed hours, links, hashtags and mentions in fields 16, 12, 17 and 18.
  EXPECT_EQ(docs.FieldName(docs.ElapsedTimeField()), "Elapsed_Hours");
  EXPECT_EQ(docs.Text(1, 16) + " " + docs.Text(2, 16), "10 11");
  EXPECT_EQ(docs.Text(1, docs.URLField()), "http://kept.example/x");
  EXPECT_EQ(docs.Text(2, 12), " http://t.co/abcdefgh");
  EXPECT_EQ(docs.Text(2, docs.KeyWordField()), " storm");
  EXPECT_EQ(docs.Text(2, docs.RefListField()), " ann:");
  EXPECT_EQ(docs.Text(2, 2), "RT [@] [#] news ");
  EXPECT_EQ(docs.Text(0, 2), "night ");
  // Format fields are switched off; the content and the derived fields are on.
  EXPECT_EQ(docs.FieldExpressionPattern(), "0010000000000000111");
  EXPECT_EQ(report.minDocFrequency, 2);
  EXPECT_DOUBLE_EQ(report.maxDocFrequency, 1.5);
  EXPECT_FALSE(report.stages.empty());
}

TEST_F(CorpusLoad, AStrayByteChangesOnlyItsLineAndIsCounted) {
  const LoadReport report = Load(
      "20110105T10:00:00Z\tann\tat #caf\xC3\xA9 \xE6\x9D\xB1\xE4\xBA\xAC\t2\t-1\t1\n"
      "20110105T11:00:00Z\tbob\tna\xC3\xAFve \x93quoted\x94\t1\t-1\t0\n"
      "20110105T12:00:00Z\tcy\tplain\t3\t-2\t1\n");
  ASSERT_TRUE(report.loaded) << report.error;
  const DocumentSet& docs = session_.Documents();
  EXPECT_EQ(docs.Text(0, 2), "at [#] \xE6\x9D\xB1\xE4\xBA\xAC");
  EXPECT_EQ(docs.Text(0, docs.KeyWordField()), " caf\xC3\xA9");
  EXPECT_EQ(docs.Text(1, 2), "na\xC3\xAFve \xE2\x80\x9Cquoted\xE2\x80\x9D");
  EXPECT_EQ(report.repairedLines, 1);
  EXPECT_NE(report.progressText.find("1 line had bytes that are not UTF-8; those bytes were read "
                                     "as Windows-1252\r\nAll done :)"),
            std::string::npos)
      << report.progressText;
}

// Regression: a header line or one garbled row of a sixteen-column export left the corpus
// without its elapsed-time column, so no time line could be built.
TEST_F(CorpusLoad, UndatedRowsAreLeftOutAndNamedAndAHeaderIsSkipped) {
  const std::string header =
      Line({"DateTime", "UserName", "Tweet", "Tweet ID", "Real Name", "Followers", "Following",
            "Public Lists", "Time Zone", "Geo", "User Tweets", "Retweeted", "Link URL", "Sent+",
            "Sent-", "NetSent"});
  const LoadReport report =
      Load(header + Twitter11("Wed Aug 28 10:30:00 +0000 2013", "bob", "late #news") +
           Twitter11("Wed Aux 28 09:10:00 +0000 2013", "ann", "garbled row") +
           Twitter11("Tue Aug 27 23:59:00 +0000 2013", "cy", "early @bob"));
  ASSERT_TRUE(report.loaded) << report.error;
  ASSERT_EQ(report.warnings.size(), 1u);
  EXPECT_EQ(report.warnings[0],
            "1 row without a readable date is left out of the corpus, the time line and the "
            "maps: line 3 (\"Wed Aux 28 09:10:00 +0000 2013\")");
  EXPECT_TRUE(session_.Corpus().elapsedTimeDerived);
  const DocumentSet& docs = session_.Documents();
  ASSERT_EQ(docs.DocumentCount(), 2);
  EXPECT_EQ(docs.FieldName(2), "Tweet");
  EXPECT_EQ(docs.Text(0, 1), "cy");
  EXPECT_EQ(docs.Text(1, 1), "bob");
  EXPECT_EQ(docs.Text(1, docs.KeyWordField()), " news");
}

TEST_F(CorpusLoad, RadianExportUsesItsOwnColumns) {
  std::vector<std::string> header;
  for (int i = 0; i < 22; ++i) header.push_back("COL" + std::to_string(i));
  std::string content = Line(header);
  for (int i = 0; i < 3; ++i) {
    std::vector<std::string> row(22, "x");
    row[2] = "author" + std::to_string(i);
    row[3] = "content with #tag" + std::to_string(i) + " and @someone http://example.org/" +
             std::to_string(i);
    row[6] = "0" + std::to_string(i + 1) + "/02/2013 10:00";
    row[18] = std::to_string(i);
    row[19] = "";
    row[20] = "3";
    row[21] = "-2";
    content += Line(row);
  }
  const LoadReport report = Load(content, true);
  ASSERT_TRUE(report.loaded) << report.error;
  // A Radian 6 export keeps its own elapsed-time column; links, hashtags and mentions are
  // derived into 19, 22 and 23.
  const DocumentSet& docs = session_.Documents();
  EXPECT_EQ(docs.ElapsedTimeField(), 18);
  EXPECT_EQ(docs.Text(2, 19) + docs.Text(1, 22) + docs.Text(1, 23),
            " http://example.org/2 tag1 someone");
}

// Regression: a folder said "File not found", and /dev/zero was read until memory ran out.
TEST_F(CorpusLoad, PathsThatAreNoCorpusFileSayWhatTheyAre) {
  struct Case {
    std::string path;
    std::string reason;
    std::string unit = "h";
  };
  const std::vector<Case> cases = {
      {(dir_.Path() / "absent.txt").string(), "File not found: "},
      {dir_.Path().string(), "' is a folder; give the corpus file inside it"},
      {"/dev/zero", "Cannot read '/dev/zero': it is not a regular file"},
      {dir_.WriteFile("x.txt", "abc"), "Unknown time unit", "weeks"},
  };
  for (const Case& c : cases) {
    LoadOptions options;
    options.path = c.path;
    options.unitCode = c.unit;
    const LoadReport report = LoadCorpus(session_, options, notifier_);
    EXPECT_FALSE(report.loaded) << c.path;
    EXPECT_NE(report.error.find(c.reason), std::string::npos) << report.error;
  }
  EXPECT_TRUE(notifier_.Messages().empty());  // refused before reading: no error box
}

// 0 when loading `path` with at most 1 GiB of address space fails for lack of memory.
[[maybe_unused]] int LoadUnderMemoryLimit(const std::string& path) {
  const rlimit limit{std::uintmax_t{1} << 30, std::uintmax_t{1} << 30};
  ::setrlimit(RLIMIT_AS, &limit);
  LoadOptions options;
  options.path = path;
  Session session;
  SilentNotifier notifier;
  const LoadReport report = LoadCorpus(session, options, notifier);
  return !report.loaded && report.error.find("does not fit in memory") != std::string::npos ? 0 : 1;
}

// A file larger than the memory the process may take fails with a reason instead of aborting
// on std::bad_alloc. The child process runs under an address-space limit; the file is sparse.
TEST_F(CorpusLoad, AFileThatOutgrowsMemoryIsAFailedLoad) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers reserve more address space than the limit allows";
#else
  const std::string path = (dir_.Path() / "huge.txt").string();
  {
    std::ofstream file(path);
    file << "20110105T10:00:00Z\tann\tfirst\t1\t0\t1\n";
  }
  std::filesystem::resize_file(path, std::uintmax_t{2} << 30);
  EXPECT_EXIT(std::exit(LoadUnderMemoryLimit(path)), ::testing::ExitedWithCode(0), "");
#endif
}

TEST_F(CorpusLoad, StepAfterLinksSeesTheLinkColumnBeforeTheDatesAreRewritten) {
  LoadOptions options;
  options.path = dir_.WriteFile(
      "h.txt", Twitter11("Wed Aug 28 10:30:00 +0000 2013", "bob", "short one", "http://ab.cd/x") +
                   Twitter11("Wed Aug 28 11:30:00 +0000 2013", "ann", "no link"));
  options.minDocLen = 0;
  std::string dateSeen, linkSeen;
  const LoadReport report =
      LoadCorpus(session_, options, notifier_, {}, [&](Session& session, LoadReport& partial) {
        DocumentSet& documents = session.Documents();
        dateSeen = documents.Text(0, 0);
        linkSeen = documents.Text(0, documents.URLField());
        documents.SetText(0, documents.URLField(), "http://long.example/landing");
        partial.progressText = "replaced by the date stage";
        return true;
      });
  ASSERT_TRUE(report.loaded) << report.error;
  EXPECT_EQ(dateSeen, "Wed Aug 28 10:30:00 +0000 2013");
  EXPECT_NE(linkSeen.find("http://ab.cd/x"), std::string::npos);
  const DocumentSet& documents = session_.Documents();
  EXPECT_EQ(documents.Text(0, documents.URLField()), "http://long.example/landing");
  EXPECT_EQ(report.progressText,
            "Converting Dates to native format...\r\nExtracting hashtags and mentions to new "
            "fields...\r\nAll done :)");
}

}  // namespace
}  // namespace sylvora
