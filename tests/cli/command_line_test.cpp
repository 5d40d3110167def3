#include "cli/command_line.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <sstream>

#include "cli/index_command.h"
#include "cli/load_command.h"
#include "cli/map_command.h"
#include "cli/timeline_command.h"
#include "support/temp_dir.h"

namespace sylvora::cli {
namespace {

TEST(CommandLine, ReadsPositionalValuesOptionsAndSwitches) {
  CommandLine line({"unit", "max-docs"}, {"radian"});
  ASSERT_TRUE(line.Parse({"corpus.txt", "--unit", "d", "--radian", "--max-docs", "50"}));
  EXPECT_EQ(line.Positional(), std::vector<std::string>{"corpus.txt"});
  EXPECT_EQ(line.Value("unit", "h"), "d");
  EXPECT_TRUE(line.Has("radian"));
  EXPECT_EQ(line.Number("max-docs", 0, 0, 100), 50);
  EXPECT_EQ(line.Number("absent", 7, 0, 5), 7);
  EXPECT_EQ(line.Value("absent", "x"), "x");
}

TEST(CommandLine, RejectsUnknownOptionsMissingValuesAndNonNumbers) {
  CommandLine unknown({"unit"}, {});
  EXPECT_FALSE(unknown.Parse({"--units", "d"}));
  EXPECT_EQ(unknown.Error(), "Unknown option --units");
  CommandLine missing({"unit"}, {});
  EXPECT_FALSE(missing.Parse({"file", "--unit"}));
  EXPECT_EQ(missing.Error(), "Option --unit needs a value");
  CommandLine bad({"max-docs"}, {});
  ASSERT_TRUE(bad.Parse({"--max-docs", "12x"}));
  EXPECT_FALSE(bad.Number("max-docs", 0, 0, 10).has_value());
  EXPECT_EQ(bad.Error(), "Option --max-docs takes a whole number from 0 to 10, not \"12x\"");
}

// Regression: numbers were read by their leading digits ("1e12" as 1, "1.5" as 2), wrapped
// ("4294967297" as 1), taken negative, or checked only after the map files were written.
// Every numeric option of every command is refused before any work, with its range.
TEST(CommandLine, EveryNumericOptionParsesWholeOrIsRefusedWithItsRange) {
  using Command = std::function<int(const std::vector<std::string>&, std::ostream&, std::ostream&)>;
  struct Case {
    const char* command;
    std::vector<std::string> flags;
    const char* message;
  };
  const std::vector<Case> cases = {
      {"timeline", {"--length", "1e12"}, "--length takes a whole number from 1 to 2147483647"},
      {"timeline", {"--length", "1abc"}, "--length takes a whole number from 1 to"},
      {"timeline", {"--length", "1.5"}, "--length takes a whole number from 1 to"},
      {"timeline", {"--length", "0"}, "--length takes a whole number from 1 to"},
      {"timeline",
       {"--novelty-window", "256"},
       "--novelty-window takes a whole number from 0 to 255"},
      {"load",
       {"--max-docs", "4294967297"},
       "--max-docs takes a whole number from 0 to 2147483647"},
      {"load", {"--max-docs", "-5"}, "--max-docs takes a whole number from 0 to"},
      {"load", {"--min-doc-len", "-1"}, "--min-doc-len takes a whole number from 0 to"},
      {"index", {"--min-doc-len", "-1"}, "--min-doc-len takes a whole number from 0 to"},
      {"index", {"--min-chars", "300"}, "--min-chars takes a whole number from 0 to 255"},
      {"index", {"--max-df", ""}, "--max-df takes a whole number from 0 to"},
      {"map",
       {"--label-threshold", "99999", "--png", "x.png"},
       "--label-threshold takes a whole number from 0 to 1000"},
      {"map", {"--layout-timeout", "-2"}, "--layout-timeout takes a whole number from 0 to 86400"},
      {"map", {"--neighbours", "+3"}, "--neighbours takes a whole number from 0 to"},
      {"map", {"--interval", "0", "--kind", "tweets"}, "--interval takes a whole number from 1"},
  };
  const std::map<std::string, Command> commands = {{"load", RunLoadCommand},
                                                   {"index", RunIndexCommand},
                                                   {"timeline", RunTimelineCommand},
                                                   {"map", RunMapCommand}};
  testing::TempDir dir;
  const std::string corpus =
      dir.WriteFile("tweets.txt",
                    "20110105T10:00:00Z\tann\tThe storm is here\t2\t-1\t1\n"
                    "20110105T11:00:00Z\tbob\tStill raining here\t1\t-3\t-2\n");
  for (const Case& c : cases) {
    std::vector<std::string> arguments = {corpus, "--min-doc-len", "0", "--out",
                                          (dir.Path() / "map").string()};
    if (std::string_view(c.command) != "map") arguments.resize(3);
    for (std::string flag : c.flags) {
      if (flag == "x.png") flag = (dir.Path() / "x.png").string();
      arguments.push_back(flag);
    }
    std::ostringstream out, err;
    EXPECT_EQ(commands.at(c.command)(arguments, out, err), 2) << c.command << " " << c.flags[1];
    EXPECT_NE(err.str().find(c.message), std::string::npos) << err.str();
    EXPECT_TRUE(out.str().empty()) << c.command << " " << c.flags[1];
  }
  // Nothing was written: the corpus is the folder's only file.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);
}

}  // namespace
}  // namespace sylvora::cli
