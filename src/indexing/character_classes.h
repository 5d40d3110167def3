#pragma once
// The character classes that tokenising, case folding and vocabulary buckets rest on. Text is
// UTF-8; a "character" is a code point. Outside ASCII the classes are Unicode's (ICU).
//
// The code of a character is its Windows-1252 byte when the code page has one, otherwise its
// code point. So "a" is 97, "é" is 233, "€" is 128 and "Ω" (not in the code page) is 937.
//
// All functions are pure, cheap (a table look-up for ASCII, a property look-up otherwise) and
// never fail.

#include <array>
#include <cstdint>
#include <string_view>

namespace sylvora {

// The code of a character (see above).
int CharacterCode(char32_t cp);

// True for the characters that split tokens. ASCII: codes 1 to 64 (controls, space,
// punctuation, digits), 91 to 96 and 123 to 127; only A-Z, a-z and NUL are not. Outside ASCII
// every character splits tokens except the letters and digits of every script (Unicode
// categories L and N) and the combining marks (M), which TokeniseDocument keeps only inside a
// word.
bool IsTokenSeparator(char32_t cp);

// True for a combining mark (Unicode category M).
bool IsCombiningMark(char32_t cp);

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

// The lower-case form of a character: A-Z in ASCII, and Unicode's simple lower-case mapping
// of every other character ("Ä" -> "ä", "Σ" -> "σ"). The UTF-8 length may change.
char32_t LowerCase(char32_t cp);

// True for a lower-case letter: a-z, and outside ASCII Unicode's lower-case letters.
bool IsLowerCaseLetter(char32_t cp);

// True when no letter of `word` belongs to a script other than Latin (digits, marks and
// characters common to all scripts do not count): "café", "straße" and "x2" are Latin,
// "東京" and "москва" are not. ASCII words are answered without a look-up.
bool IsLatinScriptWord(std::string_view word);

// The first-letter bucket of a term: the low 8 bits of the code of its first character; codes
// 97 ("a") to 122 ("z") give buckets 1 to 26, every other code (and the empty text) bucket 0.
int FirstLetterBucket(std::string_view term);

inline constexpr int kLetterBucketCount = 27;

}  // namespace sylvora
