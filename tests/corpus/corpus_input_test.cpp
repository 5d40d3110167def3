// Import files as bytes: plain or gzip-compressed, with the padding the JSON parser reads.

#include "corpus/corpus_input.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

#include "support/temp_dir.h"

namespace sylvora {
namespace {

// `text` as one gzip member.
std::string Gzip(const std::string& text) {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
  std::string out(compressBound(static_cast<uLong>(text.size())) + 64, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

std::string Content(const CorpusInput& input) {
  return std::string(input.bytes.Data(), input.bytes.Size());
}

TEST(CorpusInput, PlainFileIsReadWithPaddingAfterIt) {
  testing::TempDir dir;
  const std::string path = dir.WriteFile("a.jsonl", "{\"a\":1}\n");
  CorpusInput input;
  std::string error;
  ASSERT_TRUE(ReadCorpusInput(path, input, error)) << error;
  EXPECT_FALSE(input.gzipped);
  EXPECT_EQ(Content(input), "{\"a\":1}\n");
  ASSERT_GE(input.bytes.Capacity(), input.bytes.Size() + kInputPadding);
  EXPECT_EQ(input.bytes.Data()[input.bytes.Size()], ' ');
}

TEST(CorpusInput, GzipIsFoundByItsMagicNumberAndUnpacked) {
  testing::TempDir dir;
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "{\"n\":" + std::to_string(i) + "}\n";
  const std::string path = dir.WriteFile("posts.txt", Gzip(text));  // no telling extension
  CorpusInput input;
  std::string error;
  ASSERT_TRUE(ReadCorpusInput(path, input, error)) << error;
  EXPECT_TRUE(input.gzipped);
  EXPECT_EQ(Content(input), text);
  EXPECT_GE(input.bytes.Capacity(), input.bytes.Size() + kInputPadding);
}

TEST(CorpusInput, ConcatenatedMembersUnpackOneAfterTheOther) {
  const std::string packed = Gzip("first\n") + Gzip("second\n");
  CorpusInput input;
  std::string error;
  ASSERT_TRUE(UnpackCorpusInput("two.gz", packed.data(), packed.size(), input, error)) << error;
  EXPECT_EQ(Content(input), "first\nsecond\n");
}

// A truncated or corrupt stream is an error naming the file, with nothing kept.
TEST(CorpusInput, TruncatedOrCorruptGzipIsAnErrorNamingTheFile) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "line " + std::to_string(i) + "\n";
  const std::string packed = Gzip(text);
  std::string corrupt = packed;
  corrupt[corrupt.size() / 2] = static_cast<char>(corrupt[corrupt.size() / 2] ^ 0x55);
  corrupt[12] = static_cast<char>(corrupt[12] ^ 0x7F);
  const std::pair<std::string, std::string> cases[] = {
      {packed.substr(0, packed.size() - 4), "truncated"},
      {packed.substr(0, packed.size() / 2), "truncated"},
      {packed.substr(0, 12), "truncated"},
      {corrupt, ""}};
  for (const auto& [bytes, what] : cases) {
    CorpusInput input;
    std::string error;
    EXPECT_FALSE(UnpackCorpusInput("cut.gz", bytes.data(), bytes.size(), input, error));
    EXPECT_NE(error.find("'cut.gz'" + (what.empty() ? "" : " is a " + what + " gzip stream")),
              std::string::npos)
        << error;
    EXPECT_EQ(input.bytes.Size(), 0u);
  }
}

TEST(CorpusInput, PreviewLimitReadsTheStartOnly) {
  std::string text;
  for (int i = 0; i < 20000; ++i) text += "row " + std::to_string(i) + "\n";
  const std::string packed = Gzip(text);
  CorpusInput input;
  std::string error;
  ASSERT_TRUE(UnpackCorpusInput("p.gz", packed.data(), packed.size() / 3, input, error, 1000))
      << error;
  EXPECT_EQ(Content(input), text.substr(0, 1000));
}

}  // namespace
}  // namespace sylvora
