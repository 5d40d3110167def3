#include "layout/shell_and_wait.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "common/leading_number.h"
#include "layout/layout_scripts.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::ProcessGone;
using testing::ReadFile;
using testing::TempDir;
using testing::WriteScript;

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

struct SplitCase {
  std::string commandLine;
  std::vector<std::string> arguments;
};

class SplitCommandLineTest : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitCommandLineTest, SplitsLikeAWindowsShell) {
  EXPECT_EQ(SplitCommandLine(GetParam().commandLine), GetParam().arguments);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SplitCommandLineTest,
    ::testing::Values(SplitCase{"", {}}, SplitCase{"   ", {}}, SplitCase{"a", {"a"}},
                      SplitCase{"  a   b ", {"a", "b"}}, SplitCase{"\"a b\" c", {"a b", "c"}},
                      SplitCase{"-o\"/t/x y.txt\"", {"-o/t/x y.txt"}},
                      SplitCase{"\"\" x", {"", "x"}},
                      SplitCase{"\"/gv/sfdp\" \"/f/gvin.txt\" -Tplain -o\"/f/gvout.txt\"",
                                {"/gv/sfdp", "/f/gvin.txt", "-Tplain", "-o/f/gvout.txt"}},
                      SplitCase{"a\tb", {"a", "b"}}, SplitCase{"\"unclosed x", {"unclosed x"}}));

struct InvalidCase {
  std::string commandLine;
  std::int32_t limit;
  std::int32_t windowStyle;
  std::int32_t breakOption;
};

class ShellAndWaitInvalidTest : public ::testing::TestWithParam<InvalidCase> {};

TEST_P(ShellAndWaitInvalidTest, ReturnsThree) {
  const auto& c = GetParam();
  EXPECT_EQ(ShellAndWait(c.commandLine, c.limit, c.windowStyle, c.breakOption),
            kShellInvalidArgument);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ShellAndWaitInvalidTest,
    ::testing::Values(InvalidCase{"", 1000, 6, 2}, InvalidCase{"    ", 1000, 6, 2},
                      InvalidCase{"/bin/true", -1, 6, 2}, InvalidCase{"/bin/true", 1000, 6, 3},
                      InvalidCase{"/bin/true", 1000, 6, -1}, InvalidCase{"/bin/true", 1000, 5, 2},
                      InvalidCase{"/bin/true", 1000, 7, 2}, InvalidCase{"/bin/true", 1000, -1, 2}));

TEST(ShellAndWaitTest, AcceptsEveryValidStyleAndBreakOption) {
  for (const std::int32_t style : {0, 1, 2, 3, 4, 6}) {
    for (const std::int32_t option : {0, 1, 2}) {
      EXPECT_EQ(ShellAndWait("/bin/true", 1000, style, option), kShellEnded)
          << "style " << style << " option " << option;
    }
  }
}

TEST(ShellAndWaitTest, EndedProgramGivesZeroWhateverItsExitStatus) {
  const TempDir dir;
  const auto script = WriteScript(dir, "fails", "exit 3");
  EXPECT_EQ(ShellAndWait(Quoted(script), 20000, 6, 2), kShellEnded);
  EXPECT_EQ(ShellAndWait("/bin/false", 20000, 6, 2), kShellEnded);
}

TEST(ShellAndWaitTest, ProgramOnPathIsFound) {
  EXPECT_EQ(ShellAndWait("true", 20000, 6, 2), kShellEnded);
}

TEST(ShellAndWaitTest, PassesQuotedArgumentsWhole) {
  const TempDir dir;
  const auto script =
      WriteScript(dir, "args", "for a in \"$@\"; do printf '[%s]' \"$a\" >> \"$1\"; done");
  const std::string out = (dir.Path() / "out put.txt").string();
  ASSERT_EQ(ShellAndWait(Quoted(script) + " " + Quoted(out) + " -Tplain -o\"x y\"", 20000, 6, 2),
            kShellEnded);
  EXPECT_EQ(ReadFile(out), "[" + out + "][-Tplain][-ox y]");
}

TEST(ShellAndWaitTest, MissingProgramGivesOne) {
  const TempDir dir;
  EXPECT_EQ(ShellAndWait(Quoted((dir.Path() / "sfdp").string()), 20000, 6, 2), kShellNotStarted);
  EXPECT_EQ(ShellAndWait("no-such-program-sylvora-test", 20000, 6, 2), kShellNotStarted);
  EXPECT_EQ(ShellAndWait("\"\" x", 20000, 6, 2), kShellNotStarted);
}

TEST(ShellAndWaitTest, FileThatIsNotExecutableGivesOne) {
  const TempDir dir;
  const auto path = dir.WriteFile("sfdp", "#!/bin/sh\nexit 0\n");
  EXPECT_EQ(ShellAndWait(Quoted(path), 20000, 6, 2), kShellNotStarted);
  EXPECT_EQ(ShellAndWait(Quoted(dir.Path().string()), 20000, 6, 2), kShellNotStarted);
}

TEST(ShellAndWaitTest, ProgramPastTheLimitGivesTwoAndIsKilledWithItsChildren) {
  const TempDir dir;
  const std::string pids = (dir.Path() / "pids").string();
  const auto script =
      WriteScript(dir, "slow", "sleep 30 &\necho $$ $! > \"$1\"\nwait\necho late > \"$1.late\"");
  const auto start = std::chrono::steady_clock::now();
  // Limit 1000 ms: slices count 500, 1000, 1500; the third passes the limit.
  EXPECT_EQ(ShellAndWait(Quoted(script) + " " + Quoted(pids), 1000, 6, 2), kShellTimedOut);
  const double seconds = SecondsSince(start);
  EXPECT_GE(seconds, 1.45);
  EXPECT_LT(seconds, 10.0);
  const std::string text = ReadFile(pids);
  ASSERT_FALSE(text.empty());
  const auto space = text.find(' ');
  const int shell = static_cast<int>(LeadingWholeNumber(text.substr(0, space)));
  const int sleeper = static_cast<int>(LeadingWholeNumber(text.substr(space + 1)));
  EXPECT_TRUE(ProcessGone(shell));
  EXPECT_TRUE(ProcessGone(sleeper));
  EXPECT_TRUE(ReadFile(pids + ".late").empty());
}

TEST(ShellAndWaitTest, ZeroLimitWaitsPastOneSlice) {
  const TempDir dir;
  const auto script = WriteScript(dir, "slowish", "sleep 1");
  EXPECT_EQ(ShellAndWait(Quoted(script), 0, 6, 2), kShellEnded);
}

TEST(ShellAndWaitTest, ProgressSeesEachTimedOutSliceAndCanAbandon) {
  const TempDir dir;
  const auto script = WriteScript(dir, "slow", "exec sleep 30");
  std::vector<std::int64_t> seen;
  const ProgressCallback progress = [&](std::string_view stage, std::int64_t done,
                                        std::int64_t total) {
    EXPECT_EQ(stage, "Waiting for Graphviz");
    EXPECT_EQ(total, 20000);
    seen.push_back(done);
    return seen.size() < 2;
  };
  EXPECT_EQ(ShellAndWait(Quoted(script), 20000, 6, 2, progress), kShellAbandoned);
  EXPECT_EQ(seen, (std::vector<std::int64_t>{0, 500}));
}

TEST(ShellAndWaitTest, QuickProgramIsNotHeldForAWholeSlice) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ShellAndWait("/bin/true", 20000, 6, 2), kShellEnded);
  EXPECT_LT(SecondsSince(start), 0.45);
}

}  // namespace
}  // namespace sylvora
