#include "indexing/stop_list.h"

#include <gtest/gtest.h>

#include "indexing/indexing_errors.h"
#include "support/temp_dir.h"

namespace sylvora {
namespace {

using Strings = std::vector<std::string>;

struct StopListCase {
  const char* what;
  std::string file;
  std::size_t minLen;
  Strings words;
};

TEST(StopList, ReadsOneWordPerLineWithAnyLineEnd) {
  const StopListCase cases[] = {
      {"LF", "the\nand\nfor\n", 3, {"the", "and", "for"}},
      {"CR LF", "the\r\nand\r\nfor\r\n", 3, {"the", "and", "for"}},
      {"bare CR", "the\rand\r", 3, {"the", "and"}},
      {"no final line end", "the\nand", 3, {"the", "and"}},
      {"short lines skipped", "a\nan\nthe\n\nabout\n", 3, {"the", "about"}},
      {"minimum 0 keeps blank lines", "a\n\nthe\n", 0, {"a", "", "the"}},
      {"no trimming, no case change", " the\nThe \n", 3, {" the", "The "}},
      {"empty file", "", 3, {}},
      {"UTF-8 kept", "caf\u00E9\n", 3, {"caf\u00E9"}},
      {"lengths in characters", "\u00E9a\n\u00E9ab\n", 3, {"\u00E9ab"}},
      {"Windows-1252 decoded", "caf\xE9\n", 3, {"caf\u00E9"}},
  };
  for (const StopListCase& c : cases) {
    testing::TempDir dir;
    StopList stop;
    stop.Load(dir.WriteFile("stop.txt", c.file), c.minLen);
    EXPECT_TRUE(stop.Loaded()) << c.what;
    EXPECT_EQ(stop.Words(), c.words) << c.what;
    for (const std::string& word : c.words) EXPECT_TRUE(stop.Contains(word)) << c.what;
  }
}

TEST(StopList, HoldsAtMostAThousandWords) {
  testing::TempDir dir;
  std::string thousand;
  for (int i = 0; i < 1000; ++i) thousand += "word" + std::to_string(i) + "\n";
  StopList stop;
  stop.Load(dir.WriteFile("full.txt", thousand + "ab\n"), 3);  // "ab" is skipped, not counted
  EXPECT_EQ(stop.Count(), 1000u);

  StopList tooLong;
  tooLong.Load(dir.WriteFile("ok.txt", "kept\n"), 3);
  try {
    tooLong.Load(dir.WriteFile("long.txt", thousand + "extra\n"), 3);
    FAIL() << "a list of 1001 words loaded";
  } catch (const StopListError& error) {
    EXPECT_NE(std::string(error.what()).find("more than 1000"), std::string::npos);
    EXPECT_NE(std::string(error.what()).find("line 1001"), std::string::npos);
  }
  EXPECT_EQ(tooLong.Words(), Strings{"kept"});  // left as it was
}

TEST(StopList, AMissingOrBinaryFileIsAnErrorNamingIt) {
  testing::TempDir dir;
  const std::string missing = (dir.Path() / "missing.txt").string();
  StopList stop;
  try {
    stop.Load(missing, 3);
    FAIL() << "a missing file loaded";
  } catch (const StopListError& error) {
    EXPECT_EQ(error.Path(), missing);
    EXPECT_NE(std::string(error.what()).find(missing), std::string::npos);
  }
  EXPECT_FALSE(stop.Loaded());
  EXPECT_THROW(stop.Load(dir.WriteFile("bin.txt", std::string("the\0and", 7)), 3), StopListError);
  EXPECT_THROW(stop.Load(dir.Path().string(), 3), StopListError);  // a folder
  EXPECT_FALSE(stop.Loaded());
}

}  // namespace
}  // namespace sylvora
