// sylvora-cli over JSON and CSV exports: the shape is printed, the flags work, and the index
// command prints the same indexes for the v2 JSON and CSV samples as for the tab-separated one.

#include <gtest/gtest.h>

#include <sstream>

#include "cli/index_command.h"
#include "cli/load_command.h"
#include "cli/timeline_command.h"
#include "cli_test_support.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

// The output without what names the file and the times.
std::string WithoutFileAndTimes(const std::string& text) {
  std::istringstream in(text);
  std::string line, kept;
  while (std::getline(in, line)) {
    if (line.starts_with("Corpus:") || line.starts_with("Shape:")) continue;
    if (line.starts_with("Stage times:")) break;
    kept += line + "\n";
  }
  return kept;
}

TEST(ImportCommands, IndexPrintsTheSameIndexesForTheThreeSampleFiles) {
  const CommandRun tsv =
      RunCommand(RunIndexCommand, {DataFile("sample_twitter11.txt"), "--stop-list", StopList()});
  const CommandRun json =
      RunCommand(RunIndexCommand, {DataFile("sample_twitter_v2.jsonl"), "--stop-list", StopList()});
  const CommandRun csv = RunCommand(
      RunIndexCommand, {DataFile("sample_twitter.csv"), "--stop-list", StopList(), "--yes"});
  ASSERT_EQ(tsv.code, 0) << tsv.err;
  ASSERT_EQ(json.code, 0) << json.err;
  ASSERT_EQ(csv.code, 0) << csv.err;
  EXPECT_TRUE(Has(json.out, "Shape:     X / Twitter API v2 JSON lines\n")) << json.out;
  EXPECT_TRUE(Has(csv.out, "Shape:     named-column CSV\n"));
  EXPECT_TRUE(Has(tsv.out, "Shape:     tab-separated Twitter1.1 export (format 8)\n"));
  EXPECT_TRUE(Has(tsv.out, "Tags ("));
  EXPECT_EQ(WithoutFileAndTimes(json.out), WithoutFileAndTimes(tsv.out));
  EXPECT_EQ(WithoutFileAndTimes(csv.out), WithoutFileAndTimes(tsv.out));
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

  run = RunCommand(RunLoadCommand, {path, "--map", "date=posted,user=who"});
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(Has(run.err, "line 3: the date \"later\"")) << run.err;

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
