#include "indexing/character_classes.h"

#include <gtest/gtest.h>

#include <string>

#include "common/code_points.h"

namespace sylvora {
namespace {

// The code-page code of a character is checked through the separator and bucket tables.
struct SeparatorCase {
  char32_t cp;
  bool separator;
  const char* why;
};

TEST(IsTokenSeparator, AsciiByCodeRangesLettersAndDigitsOfEveryScriptBeyond) {
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
      {U'\u00E9', false, "e acute: a letter"},
      {U'\u00DF', false, "sharp s: a letter"},
      {U'\u00FE', false, "thorn: a letter"},
      {U'\u00FF', false, "y diaeresis: a letter"},
      {U'\u00D7', true, "multiplication sign"},
      {U'\u00AB', true, "guillemet"},
      {U'\u03A9', false, "Greek letter"},
      {U'\u4E2D', false, "CJK ideograph"},
      {U'\u0663', false, "Arabic-Indic digit"},
      {U'\u0301', false, "combining acute accent"},
      {U'\U0001F600', true, "emoji: a symbol"},
      {U'\u3002', true, "ideographic full stop"},
      {U'\u2014', true, "em dash, code 151"},
  };
  for (const SeparatorCase& c : cases) {
    EXPECT_EQ(IsTokenSeparator(c.cp), c.separator) << c.why;
    if (c.cp < 0x80) {
      EXPECT_EQ(IsAsciiSeparator(static_cast<unsigned char>(c.cp)), c.separator) << c.why;
    }
  }
}

TEST(LowerCase, AsciiAToZAndUnicodeLowerCaseBeyond) {
  const std::pair<char32_t, char32_t> cases[] = {
      {U'A', U'a'},           {U'Z', U'z'},           {U'a', U'a'},
      {U'1', U'1'},           {U'\u00C9', U'\u00E9'}, {U'\u00D7', U'\u00D7'},
      {U'\u0178', U'\u00FF'}, {U'\u0160', U'\u0161'}, {U'\u0141', U'\u0142'},
      {U'\u0394', U'\u03B4'}, {U'\u0416', U'\u0436'}, {U'\u0401', U'\u0451'},
      {U'\u4E2D', U'\u4E2D'}, {U'\u00DF', U'\u00DF'}, {U'\u1E9E', U'\u00DF'},  // capital sharp s
      {U'\u0130', U'i'},       // I with dot: one byte shorter
      {U'\u10A0', U'\u2D00'},  // Georgian
  };
  for (const auto& [upper, lower] : cases) {
    EXPECT_EQ(LowerCase(upper), lower) << static_cast<unsigned>(upper);
  }
}

TEST(IsLatinScriptWord, LatinLettersDigitsAndMarksOnly) {
  const std::pair<const char*, bool> cases[] = {
      {"storm", true},
      {"caf\u00E9", true},
      {"stra\u00DFe", true},
      {"x2", true},
      {"e\u0301t\u0301", true},
      {"", true},
      {"\u6771\u4EAC", false},
      {"\u043C\u043E\u0441\u043A\u0432\u0430", false},
      {"\u6771\u4EACcats", false},
      {"\u03C9mega", false},
  };
  for (const auto& [word, latin] : cases) EXPECT_EQ(IsLatinScriptWord(word), latin) << word;
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
