#pragma once
// The character classes that tokenising, case folding and vocabulary buckets rest on. Text is
// UTF-8; a "character" is a code point.
//
// The code of a character is its Windows-1252 byte when the code page has one, otherwise its
// code point. So "a" is 97, "é" is 233, "€" is 128 and "Ω" (not in the code page) is 937.
//
// All functions are pure, cheap (a table look-up for ASCII) and never fail.

#include <array>
#include <cstdint>
#include <string_view>

namespace sylvora {

// The code of a character (see above).
int CharacterCode(char32_t cp);

// True for the characters that split tokens: codes 1 to 64 (controls, space, punctuation,
// digits), 91 to 96 and 123 to 254 (symbols and every accented letter of the code page). Code
// 0, the letters A-Z and a-z, "ÿ" (255) and every character outside the code page are not.
bool IsTokenSeparator(char32_t cp);

// Separator test for one byte of ASCII (below 0x80), by table.
inline bool IsAsciiSeparator(unsigned char byte) {
  static constexpr std::array<bool, 128> kTable = [] {
    std::array<bool, 128> table{};
    for (int c = 1; c < 128; ++c) {
      table[static_cast<std::size_t>(c)] = c <= 64 || (c >= 91 && c <= 96) || c >= 123;
    }
    return table;
  }();
  return kTable[byte & 0x7F];
}

// The lower-case form of a character: A-Z, the upper-case letters of the code page (À..Þ,
// Š, Œ, Ž, Ÿ), and outside it the upper-case letters of Latin Extended-A, basic Greek,
// Cyrillic and Armenian. The result always has the same UTF-8 length as the argument, so
// text can be folded in place. Other characters are returned as they are.
char32_t LowerCase(char32_t cp);

// The first-letter bucket of a term: the low 8 bits of the code of its first character; codes
// 97 ("a") to 122 ("z") give buckets 1 to 26, every other code (and the empty text) bucket 0.
int FirstLetterBucket(std::string_view term);

inline constexpr int kLetterBucketCount = 27;

}  // namespace sylvora
