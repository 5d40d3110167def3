#include "indexing/character_classes.h"

#include <gtest/gtest.h>

#include <string>

#include "common/code_points.h"

namespace sylvora {
namespace {

TEST(CharacterCode, IsTheCodePageByteWhereThereIsOneElseTheCodePoint) {
  EXPECT_EQ(CharacterCode(U'a'), 97);
  EXPECT_EQ(CharacterCode(U'\u00E9'), 233);    // é
  EXPECT_EQ(CharacterCode(U'\u20AC'), 128);    // €
  EXPECT_EQ(CharacterCode(U'\u0161'), 154);    // š
  EXPECT_EQ(CharacterCode(U'\u03A9'), 0x3A9);  // Ω is not in the code page
}

struct SeparatorCase {
  char32_t cp;
  bool separator;
  const char* why;
};

TEST(IsTokenSeparator, FollowsTheCodePageRanges) {
  const SeparatorCase cases[] = {
      {0, false, "code 0 is outside 1..64"},
      {1, true, "control"},
      {U' ', true, "space"},
      {U'0', true, "digit"},
      {U'@', true, "code 64"},
      {U'A', false, "upper-case letter"},
      {U'Z', false, "upper-case letter"},
      {U'[', true, "code 91"},
      {U'_', true, "code 95"},
      {U'`', true, "code 96"},
      {U'a', false, "lower-case letter"},
      {U'z', false, "lower-case letter"},
      {U'{', true, "code 123"},
      {0x7F, true, "DEL"},
      {U'\u20AC', true, "euro sign, code 128"},
      {U'\u2019', true, "curly apostrophe, code 146"},
      {U'\u00A0', true, "no-break space, code 160"},
      {U'\u00E9', true, "e acute, code 233"},
      {U'\u00FE', true, "thorn, code 254"},
      {U'\u00FF', false, "y diaeresis, code 255"},
      {U'\u03A9', false, "Greek: outside the code page"},
      {U'\u4E2D', false, "CJK: outside the code page"},
      {U'\U0001F600', false, "emoji: outside the code page"},
      {U'\u2014', true, "em dash, code 151"},
  };
  for (const SeparatorCase& c : cases) {
    EXPECT_EQ(IsTokenSeparator(c.cp), c.separator) << c.why;
    if (c.cp < 0x80) {
      EXPECT_EQ(IsAsciiSeparator(static_cast<unsigned char>(c.cp)), c.separator) << c.why;
    }
  }
}

TEST(LowerCase, FoldsLettersAndKeepsTheUtf8Length) {
  const std::pair<char32_t, char32_t> cases[] = {
      {U'A', U'a'},           {U'Z', U'z'},           {U'a', U'a'},
      {U'1', U'1'},           {U'\u00C9', U'\u00E9'}, {U'\u00D7', U'\u00D7'},
      {U'\u0178', U'\u00FF'}, {U'\u0160', U'\u0161'}, {U'\u0141', U'\u0142'},
      {U'\u017D', U'\u017E'}, {U'\u0394', U'\u03B4'}, {U'\u0416', U'\u0436'},
      {U'\u0401', U'\u0451'}, {U'\u4E2D', U'\u4E2D'},
  };
  for (const auto& [upper, lower] : cases) {
    EXPECT_EQ(LowerCase(upper), lower) << static_cast<unsigned>(upper);
    std::string a, b;
    AppendUtf8(a, upper);
    AppendUtf8(b, LowerCase(upper));
    EXPECT_EQ(a.size(), b.size()) << static_cast<unsigned>(upper);
  }
}

TEST(LowerCase, NeverChangesTheUtf8LengthOfAnyBmpCharacter) {
  for (char32_t cp = 0; cp < 0x10000; ++cp) {
    if (cp >= 0xD800 && cp <= 0xDFFF) continue;
    std::string a, b;
    AppendUtf8(a, cp);
    AppendUtf8(b, LowerCase(cp));
    ASSERT_EQ(a.size(), b.size()) << static_cast<unsigned>(cp);
  }
}

TEST(FirstLetterBucket, LettersAToZAreBuckets1To26AndAllElseBucket0) {
  const std::pair<const char*, int> cases[] = {
      {"apple", 1},
      {"cat", 3},
      {"zebra", 26},
      {"Apple", 0},
      {"9lives", 0},
      {"", 0},
      {"_x", 0},
      {"\u00E9t\u00E9", 0},  // é is code 233
      {"\u0161", 0},         // š is code 154, not 0x61
      {"\u0161", 0},
      {"\u0461x", 1},  // a code point outside the code page: its low 8 bits (0x61,
                       // "a")
      {"\u03C9", 0},   // ω: low 8 bits 0xC9
      {"\u00FFa", 0},  // ÿ is code 255
  };
  for (const auto& [term, bucket] : cases) EXPECT_EQ(FirstLetterBucket(term), bucket) << term;
}

}  // namespace
}  // namespace sylvora
