#include "common/code_points.h"

#include <gtest/gtest.h>

namespace sylvora {
namespace {

TEST(CodePoints, CountsAndPositionsAreInCharactersNotBytes) {
  const std::string text =
      "a\xC3\xA9\xE2\x82\xAC"
      "b";  // a é € b
  EXPECT_EQ(CodePointCount(text), 4u);
  EXPECT_EQ(ByteOffsetOfCharacter(text, 1), 0u);
  EXPECT_EQ(ByteOffsetOfCharacter(text, 3), 3u);
  EXPECT_EQ(ByteOffsetOfCharacter(text, 9), text.size());
  EXPECT_EQ(MidCharacters(text, 2, 2), "\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(MidCharacters(text, 4, 5), "b");
  EXPECT_EQ(MidCharacters(text, 7, 2), "");
  EXPECT_EQ(MidCharacters(text, 1, 0), "");
}

TEST(CodePoints, DecodesAndEncodesEveryLength) {
  for (const char32_t cp : {U'A', U'\u00E9', U'\u20AC', U'\U0001F600'}) {
    std::string encoded;
    AppendUtf8(encoded, cp);
    std::size_t length = 0;
    EXPECT_EQ(DecodeUtf8At(encoded, 0, length), cp);
    EXPECT_EQ(length, encoded.size());
  }
}

TEST(CodePoints, ReplaceAllScansLeftToRightWithoutOverlapAndTrimRemovesSpaces) {
  EXPECT_EQ(ReplaceAll("aaaa", "aa", "b"), "bb");
  EXPECT_EQ(ReplaceAll("#win and #winner", "#win", "[H]"), "[H] and [H]ner");
  EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
  EXPECT_EQ(ReplaceAll("", "a", "x"), "");
  // TrimSpaces removes only spaces.
  EXPECT_EQ(TrimSpaces("  a b  "), "a b");
  EXPECT_EQ(TrimSpaces("   "), "");
  EXPECT_EQ(TrimSpaces("\tx "), "\tx");
}

}  // namespace
}  // namespace sylvora
