#include "common/code_points.h"

#include <cstdint>
#include <cstring>

namespace sylvora {

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

char32_t DecodeUtf8At(std::string_view text, std::size_t pos, std::size_t& length) {
  const auto c = static_cast<unsigned char>(text[pos]);
  if (c < 0x80) {
    length = 1;
    return c;
  }
  char32_t cp;
  if ((c & 0xE0) == 0xC0) {
    length = 2, cp = c & 0x1F;
  } else if ((c & 0xF0) == 0xE0) {
    length = 3, cp = c & 0x0F;
  } else {
    length = 4, cp = c & 0x07;
  }
  if (pos + length > text.size()) {  // truncated sequence: take the byte as it stands
    length = 1;
    return c;
  }
  for (std::size_t k = 1; k < length; ++k) {
    cp = (cp << 6) | (static_cast<unsigned char>(text[pos + k]) & 0x3F);
  }
  return cp;
}

std::size_t CodePointCount(std::string_view text) {
  // Every byte but a continuation byte (10xxxxxx) starts a code point. Eight bytes at a time:
  // a byte's bit 7 set with its bit 6 (shifted up into bit 7) clear marks a continuation, and
  // the multiplication adds up the eight marks in the top byte.
  constexpr std::uint64_t kHigh = 0x8080808080808080ULL;
  constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
  const char* p = text.data();
  const std::size_t n = text.size();
  std::size_t continuations = 0;
  std::size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    std::uint64_t word;
    std::memcpy(&word, p + i, sizeof word);
    const std::uint64_t marks = (word & ~(word << 1) & kHigh) >> 7;
    continuations += static_cast<std::size_t>((marks * kOnes) >> 56);
  }
  for (; i < n; ++i) {
    if ((static_cast<unsigned char>(p[i]) & 0xC0) == 0x80) ++continuations;
  }
  return n - continuations;
}

std::size_t ByteOffsetOfCharacter(std::string_view text, std::size_t position) {
  if (position <= 1) return 0;
  std::size_t seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      if (++seen == position) return i;
    }
  }
  return text.size();
}

std::string_view MidCharacters(std::string_view text, std::size_t start, std::size_t count) {
  const std::size_t from = ByteOffsetOfCharacter(text, start);
  const std::string_view rest = text.substr(from);
  return rest.substr(0, ByteOffsetOfCharacter(rest, count + 1));
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string out;
  if (from.empty()) return std::string(text);
  out.reserve(text.size());
  std::size_t pos = 0;
  while (true) {
    const std::size_t hit = text.find(from, pos);
    if (hit == std::string_view::npos) break;
    out.append(text, pos, hit - pos);
    out.append(to);
    pos = hit + from.size();
  }
  out.append(text, pos);
  return out;
}

std::string_view TrimSpaces(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

}  // namespace sylvora
