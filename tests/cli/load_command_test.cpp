#include "cli/load_command.h"

#include <gtest/gtest.h>

#include "cli_test_support.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

CommandRun Load(const std::vector<std::string>& arguments) {
  return RunCommand(RunLoadCommand, arguments);
}

TEST(LoadCommand, PrintsASummaryOfTheLoadedCorpus) {
  testing::TempDir dir;
  const std::string path = dir.WriteFile(
      "tweets.txt",
      "20110105T10:00:00Z\tann\tThe #storm is here @bob http://example.org/news\t2\t-1\t1\n"
      "20110105T11:00:00Z\tbob\tStill raining, #storm and #rain\t1\t-3\t-2\n");
  const CommandRun run = Load({path, "--min-doc-len", "0", "--unit", "n"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("Format:    7 (Twitter)"), std::string::npos);
  EXPECT_NE(run.out.find("Documents: 2"), std::string::npos);
  EXPECT_NE(run.out.find("From:      2011-01-05 10:00:00"), std::string::npos);
  EXPECT_NE(run.out.find("Elapsed_Minutes"), std::string::npos);
  EXPECT_NE(run.out.find("With links:    1 (50.0%)"), std::string::npos);
  EXPECT_NE(run.out.find("2  #storm"), std::string::npos);
  EXPECT_NE(run.out.find("1  @bob"), std::string::npos);
  EXPECT_NE(run.out.find("Stage times:"), std::string::npos);
  // The sort notice is a note among the stage lines, not a complaint on stderr.
  EXPECT_NE(run.out.find("  note: Ascending sort: Documents need to be sorted"), std::string::npos);
  EXPECT_EQ(run.err.find("Documents need to be sorted"), std::string::npos);
}

TEST(LoadCommand, ErrorsGoToStderrWithANonZeroCode) {
  testing::TempDir dir;
  CommandRun run = Load({});
  EXPECT_EQ(run.code, 2);
  EXPECT_NE(run.err.find("usage:"), std::string::npos);
  run = Load({(dir.Path() / "absent.txt").string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("Error: File not found"), std::string::npos);
  run = Load({dir.WriteFile("empty.txt", "")});
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.err.find("Load Error: There was an error loading"), std::string::npos);
  EXPECT_TRUE(run.out.empty());
  run = Load({"--help"});
  EXPECT_EQ(run.code, 0);
  EXPECT_NE(run.out.find("usage:"), std::string::npos);
}

}  // namespace
}  // namespace sylvora::cli
