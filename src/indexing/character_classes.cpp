#include "indexing/character_classes.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include "common/code_points.h"

namespace sylvora {

int CharacterCode(char32_t cp) {
  const int code = Windows1252Code(cp);
  return code >= 0 ? code : static_cast<int>(cp);
}

bool IsTokenSeparator(char32_t cp) {
  if (cp < 0x80) return IsAsciiSeparator(static_cast<unsigned char>(cp));
  const auto c = static_cast<UChar32>(cp);
  return (U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_N_MASK | U_GC_M_MASK)) == 0;
}

bool IsCombiningMark(char32_t cp) {
  return cp >= 0x80 && (U_GET_GC_MASK(static_cast<UChar32>(cp)) & U_GC_M_MASK) != 0;
}

char32_t LowerCase(char32_t cp) {
  if (cp < 0x80) return (cp >= 'A' && cp <= 'Z') ? cp + 32 : cp;
  return static_cast<char32_t>(u_tolower(static_cast<UChar32>(cp)));
}

bool IsLowerCaseLetter(char32_t cp) {
  if (cp < 0x80) return cp >= 'a' && cp <= 'z';
  return u_islower(static_cast<UChar32>(cp)) != 0;
}

bool IsLatinScriptWord(std::string_view word) {
  std::size_t pos = 0;
  while (pos < word.size() && static_cast<unsigned char>(word[pos]) < 0x80) ++pos;
  while (pos < word.size()) {
    std::size_t length = 1;
    const char32_t cp = DecodeUtf8At(word, pos, length);
    pos += length;
    if (cp < 0x80 || !u_isalpha(static_cast<UChar32>(cp))) continue;
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(cp), &error);
    if (U_FAILURE(error)) continue;
    if (script != USCRIPT_LATIN && script != USCRIPT_COMMON && script != USCRIPT_INHERITED) {
      return false;
    }
  }
  return true;
}

int FirstLetterBucket(std::string_view term) {
  if (term.empty()) return 0;
  std::size_t length = 0;
  const int low = CharacterCode(DecodeUtf8At(term, 0, length)) & 0xFF;
  return (low >= 'a' && low <= 'z') ? low - 'a' + 1 : 0;
}

}  // namespace sylvora
