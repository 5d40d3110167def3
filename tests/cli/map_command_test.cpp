#include "cli/map_command.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "cli_test_support.h"
#include "layout/layout_scripts.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

CommandRun Map(const std::vector<std::string>& arguments) {
  return RunCommand(RunMapCommand, arguments);
}

bool HaveSfdp() { return std::filesystem::exists("/usr/bin/sfdp"); }

// Six-column tweets, one an hour over a day: storm words, then power words, then music.
std::string SmallCorpus(const testing::TempDir& dir) {
  const char* texts[] = {"storm wind rain coast", "power outage generator grid",
                         "music festival band stage"};
  std::string text;
  for (int hour = 0; hour < 24; ++hour) {
    char date[32];
    std::snprintf(date, sizeof date, "20110105T%02d:00:00Z", hour);
    text += std::string(date) + "\tuser" + std::to_string(hour % 4) + "\t" + texts[hour % 3] +
            " tonight\t2\t-1\t1\n";
  }
  return dir.WriteFile("tweets.txt", text);
}

std::vector<std::string> Arguments(const testing::TempDir& dir, std::vector<std::string> more) {
  std::vector<std::string> arguments = {"--min-doc-len", "0",    "--min-df",    "2",
                                        "--max-df",      "24",   "--stop-list", StopList(),
                                        "--yes",         "--out"};
  arguments.insert(arguments.begin(), SmallCorpus(dir));
  arguments.push_back((dir.Path() / "map").string());
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

TEST(MapCommand, WritesTheWordMapAsTablesAndGraphMl) {
  if (!HaveSfdp()) GTEST_SKIP() << "Graphviz is not installed";
  testing::TempDir dir;
  const CommandRun run = Map(Arguments(dir, {"--graphviz", "/usr/bin"}));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(
      Has(run.out, "Map:       words (co-occurrence in the same tweet), 13 nodes, 12 links"))
      << run.out;
  EXPECT_TRUE(
      Has(run.out, "Tree neighbours of the 13 heaviest nodes (nearest first):\n  tonight ("))
      << run.out;
  EXPECT_TRUE(Has(run.out, "  map: layout")) << run.out;
  // The files' contents: the session's map export tests.
  for (const char* file : {"map_nodes.csv", "map_edges.csv", "map.graphml"}) {
    EXPECT_TRUE(std::filesystem::exists(dir.Path() / file)) << file;
  }
}

TEST(MapCommand, IntervalAndTweetMapsBuildTheModelsFirst) {
  if (!HaveSfdp()) GTEST_SKIP() << "Graphviz is not installed";
  testing::TempDir dir;
  CommandRun run = Map(Arguments(dir, {"--kind", "intervals", "--length", "2"}));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "Intervals: 12 of 2 h\n")) << run.out;
  EXPECT_TRUE(Has(run.out, "Map:       intervals, 12 nodes, 11 links")) << run.out;
  run = Map(Arguments(dir, {"--kind", "tweets", "--length", "6", "--interval", "2"}));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "Map:       tweets of interval 2 (corpus rows 6..11), 6 nodes, 5 links"))
      << run.out;
  run = Map(Arguments(dir, {"--level", "interval", "--length", "2"}));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "words (co-occurrence in the same interval), 13 nodes")) << run.out;
}

// Regression: a failing sfdp, an unwritable layout folder and bad plain output all said
// "Graphviz's output could not be read"; a missing sfdp named a made-up folder. Each case runs
// a fake sfdp (or none) and expects what happened in the error, and no map files.
TEST(MapCommand, LayoutFailuresSayWhatHappened) {
  struct Case {
    std::string name;
    std::string sfdp;  // the fake program's body; "" for none
    std::vector<std::string> flags;
    std::string message;
  };
  const std::string writeOutput = "for last; do :; done; out=${last#-o}; ";
  const std::vector<Case> cases = {
      {"failing",
       "echo 'Error: syntax error in line 3' >&2; exit 3",
       {},
       "/sfdp exited with code 3: Error: syntax error in line 3"},
      {"nan",
       writeOutput + "printf 'graph 1 4 4\\nnode 1 nan nan 1 1\\nstop\\n' > \"$out\"",
       {},
       "malformed line 'node 1 nan nan 1 1'"},
      {"header",
       writeOutput + "printf 'graph 1 inf 4\\nstop\\n' > \"$out\"",
       {},
       "does not start with a 'graph scale width height' line"},
      {"folder",
       "exit 0",
       {"--layout-folder", "/nonexistent/sylvora"},
       "Error: The layout folder cannot be written: Cannot create '/nonexistent/sylvora/gvin.txt'"},
      {"slow", "sleep 5", {"--layout-timeout", "1"}, "Error: Graphviz took longer than 1 s"},
      {"absent", "", {}, "holds no runnable sfdp; pass the folder of Graphviz's programs"},
  };
  for (const Case& c : cases) {
    testing::TempDir dir;
    testing::TempDir bin;
    if (!c.sfdp.empty()) testing::WriteScript(bin, "sfdp", c.sfdp);
    std::vector<std::string> flags = {"--graphviz", bin.Path().string()};
    flags.insert(flags.end(), c.flags.begin(), c.flags.end());
    const CommandRun run = Map(Arguments(dir, flags));
    EXPECT_EQ(run.code, 1) << c.name;
    EXPECT_TRUE(Has(run.err, c.message)) << c.name << ": " << run.err;
    EXPECT_FALSE(std::filesystem::exists(dir.Path() / "map_nodes.csv")) << c.name;
  }
}

TEST(MapCommand, NoSfdpOnThePathSaysToInstallGraphviz) {
  testing::TempDir dir;
  testing::TempDir empty;
  const std::string path = std::getenv("PATH") == nullptr ? "" : std::getenv("PATH");
  ::setenv("PATH", empty.Path().c_str(), 1);
  const CommandRun run = Map(Arguments(dir, {}));
  ::setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(Has(run.err,
                  "Error: sfdp is not on PATH: install Graphviz (Debian: apt install "
                  "graphviz) or pass the folder that holds it with --graphviz DIR"))
      << run.err;
}

TEST(MapCommand, FailuresStopWithTheirCodeAndMessage) {
  testing::TempDir dir;
  const std::string usage = "usage: sylvora-cli map FILE";
  struct Case {
    std::vector<std::string> arguments;
    int code;
    std::string message;
  };
  const Case cases[] = {
      {Arguments(dir, {"--kind", "tweets", "--length", "6", "--interval", "9"}), 1,
       "Error: There is no interval 9 (the model has 4)"},
      {{}, 2, "map takes one corpus file"},
      {{"a.txt", "--kind", "maps"}, 2, "--kind takes words, intervals or tweets"},
      {{"a.txt", "--level", "doc"}, 2, "--level takes tweet or interval"},
      {{"a.txt", "--colour", "red"}, 2, usage},
  };
  for (const Case& c : cases) {
    const CommandRun run = Map(c.arguments);
    EXPECT_EQ(run.code, c.code) << c.message;
    EXPECT_TRUE(Has(run.err, c.message)) << run.err;
    if (c.code == 2) {
      EXPECT_TRUE(Has(run.err, usage)) << run.err;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Path() / "map_nodes.csv"));
  const CommandRun help = Map({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_TRUE(Has(help.out, "--kind"));
}

}  // namespace
}  // namespace sylvora::cli
