// sylvora-cli over JSON and CSV exports: the shape is printed and the flags work.

#include <gtest/gtest.h>

#include "cli/index_command.h"
#include "cli/load_command.h"
#include "cli/timeline_command.h"
#include "cli_test_support.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

// The same documents come from the three samples (the session's import tests compare them field
// by field); here the index command names the shape it found.
TEST(ImportCommands, IndexNamesTheShapeOfAJsonFile) {
  const CommandRun json =
      RunCommand(RunIndexCommand, {DataFile("sample_twitter_v2.jsonl"), "--stop-list", StopList()});
  ASSERT_EQ(json.code, 0) << json.err;
  EXPECT_TRUE(Has(json.out, "Shape:     X / Twitter API v2 JSON lines\n")) << json.out;
}

TEST(ImportCommands, LoadTakesMapAndSkipBad) {
  testing::TempDir dir;
  const std::string path =
      dir.WriteFile("posts.csv",
                    "posted,who,body\n2013-09-09T10:00:00Z,ann,first #one\nlater,bob,bad date\n"
                    "2013-09-09T12:00:00Z,cy,third @ann\n");
  CommandRun run = RunCommand(RunLoadCommand, {path});
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(Has(run.err, "no column for the date-time role")) << run.err;

  run =
      RunCommand(RunLoadCommand, {path, "--map", "date=posted", "--map", "user=who", "--skip-bad"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "Shape:     named-column CSV\n")) << run.out;
  EXPECT_TRUE(Has(run.out, "Documents: 2\n")) << run.out;
  EXPECT_TRUE(Has(run.err, "Warning: Skipped 1 bad record")) << run.err;

  for (const std::string bad : {"date", "=posted", "date=", "mood=posted"}) {
    run = RunCommand(RunLoadCommand, {path, "--map", bad});
    EXPECT_EQ(run.code, 2) << bad;
    EXPECT_TRUE(Has(run.err, "--map")) << run.err;
  }
}

TEST(ImportCommands, TimelineSaysWhichShapeItFound) {
  const CommandRun run = RunCommand(
      RunTimelineCommand, {DataFile("sample_twitter.csv"), "--stop-list", StopList(), "--yes"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.err, "Shape: named-column CSV\n")) << run.err;
  EXPECT_TRUE(run.out.starts_with("interval,start,documents")) << run.out.substr(0, 80);
}

}  // namespace
}  // namespace sylvora::cli
