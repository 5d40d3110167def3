#include "common/file_io.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/temp_dir.h"

namespace sylvora {
namespace {

using testing::TempDir;

TEST(FileIo, WritesLinesWithCrLfAndReadsThemBack) {
  TempDir dir;
  const std::string path = (dir.Path() / "out.txt").string();
  FileWriter writer;
  std::string error;
  ASSERT_TRUE(writer.Open(path, error));
  writer.WriteLine("first");
  writer.Write(std::string(3 << 20, 'x'));  // larger than the write buffer
  writer.WriteLine("");
  ASSERT_TRUE(writer.Close(error)) << error;
  std::string text;
  ASSERT_TRUE(ReadWholeFile(path, text, error));
  EXPECT_EQ(text.size(), 7u + (3u << 20) + 2u);
  EXPECT_TRUE(text.starts_with("first\r\nxxx"));
  EXPECT_TRUE(text.ends_with("x\r\n"));
  ByteBuffer buffer;
  ASSERT_TRUE(ReadWholeFile(path, buffer, error));
  EXPECT_EQ(std::string_view(buffer.Data(), buffer.Size()), text);
  ASSERT_TRUE(ReadFilePrefix(path, 4, text, error));
  EXPECT_EQ(text, "firs");
  EXPECT_TRUE(FileExists(path));
  EXPECT_FALSE(FileExists(dir.Path().string()));
}

// A large file is read by ranges on several threads at once; the ranges must join without a
// gap or an overlap, and a limit below the file's size still holds.
TEST(FileIo, ALargeFileReadByRangesComesBackWhole) {
  TempDir dir;
  std::string bytes(25u << 20, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + i / 4096);
  const std::string path = dir.WriteFile("large.bin", bytes);
  ::setenv("SYLVORA_THREADS", "3", 1);
  std::string error;
  ByteBuffer whole;
  const bool read = ReadWholeFile(path, whole, error);
  std::string prefix;
  const bool readPrefix = ReadFilePrefix(path, (20u << 20) + 5, prefix, error);
  ::unsetenv("SYLVORA_THREADS");
  ASSERT_TRUE(read && readPrefix) << error;
  EXPECT_TRUE(std::string_view(whole.Data(), whole.Size()) == bytes);
  EXPECT_TRUE(prefix == bytes.substr(0, (20u << 20) + 5));
}

TEST(FileIo, ErrorsNameTheFileAndTheReason) {
  TempDir dir;
  std::string text;
  std::string error;
  const std::string missing = (dir.Path() / "missing.txt").string();
  EXPECT_FALSE(ReadWholeFile(missing, text, error));
  EXPECT_EQ(error, "Cannot open '" + missing + "': No such file or directory");
  EXPECT_FALSE(FileExists(missing));
  EXPECT_FALSE(ReadWholeFile(dir.Path().string(), text, error));
  EXPECT_NE(error.find("it is a folder"), std::string::npos);
  FileWriter writer;
  EXPECT_FALSE(writer.Open((dir.Path() / "no" / "such.txt").string(), error));
  EXPECT_NE(error.find("Cannot create"), std::string::npos);
  ASSERT_TRUE(writer.Open("/dev/full", error));
  writer.Write(std::string(2 << 20, 'x'));
  EXPECT_FALSE(writer.Close(error));
  EXPECT_NE(error.find("Cannot write '/dev/full'"), std::string::npos);
  // An empty file reads as empty.
  text = "stale";
  ASSERT_TRUE(ReadWholeFile(dir.WriteFile("empty.txt", ""), text, error));
  EXPECT_TRUE(text.empty());
}

}  // namespace
}  // namespace sylvora
