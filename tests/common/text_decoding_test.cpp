#include "common/text_decoding.h"

#include <gtest/gtest.h>

#include "common/code_points.h"

namespace sylvora {
namespace {

TEST(TextDecoding, ValidUtf8IsKeptAndLosesItsByteOrderMark) {
  std::string text =
      "\xEF\xBB\xBF"
      "caf\xC3\xA9 \xE2\x82\xAC";
  EXPECT_EQ(DecodeText(text), SourceEncoding::kUtf8);
  EXPECT_EQ(text, "caf\xC3\xA9 \xE2\x82\xAC");
}

TEST(TextDecoding, InvalidUtf8IsReadAsWindows1252) {
  std::string text = "caf\xE9 \x80 \x93quoted\x94 \x81";
  EXPECT_EQ(DecodeText(text), SourceEncoding::kWindows1252);
  EXPECT_EQ(text, "caf\xC3\xA9 \xE2\x82\xAC \xE2\x80\x9Cquoted\xE2\x80\x9D \xC2\x81");
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

TEST(TextDecoding, Windows1252CodesOfCodePoints) {
  EXPECT_EQ(Windows1252Code(U'a'), 'a');
  EXPECT_EQ(Windows1252Code(U'\u00E9'), 0xE9);
  EXPECT_EQ(Windows1252Code(U'\u20AC'), 0x80);
  EXPECT_EQ(Windows1252Code(U'\u2019'), 0x92);
  EXPECT_EQ(Windows1252Code(U'\u4E2D'), -1);
  EXPECT_EQ(Windows1252Code(U'\u0100'), -1);
}

}  // namespace
}  // namespace sylvora
