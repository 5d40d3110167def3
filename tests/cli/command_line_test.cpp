#include "cli/command_line.h"

#include <gtest/gtest.h>

namespace sylvora::cli {
namespace {

TEST(CommandLine, ReadsPositionalValuesOptionsAndSwitches) {
  CommandLine line({"unit", "max-docs"}, {"radian"});
  ASSERT_TRUE(line.Parse({"corpus.txt", "--unit", "d", "--radian", "--max-docs", "50"}));
  EXPECT_EQ(line.Positional(), std::vector<std::string>{"corpus.txt"});
  EXPECT_EQ(line.Value("unit", "h"), "d");
  EXPECT_TRUE(line.Has("radian"));
  EXPECT_EQ(line.Number("max-docs", 0), 50);
  EXPECT_EQ(line.Number("absent", 7), 7);
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
  EXPECT_FALSE(bad.Number("max-docs", 0).has_value());
  EXPECT_NE(bad.Error().find("whole number"), std::string::npos);
}

}  // namespace
}  // namespace sylvora::cli
