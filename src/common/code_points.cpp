#include "common/code_points.h"

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
  std::size_t count = 0;
  for (const char ch : text) {
    if ((static_cast<unsigned char>(ch) & 0xC0) != 0x80) ++count;
  }
  return count;
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
