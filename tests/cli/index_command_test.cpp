#include "cli/index_command.h"

#include <gtest/gtest.h>

#include "cli_test_support.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

CommandRun Index(const std::vector<std::string>& arguments) {
  return RunCommand(RunIndexCommand, arguments);
}

// Six-column tweets: date, user, text, sentiment columns.
std::string SmallCorpus(const testing::TempDir& dir) {
  return dir.WriteFile(
      "tweets.txt",
      "20110105T10:00:00Z\tann\tThe #storm floods the harbour @bob http://t.co/abc\t2\t-1\t1\n"
      "20110105T11:00:00Z\tbob\tHarbour flooding, #storm again https://t.co/abc\t1\t-3\t-2\n"
      "20110105T12:00:00Z\tann\tPower is out near the harbour #storm @bob\t1\t-2\t-1\n");
}

TEST(IndexCommand, PrintsEachIndexWithItsTopTermsAndTheStageTimes) {
  testing::TempDir dir;
  const CommandRun run = Index({SmallCorpus(dir), "--min-doc-len", "0", "--min-df", "2", "--max-df",
                                "3", "--stop-list", StopList(), "--yes"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "Documents: 3\n")) << run.out;
  EXPECT_TRUE(Has(run.out,
                  "Word index: 3 documents, Min DF 2, Max DF 3, Min Chars 3, Porter "
                  "stemming on, abbreviations on\n"))
      << run.out;
  // The word index covers the text and the columns the load derived from it: "storm" comes
  // from the hashtag column, "bob" from the mentions, "abc" from the links.
  EXPECT_TRUE(Has(run.out,
                  "Words (5 terms)\n       DF       GF  term\n"
                  "        3        3  harbour\n"
                  "        3        3  storm\n"
                  "        2        2  abc\n"
                  "        2        2  bob\n"
                  "        2        2  flood\n"))
      << run.out;
  // The other four indexes follow in the same shape (their terms: the session's tests).
  EXPECT_TRUE(Has(run.out, "Tags (1 terms)\n       DF       GF  term\n        3        3  storm\n"))
      << run.out;
  EXPECT_TRUE(Has(run.out, "Users (1 terms)\n")) << run.out;
  EXPECT_FALSE(Has(run.out, "Terms per first letter")) << run.out;
  EXPECT_TRUE(Has(run.out, "Stage times:\n  load: read and split")) << run.out;
}

TEST(IndexCommand, IndexFlagsReachTheWorkflow) {
  testing::TempDir dir;
  const CommandRun run =
      Index({SmallCorpus(dir), "--min-doc-len", "0", "--min-df", "1", "--max-df", "3",
             "--no-porter", "--no-abbrev", "--min-chars", "6", "--secondary-min-df", "3",
             "--stop-list", StopList(), "--allow-numbers"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "Min Chars 6, Porter stemming off, abbreviations off")) << run.out;
  // Not stemmed; "power" and "storm" are too short.
  EXPECT_TRUE(Has(run.out,
                  "Words (3 terms)\n       DF       GF  term\n"
                  "        3        3  harbour\n"
                  "        1        1  floods\n"
                  "        1        1  flooding\n"))
      << run.out;
  EXPECT_TRUE(Has(run.out, "Other indexes: Min DF 3\n")) << run.out;

  // "floods" and "flooding" share a first letter: a cap of 1 keeps the first.
  const CommandRun capped = Index({SmallCorpus(dir), "--min-doc-len", "0", "--min-df", "1",
                                   "--max-df", "3", "--no-porter", "--min-chars", "6",
                                   "--stop-list", StopList(), "--max-per-letter", "1"});
  ASSERT_EQ(capped.code, 0) << capped.err;
  EXPECT_TRUE(Has(capped.out,
                  "Terms per first letter: 1; dropped: words 1 hashtags 0 links 0 "
                  "mentions 0 users 0\n"))
      << capped.out;
  EXPECT_TRUE(Has(capped.out, "Words (2 terms)\n")) << capped.out;
  EXPECT_TRUE(Has(run.err, "--allow-numbers changes nothing")) << run.err;
}

struct BadUsage {
  std::vector<std::string> arguments;
  int code;
  const char* message;
};

TEST(IndexCommand, ReportsBadUsageAndFailures) {
  testing::TempDir dir;
  const std::string corpus = SmallCorpus(dir);
  const BadUsage cases[] = {
      {{}, 2, "one corpus file"},
      {{corpus, "--bogus"}, 2, "Unknown option --bogus"},
      {{corpus, "--max-per-letter", "-1"}, 2, "--max-per-letter"},
      {{corpus, "--min-doc-len", "0", "--stop-list", "/no/such/list.txt"}, 1, "/no/such/list.txt"},
      {{(dir.Path() / "missing.txt").string(), "--stop-list", StopList()}, 1, "Error:"},
  };
  for (const BadUsage& c : cases) {
    const CommandRun run = Index(c.arguments);
    EXPECT_EQ(run.code, c.code) << c.message << ": " << run.err;
    EXPECT_TRUE(Has(run.err, c.message)) << run.err;
    EXPECT_TRUE(run.out.empty()) << run.out;
  }
  const CommandRun help = Index({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_TRUE(Has(help.out, "usage: sylvora-cli index FILE"));
  // The tests run in the source tree's tests/cli folder, beside no stop list, from a program in
  // a build folder: the source tree's list is the default one found.
  EXPECT_EQ(DefaultStopListPath(), std::filesystem::path(StopList()).lexically_normal().string());
}

}  // namespace
}  // namespace sylvora::cli
