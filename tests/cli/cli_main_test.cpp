#include "cli/cli_main.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace sylvora::cli {
namespace {

struct CliRun {
  int code;
  std::string out;
  std::string err;
};

CliRun Cli(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  const int code = RunCli(arguments, out, err);
  return {code, out.str(), err.str()};
}

TEST(CliMain, HelpListsEveryCommandAndFlag) {
  const CliRun help = Cli({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_TRUE(help.err.empty()) << help.err;
  // The four commands and a flag of each (each command's own help is tested with it).
  for (const char* expected :
       {"load FILE", "index FILE", "timeline FILE", "map FILE", "--map ROLE=COLUMN",
        "--burst ratio|temporal|z", "--kind words|intervals|tweets", "--version"}) {
    EXPECT_NE(help.out.find(expected), std::string::npos) << expected;
  }
}

TEST(CliMain, VersionAndBadUsage) {
  const CliRun version = Cli({"--version"});
  EXPECT_EQ(version.code, 0);
  // "sylvora-cli MAJOR.MINOR.PATCH" and a line feed.
  const std::string number = version.out.substr(std::string("sylvora-cli ").size());
  EXPECT_TRUE(version.out.starts_with("sylvora-cli ") && version.out.ends_with("\n") &&
              std::count(number.begin(), number.end(), '.') == 2 &&
              number.find_first_not_of("0123456789.\n") == std::string::npos)
      << version.out;
  struct Case {
    std::vector<std::string> arguments;
    const char* message;
  };
  const Case cases[] = {{{}, "usage: sylvora-cli COMMAND"},
                        {{"plot", "a.txt"}, "Unknown command \"plot\""}};
  for (const Case& c : cases) {
    const CliRun run = Cli(c.arguments);
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    EXPECT_TRUE(run.out.empty());
  }
}

}  // namespace
}  // namespace sylvora::cli
