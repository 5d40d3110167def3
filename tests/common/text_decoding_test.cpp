#include "common/text_decoding.h"

#include <gtest/gtest.h>

namespace sylvora {
namespace {

TEST(TextDecoding, ValidUtf8IsKeptAndLosesItsByteOrderMark) {
  std::string text =
      "\xEF\xBB\xBF"
      "caf\xC3\xA9 \xE2\x82\xAC";
  EXPECT_EQ(DecodeText(text), SourceEncoding::kUtf8);
  EXPECT_EQ(text, "caf\xC3\xA9 \xE2\x82\xAC");
}

TEST(TextDecoding, OnlyTheInvalidBytesOfALineAreReadAsWindows1252) {
  struct Case {
    std::string input, output;
    std::size_t repaired;
  };
  const Case cases[] = {
      {"caf\xE9 \x80 \x93quoted\x94 \x81",
       "caf\xC3\xA9 \xE2\x82\xAC \xE2\x80\x9Cquoted\xE2\x80\x9D \xC2\x81", 1},
      // Valid lines stay UTF-8 around a line with one stray byte.
      {"#caf\xC3\xA9\n\xE6\x9D\xB1\xE4\xBA\xAC \xE9\n\xE6\x9D\xB1\xE4\xBA\xAC\n",
       "#caf\xC3\xA9\n\xE6\x9D\xB1\xE4\xBA\xAC \xC3\xA9\n\xE6\x9D\xB1\xE4\xBA\xAC\n", 1},
      // In a repaired line the well-formed UTF-8 characters are kept as they are.
      {"na\xC3\xAFve \x93q\x94\r\nok\n\xC3",
       "na\xC3\xAFve \xE2\x80\x9Cq\xE2\x80\x9D\r\nok\n\xC3\x83", 2},
      // A truncated sequence is read byte by byte.
      {"\xE2\x82 x", "\xC3\xA2\xE2\x80\x9A x", 1},
  };
  for (const Case& c : cases) {
    std::string text = c.input;
    std::size_t repaired = 99;
    EXPECT_EQ(DecodeText(text, &repaired), SourceEncoding::kMixed) << c.input;
    EXPECT_EQ(text, c.output) << c.input;
    EXPECT_EQ(repaired, c.repaired) << c.input;
  }
}

TEST(TextDecoding, Utf16WithByteOrderMarkIsRead) {
  std::string little(
      "\xFF\xFE"
      "a\0\xE9\0=\xD8\x00\xDE",
      10);  // a é U+1F600
  EXPECT_EQ(DecodeText(little), SourceEncoding::kUtf16);
  EXPECT_EQ(little, "a\xC3\xA9\xF0\x9F\x98\x80");
  std::string big("\xFE\xFF\0a\xD8\x00", 6);  // a, then an unpaired high surrogate
  EXPECT_EQ(DecodeText(big), SourceEncoding::kUtf16);
  EXPECT_EQ(big, "a\xEF\xBF\xBD");
}

TEST(TextDecoding, RejectsMalformedUtf8Forms) {
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8("plain ascii text longer than eight bytes"));
  EXPECT_TRUE(IsValidUtf8("\xF0\x9F\x98\x80"));   // U+1F600
  EXPECT_FALSE(IsValidUtf8("\xC0\xAF"));          // overlong "/"
  EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));      // surrogate
  EXPECT_FALSE(IsValidUtf8("\xF4\x90\x80\x80"));  // past U+10FFFF
  EXPECT_FALSE(IsValidUtf8("abc\xE2\x82"));       // truncated at the end
  EXPECT_FALSE(IsValidUtf8("\x80"));              // lone continuation byte
}

}  // namespace
}  // namespace sylvora
