#include "common/text_decoding.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "common/code_points.h"

namespace sylvora {
namespace {

// Unicode code points of bytes 0x80..0x9F in Windows-1252; undefined bytes map to themselves.
constexpr std::array<char32_t, 32> kHighControlRange = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool AllAscii8(const unsigned char* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return (word & 0x8080808080808080ULL) == 0;
}

// The byte length of the well-formed UTF-8 sequence at p[i], or 0 when there is none.
std::size_t SequenceLength(const unsigned char* p, std::size_t i, std::size_t n) {
  const unsigned char c = p[i];
  std::size_t len;
  char32_t minimum;
  char32_t cp;
  if ((c & 0xE0) == 0xC0) {
    len = 2, minimum = 0x80, cp = c & 0x1F;
  } else if ((c & 0xF0) == 0xE0) {
    len = 3, minimum = 0x800, cp = c & 0x0F;
  } else if ((c & 0xF8) == 0xF0) {
    len = 4, minimum = 0x10000, cp = c & 0x07;
  } else {
    return 0;
  }
  if (i + len > n) return 0;
  for (std::size_t k = 1; k < len; ++k) {
    if ((p[i + k] & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (p[i + k] & 0x3F);
  }
  if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return len;
}

}  // namespace

bool IsValidUtf8(std::string_view bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t n = bytes.size();
  std::size_t i = 0;
  while (i < n) {
    if (i + 8 <= n && AllAscii8(p + i)) {
      i += 8;
      continue;
    }
    if (p[i] < 0x80) {
      ++i;
      continue;
    }
    const std::size_t len = SequenceLength(p, i, n);
    if (len == 0) return false;
    i += len;
  }
  return true;
}

std::string Windows1252ToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (const char ch : bytes) {
    const auto b = static_cast<unsigned char>(ch);
    if (b < 0x80) {
      out.push_back(ch);
    } else if (b < 0xA0) {
      AppendUtf8(out, kHighControlRange[b - 0x80]);
    } else {
      AppendUtf8(out, static_cast<char32_t>(b));
    }
  }
  return out;
}

std::string Utf16ToUtf8(std::string_view bytes, bool bigEndian) {
  std::string out;
  out.reserve(bytes.size());
  const auto unit = [&](std::size_t i) -> char32_t {
    const auto a = static_cast<unsigned char>(bytes[i]);
    const auto b = static_cast<unsigned char>(bytes[i + 1]);
    return bigEndian ? (a << 8 | b) : (b << 8 | a);
  };
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t cp = unit(i);
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 3 < bytes.size()) {
      const char32_t low = unit(i + 2);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    if (cp >= 0xD800 && cp <= 0xDFFF) cp = 0xFFFD;
    AppendUtf8(out, cp);
  }
  return out;
}

namespace {

// Appends `line` with its well-formed UTF-8 sequences kept and every other byte read as its
// Windows-1252 character.
void AppendRepaired(std::string_view line, std::string& out) {
  const auto* p = reinterpret_cast<const unsigned char*>(line.data());
  const std::size_t n = line.size();
  std::size_t i = 0;
  while (i < n) {
    if (p[i] < 0x80) {
      out.push_back(static_cast<char>(p[i++]));
      continue;
    }
    if (const std::size_t len = SequenceLength(p, i, n); len > 0) {
      out.append(line.substr(i, len));
      i += len;
      continue;
    }
    const unsigned char b = p[i++];
    AppendUtf8(out, b < 0xA0 ? kHighControlRange[b - 0x80] : static_cast<char32_t>(b));
  }
}

}  // namespace

std::size_t RepairUtf8Lines(std::string& bytes) {
  const std::string_view text(bytes);
  std::string out;
  std::size_t repaired = 0;
  std::size_t copiedTo = 0;  // text[0, copiedTo) is already in `out`
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find('\n', start);
    end = end == std::string_view::npos ? text.size() : end + 1;
    const std::string_view line = text.substr(start, end - start);
    if (!IsValidUtf8(line)) {
      if (out.empty()) out.reserve(text.size() + text.size() / 16);
      out.append(text.substr(copiedTo, start - copiedTo));
      AppendRepaired(line, out);
      copiedTo = end;
      ++repaired;
    }
    start = end;
  }
  if (repaired == 0) return 0;
  out.append(text.substr(copiedTo));
  bytes = std::move(out);
  return repaired;
}

SourceEncoding DecodeText(std::string& bytes, std::size_t* repairedLines) {
  if (repairedLines != nullptr) *repairedLines = 0;
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    const bool bigEndian = bytes[0] == '\xFE';
    bytes = Utf16ToUtf8(std::string_view(bytes).substr(2), bigEndian);
    return SourceEncoding::kUtf16;
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
  if (IsValidUtf8(bytes)) return SourceEncoding::kUtf8;
  const std::size_t repaired = RepairUtf8Lines(bytes);
  if (repairedLines != nullptr) *repairedLines = repaired;
  return SourceEncoding::kMixed;
}

int Windows1252Code(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<int>(cp);
  for (std::size_t i = 0; i < kHighControlRange.size(); ++i) {
    if (kHighControlRange[i] == cp) return static_cast<int>(0x80 + i);
  }
  return -1;
}

}  // namespace sylvora
