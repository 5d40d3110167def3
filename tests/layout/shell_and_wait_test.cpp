#include "layout/shell_and_wait.h"

#include <gtest/gtest.h>

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

// Waits in short slices, so that limits and abandoned waits take a few hundredths of a second.
constexpr std::int32_t kSlice = 10;

std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

TEST(SplitCommandLineTest, SplitsLikeAWindowsShell) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"", {}},
      {"   ", {}},
      {"a", {"a"}},
      {"  a   b ", {"a", "b"}},
      {"\"a b\" c", {"a b", "c"}},
      {"-o\"/t/x y.txt\"", {"-o/t/x y.txt"}},
      {"\"\" x", {"", "x"}},
      {"\"/gv/sfdp\" \"/f/gvin.txt\" -Tplain -o\"/f/gvout.txt\"",
       {"/gv/sfdp", "/f/gvin.txt", "-Tplain", "-o/f/gvout.txt"}},
      {"a\tb", {"a", "b"}},
      {"\"unclosed x", {"unclosed x"}},
  };
  for (const auto& [line, arguments] : cases) EXPECT_EQ(SplitCommandLine(line), arguments) << line;
}

TEST(ShellAndWaitTest, ArgumentsAreChecked) {
  struct Case {
    std::string commandLine;
    std::int32_t limit, windowStyle, breakOption, slice;
  };
  const Case invalid[] = {{"", 1000, 6, 2, kSlice},           {"    ", 1000, 6, 2, kSlice},
                          {"/bin/true", -1, 6, 2, kSlice},    {"/bin/true", 1000, 6, 3, kSlice},
                          {"/bin/true", 1000, 6, -1, kSlice}, {"/bin/true", 1000, 5, 2, kSlice},
                          {"/bin/true", 1000, 7, 2, kSlice},  {"/bin/true", 1000, -1, 2, kSlice},
                          {"/bin/true", 1000, 6, 2, 0}};
  for (const Case& c : invalid) {
    EXPECT_EQ(ShellAndWait(c.commandLine, c.limit, c.windowStyle, c.breakOption, {}, c.slice),
              kShellInvalidArgument)
        << c.commandLine << " " << c.limit << " " << c.windowStyle << " " << c.breakOption;
  }
  for (const std::int32_t style : {0, 1, 2, 3, 4, 6}) {
    EXPECT_EQ(ShellAndWait("/bin/true", 1000, style, style % 3), kShellEnded) << style;
  }
}

// Whether the program ran decides the result, not its exit status.
TEST(ShellAndWaitTest, StartedOrNot) {
  const TempDir dir;
  const std::string fails = Quoted(WriteScript(dir, "fails", "exit 3"));
  const std::string notExecutable = Quoted(dir.WriteFile("sfdp", "#!/bin/sh\nexit 0\n"));
  const std::pair<std::string, std::int32_t> cases[] = {
      {fails, kShellEnded},
      {"/bin/false", kShellEnded},
      {"true", kShellEnded},  // found on PATH
      {Quoted((dir.Path() / "missing").string()), kShellNotStarted},
      {"no-such-program-sylvora-test", kShellNotStarted},
      {"\"\" x", kShellNotStarted},
      {notExecutable, kShellNotStarted},
      {Quoted(dir.Path().string()), kShellNotStarted},
  };
  for (const auto& [line, code] : cases) EXPECT_EQ(ShellAndWait(line, 20000, 6, 2), code) << line;
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

// Each timed-out slice is reported before it counts; the slice that brings the count above the
// limit kills the program with its children.
TEST(ShellAndWaitTest, ProgramPastTheLimitIsKilledWithItsChildren) {
  const TempDir dir;
  const std::string pids = (dir.Path() / "pids").string();
  const auto script =
      WriteScript(dir, "slow", "sleep 30 &\necho $$ $! > \"$1\"\nwait\necho late > \"$1.late\"");
  std::vector<std::int64_t> seen;
  const ProgressCallback progress = [&](std::string_view stage, std::int64_t done,
                                        std::int64_t total) {
    EXPECT_EQ(stage, "Waiting for Graphviz");
    EXPECT_EQ(total, 2 * kSlice);
    seen.push_back(done);
    return true;
  };
  EXPECT_EQ(ShellAndWait(Quoted(script) + " " + Quoted(pids), 2 * kSlice, 6, 2, progress, kSlice),
            kShellTimedOut);
  EXPECT_EQ(seen, (std::vector<std::int64_t>{0, kSlice, 2 * kSlice}));
  const std::string text = ReadFile(pids);
  ASSERT_FALSE(text.empty());
  const auto space = text.find(' ');
  EXPECT_TRUE(ProcessGone(static_cast<int>(LeadingWholeNumber(text.substr(0, space)))));
  EXPECT_TRUE(ProcessGone(static_cast<int>(LeadingWholeNumber(text.substr(space + 1)))));
  EXPECT_TRUE(ReadFile(pids + ".late").empty());
}

TEST(ShellAndWaitTest, ZeroLimitWaitsPastManySlices) {
  const TempDir dir;
  const auto script = WriteScript(dir, "slowish", "sleep 0.2");
  int slices = 0;
  const ProgressCallback count = [&](std::string_view, std::int64_t, std::int64_t) {
    return ++slices > 0;
  };
  EXPECT_EQ(ShellAndWait(Quoted(script), 0, 6, 2, count, kSlice), kShellEnded);
  EXPECT_GT(slices, 1);
}

TEST(ShellAndWaitTest, ProgressCanAbandonTheWait) {
  const TempDir dir;
  const auto script = WriteScript(dir, "slow", "exec sleep 30");
  std::vector<std::int64_t> seen;
  const ProgressCallback progress = [&](std::string_view, std::int64_t done, std::int64_t) {
    seen.push_back(done);
    return seen.size() < 2;
  };
  EXPECT_EQ(ShellAndWait(Quoted(script), 20000, 6, 2, progress, kSlice), kShellAbandoned);
  EXPECT_EQ(seen, (std::vector<std::int64_t>{0, kSlice}));
}

}  // namespace
}  // namespace sylvora
