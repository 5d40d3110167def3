// "sylvora-cli timeline": the interval rows in CSV and JSON, its flags and their failures.

#include "cli/timeline_command.h"

#include <gtest/gtest.h>

#include "cli_test_support.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

CommandRun Timeline(const std::vector<std::string>& arguments) {
  return RunCommand(RunTimelineCommand, arguments);
}

// Six-column tweets, one an hour from 10:00: date, user, text, positive, negative, extra.
// Hours 10 and 11 talk about the storm, 12 and 13 about the power, 14 about both.
std::string SmallCorpus(const testing::TempDir& dir) {
  return dir.WriteFile("tweets.txt",
                       "20110105T10:00:00Z\tann\tstorm harbour flood\t2\t-1\t1\n"
                       "20110105T11:00:00Z\tbob\tstorm harbour\t4\t-3\t1\n"
                       "20110105T12:00:00Z\tann\tpower outage street http://t.co/abcdef\t1\t-2\t1\n"
                       "20110105T13:00:00Z\tcy\tpower outage\t3\t-1\t1\n"
                       "20110105T14:00:00Z\tcy\tstorm power\t1\t-1\t1\n");
}

std::vector<std::string> SmallArguments(const std::string& corpus) {
  return {corpus,        "--min-doc-len", "0",      "--min-df", "1",        "--max-df", "100",
          "--stop-list", StopList(),      "--unit", "h",        "--length", "2",        "--yes"};
}

// Regression: interval starts came from the two-digit year of the date text, so a corpus
// from 1965 (or 2070) was placed in 2065 (or 1970).
TEST(TimelineCommand, IntervalsStartInTheCorpussOwnYear) {
  testing::TempDir dir;
  for (const std::string year : {"1965", "2070"}) {
    const std::string corpus = dir.WriteFile(
        "tweets" + year + ".txt", year + "0105T10:00:00Z\tann\tstorm harbour flood\t2\t-1\t1\n" +
                                      year + "0105T13:00:00Z\tbob\tstorm harbour\t4\t-3\t1\n" +
                                      year + "0105T17:00:00Z\tcy\tpower outage\t3\t-1\t1\n");
    const CommandRun run = Timeline(SmallArguments(corpus));
    ASSERT_EQ(run.code, 0) << run.err;
    const std::vector<std::string> lines = Split(run.out, '\n');
    ASSERT_GE(lines.size(), 3u) << run.out;
    EXPECT_EQ(Split(lines[1], ',')[1], year + "-01-05 10:00:00");
    EXPECT_EQ(Split(lines[2], ',')[1], year + "-01-05 12:00:00");
  }
}

TEST(TimelineCommand, WritesOneCsvRowPerInterval) {
  testing::TempDir dir;
  const CommandRun run = Timeline(SmallArguments(SmallCorpus(dir)));
  ASSERT_EQ(run.code, 0) << run.err;
  const std::vector<std::string> lines = Split(run.out, '\n');
  ASSERT_EQ(lines.size(), 5u) << run.out;  // header, three intervals, the final line break
  // Each figure in its column (the figures themselves are the interval models' business).
  const std::vector<std::string> first = Split(lines[1], ',');
  const std::vector<std::string> second = Split(lines[2], ',');
  ASSERT_EQ(first.size(), 20u) << lines[1];
  EXPECT_EQ(first[0] + " " + first[1] + " " + first[2], "1 2011-01-05 10:00:00 2");
  EXPECT_EQ(second[1] + " " + second[3] + " " + second[4] + " " + second[6],
            "2011-01-05 12:00:00 1 1 0.5");
  // Positive 2 and 4: mean 3, mode 2, median 4; negative -1 and -3: mean 2.
  EXPECT_EQ(first[7] + " " + first[8] + " " + first[9] + " " + first[10], "3 2 4 2");
  // Burst words of interval 1, by f / (df / N) x ln(100 f + 1): harbour 1 / .4 x ln 101,
  // flood .5 / .2 x ln 51, storm 1 / .6 x ln 101.
  EXPECT_EQ(first[13] + " " + first[15] + " " + first[17], "harbour flood storm") << lines[1];
  EXPECT_TRUE(Has(run.err, "Interval length warning: Model will have fewer than 10 intervals"));
  EXPECT_TRUE(Has(run.err, "Stage times:"));
}

TEST(TimelineCommand, JsonCarriesTheSameRows) {
  testing::TempDir dir;
  std::vector<std::string> arguments = SmallArguments(SmallCorpus(dir));
  arguments.push_back("--json");
  arguments.insert(arguments.end(), {"--burst", "z", "--novelty-window", "2"});
  const CommandRun run = Timeline(arguments);
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "\"novelty_window\": 2,\n  \"burst_measure\": \"z\",")) << run.out;
  EXPECT_TRUE(Has(run.out,
                  "{\"interval\": 1, \"start\": \"2011-01-05 10:00:00\", \"documents\": 2, "
                  "\"documents_with_links\": 0, \"novelty\": 0, "))
      << run.out;
  EXPECT_TRUE(Has(run.out, "\"positive\": {\"mean\": 3, \"mode\": 2, \"median\": 4}")) << run.out;
  EXPECT_TRUE(run.out.ends_with("\"}\n  ]\n}\n")) << run.out;
}

TEST(TimelineCommand, FailuresStopWithTheirCodeAndMessage) {
  testing::TempDir dir;
  const std::string corpus = SmallCorpus(dir);
  const std::string oneInterval =
      dir.WriteFile("short.txt",
                    "20110105T10:00:00Z\tann\tstorm harbour\t2\t-1\t1\n"
                    "20110105T10:20:00Z\tbob\tstorm harbour\t4\t-3\t1\n");
  struct Case {
    std::string file;
    std::string length;
    std::vector<std::string> extra;
    int code;
    std::string message;
  };
  // Lengths that are no positive whole number are refused as usage (command_line_test.cpp).
  const Case cases[] = {
      {corpus, "3", {}, 1, "Reset Interval Length: Interval length too long for this dataset"},
      {oneInterval, "2", {}, 1, "Interval length too long"},
      {corpus, "2", {"--events", (dir.Path() / "missing.txt").string()}, 1, "Error: "},
      {corpus, "2", {"--novelty-window", "256"}, 2, "usage: sylvora-cli timeline"},
      {corpus, "2", {"--burst", "loud"}, 2, "usage: sylvora-cli timeline"},
      {corpus, "2", {"--loud"}, 2, "usage: sylvora-cli timeline"},
  };
  for (const Case& test : cases) {
    std::vector<std::string> arguments = SmallArguments(test.file);
    arguments[12] = test.length;
    arguments.insert(arguments.end(), test.extra.begin(), test.extra.end());
    const CommandRun run = Timeline(arguments);
    EXPECT_EQ(run.code, test.code) << test.length << " " << test.message;
    EXPECT_TRUE(Has(run.err, test.message)) << run.err;
    EXPECT_EQ(run.out, "");
  }
  std::vector<std::string> withoutYes = SmallArguments(corpus);
  withoutYes.pop_back();
  const CommandRun cancelled = Timeline(withoutYes);
  EXPECT_EQ(cancelled.code, 1);
  EXPECT_TRUE(Has(cancelled.err, "Proceed anyway? -> Cancel")) << cancelled.err;
  EXPECT_EQ(Timeline({}).code, 2);
  EXPECT_EQ(Timeline({"--help"}).code, 0);
}

// Four hours in one-second intervals need about 14 MB: refused under a budget of 1 MB, with a
// length that fits, and built under the default one.
TEST(TimelineCommand, TheMemoryBudgetRefusesTooManyIntervals) {
  testing::TempDir dir;
  std::vector<std::string> arguments = SmallArguments(SmallCorpus(dir));
  arguments[10] = "s";
  arguments[12] = "1";
  EXPECT_EQ(Timeline(arguments).code, 0);
  arguments.insert(arguments.end(), {"--memory-budget", "1"});
  const CommandRun run = Timeline(arguments);
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(Has(run.err,
                  "The models would have 14401 intervals and need about 15 MB, more "
                  "than the memory budget of 1 MB. Choose an interval length of at "
                  "least 15 seconds."))
      << run.err;
  arguments.back() = "0";
  EXPECT_EQ(Timeline(arguments).code, 2);
}

TEST(TimelineCommand, EventsAreWrittenInTheirIntervals) {
  testing::TempDir dir;
  const std::string events =
      dir.WriteFile("events.txt", "2011-01-05 12:30:00\tpower cut, east side\r\nnonsense\n");
  std::vector<std::string> arguments = SmallArguments(SmallCorpus(dir));
  arguments.insert(arguments.end(), {"--events", events});
  const CommandRun run = Timeline(arguments);
  ASSERT_EQ(run.code, 0) << run.err;
  // 12:30 lies in interval 2, which runs from 12:00 to 13:59.
  EXPECT_TRUE(Has(run.out, ",\"|power cut, east side\"\n3,")) << run.out;
  EXPECT_TRUE(Has(run.err, "Warning: Event")) << run.err;
}

TEST(TimelineCommand, ChartPngDrawsTheMainTimeLine) {
  testing::TempDir dir;
  std::vector<std::string> arguments = SmallArguments(SmallCorpus(dir));
  const std::string path = (dir.Path() / "chart.png").string();
  arguments.insert(arguments.end(), {"--chart-png", path});
  const CommandRun run = Timeline(arguments);
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(testing::ReadFile(path).substr(0, 4), "\x89PNG");
  EXPECT_TRUE(Has(run.err, "picture")) << run.err;
  // The table is the same with or without the picture.
  EXPECT_EQ(run.out, Timeline(SmallArguments(SmallCorpus(dir))).out);

  arguments.back() = (dir.Path() / "missing" / "chart.png").string();
  const CommandRun failed = Timeline(arguments);
  EXPECT_EQ(failed.code, 1);
  EXPECT_TRUE(Has(failed.err, "Error: Cannot write the picture file")) << failed.err;
}

}  // namespace
}  // namespace sylvora::cli
