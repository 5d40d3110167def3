#include "common/data_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/temp_dir.h"

namespace sylvora {
namespace {

namespace fs = std::filesystem;
using testing::TempDir;

TEST(DataFiles, AProgramFindsTheFilesOfItsInstallTreeOrOfItsBuildTree) {
  TempDir dir;
  const fs::path prefix = dir.Path() / "moved" / "prefix";
  fs::create_directories(prefix / "bin");
  fs::create_directories(prefix / "share" / "sylvora");
  std::ofstream(prefix / "share" / "sylvora" / "common_words.txt") << "the\n";
  fs::create_directories(dir.Path() / "bare" / "bin");

  struct Case {
    fs::path programFolder;
    fs::path expected;  // empty: not found
  };
  const Case cases[] = {
      // An install tree anywhere: <prefix>/bin -> <prefix>/share/sylvora.
      {prefix / "bin", prefix / "share" / "sylvora" / "common_words.txt"},
      // A copied program outside the build tree never reads the source tree.
      {dir.Path() / "bare" / "bin", {}},
      // This test program runs from the build tree: the source tree's data folder.
      {ProgramFolder(), testing::SourceDir() / "data" / "common_words.txt"},
  };
  for (const Case& c : cases) {
    const std::string found = FindDataFile("common_words.txt", c.programFolder.string());
    EXPECT_EQ(fs::path(found).lexically_normal(), c.expected.lexically_normal()) << c.programFolder;
  }
  EXPECT_TRUE(FindDataFile("no_such_file.txt").empty());
}

}  // namespace
}  // namespace sylvora
