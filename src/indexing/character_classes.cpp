#include "indexing/character_classes.h"

#include <array>

#include "common/code_points.h"

namespace sylvora {
namespace {

bool IsSeparatorCode(int code) {
  return (code >= 1 && code <= 64) || (code >= 91 && code <= 96) || (code >= 123 && code <= 254);
}

// Separator flags for every code point below U+0800 (one or two UTF-8 bytes), which covers
// ASCII, Latin-1 and most alphabets; rarer characters go through Windows1252Code.
constexpr char32_t kTableSize = 0x800;

const std::array<bool, kTableSize>& SeparatorTable() {
  static const std::array<bool, kTableSize> table = [] {
    std::array<bool, kTableSize> flags{};
    for (char32_t cp = 0; cp < kTableSize; ++cp) flags[cp] = IsSeparatorCode(CharacterCode(cp));
    return flags;
  }();
  return table;
}

// Latin Extended-A: which code points are upper-case letters with the next code point as
// their lower-case form.
bool IsLatinExtendedUpper(char32_t cp) {
  if (cp >= 0x0100 && cp <= 0x012F) return cp % 2 == 0;
  if (cp >= 0x0132 && cp <= 0x0137) return cp % 2 == 0;
  if (cp >= 0x0139 && cp <= 0x0148) return cp % 2 == 1;
  if (cp >= 0x014A && cp <= 0x0177) return cp % 2 == 0;
  if (cp >= 0x0179 && cp <= 0x017E) return cp % 2 == 1;
  return false;
}

}  // namespace

int CharacterCode(char32_t cp) {
  const int code = Windows1252Code(cp);
  return code >= 0 ? code : static_cast<int>(cp);
}

bool IsTokenSeparator(char32_t cp) {
  if (cp < 0x80) return IsAsciiSeparator(static_cast<unsigned char>(cp));
  if (cp < kTableSize) return SeparatorTable()[cp];
  return IsSeparatorCode(Windows1252Code(cp));
}

char32_t LowerCase(char32_t cp) {
  if (cp < 0x80) return (cp >= 'A' && cp <= 'Z') ? cp + 32 : cp;
  if (cp >= 0xC0 && cp <= 0xDE && cp != 0xD7) return cp + 0x20;  // À..Þ
  if (cp == 0x0178) return 0x00FF;                               // Ÿ
  if (IsLatinExtendedUpper(cp)) return cp + 1;                   // Ā, Ł, Œ, Š, Ž ...
  if ((cp >= 0x0391 && cp <= 0x03A1) || (cp >= 0x03A3 && cp <= 0x03AB)) return cp + 0x20;
  if (cp >= 0x0410 && cp <= 0x042F) return cp + 0x20;  // А..Я
  if (cp >= 0x0400 && cp <= 0x040F) return cp + 0x50;  // Ѐ..Џ
  if (cp >= 0x0531 && cp <= 0x0556) return cp + 0x30;  // Armenian
  return cp;
}

int FirstLetterBucket(std::string_view term) {
  if (term.empty()) return 0;
  std::size_t length = 0;
  const int low = CharacterCode(DecodeUtf8At(term, 0, length)) & 0xFF;
  return (low >= 'a' && low <= 'z') ? low - 'a' + 1 : 0;
}

}  // namespace sylvora
