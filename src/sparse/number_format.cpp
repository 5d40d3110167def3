#include "sparse/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace sylvora {

namespace {

// A non-negative decimal number: 0.d1d2d3... x 10^pointPos, digits without leading zeros
// ("" for zero).
struct Decimal {
  std::string digits;
  int pointPos = 0;
};

// The shortest decimal form that reads back as `value` (its magnitude).
Decimal ToDecimal(float value) {
  Decimal d;
  value = std::fabs(value);
  if (value == 0.0f) return d;
  std::array<char, 64> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                    std::chars_format::scientific);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data()));
  const std::size_t e = text.find('e');
  for (std::size_t i = 0; i < e; ++i) {
    if (text[i] != '.') d.digits.push_back(text[i]);
  }
  d.pointPos = std::atoi(std::string(text.substr(e + 1)).c_str()) + 1;
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  return d;
}

// Rounds half away from zero so that at most `keep` digits remain (keep counts from the first
// digit of d.digits and may be negative or beyond the digits).
void RoundDigits(Decimal& d, long keep) {
  if (keep >= static_cast<long>(d.digits.size())) return;
  if (keep < 0) {
    d.digits.clear();
    return;
  }
  const bool up = d.digits[static_cast<std::size_t>(keep)] >= '5';
  d.digits.resize(static_cast<std::size_t>(keep));
  if (up) {
    long i = keep - 1;
    while (i >= 0 && d.digits[static_cast<std::size_t>(i)] == '9') {
      d.digits[static_cast<std::size_t>(i)] = '0';
      --i;
    }
    if (i >= 0) {
      ++d.digits[static_cast<std::size_t>(i)];
    } else {
      d.digits.insert(d.digits.begin(), '1');
      ++d.pointPos;
    }
  }
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  if (d.digits.empty()) d.pointPos = 0;
}

enum class TokenKind { kZero, kHash, kPoint, kComma, kPercent, kExponent, kLiteral };

struct Token {
  TokenKind kind;
  std::string text;  // literal text, or "E+" / "e-" ... for an exponent
};

std::vector<Token> Tokenise(std::string_view section) {
  std::vector<Token> tokens;
  for (std::size_t i = 0; i < section.size(); ++i) {
    const char c = section[i];
    switch (c) {
      case '0':
        tokens.push_back({TokenKind::kZero, {}});
        break;
      case '#':
        tokens.push_back({TokenKind::kHash, {}});
        break;
      case '.':
        tokens.push_back({TokenKind::kPoint, {}});
        break;
      case ',':
        tokens.push_back({TokenKind::kComma, {}});
        break;
      case '%':
        tokens.push_back({TokenKind::kPercent, "%"});
        break;
      case '\\':
        if (i + 1 < section.size())
          tokens.push_back({TokenKind::kLiteral, std::string(1, section[++i])});
        break;
      case '"': {
        const std::size_t close = section.find('"', i + 1);
        const std::size_t end = close == std::string_view::npos ? section.size() : close;
        tokens.push_back({TokenKind::kLiteral, std::string(section.substr(i + 1, end - i - 1))});
        i = end;
        break;
      }
      case 'E':
      case 'e':
        if (i + 1 < section.size() && (section[i + 1] == '+' || section[i + 1] == '-')) {
          tokens.push_back({TokenKind::kExponent, std::string(section.substr(i, 2))});
          ++i;
          break;
        }
        [[fallthrough]];
      default:
        tokens.push_back({TokenKind::kLiteral, std::string(1, c)});
    }
  }
  return tokens;
}

bool IsDigitToken(const Token& t) {
  return t.kind == TokenKind::kZero || t.kind == TokenKind::kHash;
}

// Writes `value` (already without sign) with the tokens of one section.
std::string FormatSection(float value, const std::vector<Token>& tokens) {
  // Split into integer part, fraction part and exponent part.
  std::size_t pointAt = tokens.size();
  std::size_t expAt = tokens.size();
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::kExponent && expAt == tokens.size()) expAt = i;
    if (tokens[i].kind == TokenKind::kPoint && pointAt == tokens.size() && i < expAt) pointAt = i;
  }
  const std::size_t intEnd = std::min(pointAt, expAt);

  std::vector<std::size_t> intSlots;
  std::vector<std::size_t> fracSlots;
  std::vector<std::size_t> expSlots;
  int minIntDigits = 0;
  int minDecimals = 0;
  int minExpDigits = 0;
  bool grouping = false;
  int scaleDown = 0;
  int percents = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const Token& t = tokens[i];
    if (t.kind == TokenKind::kPercent) ++percents;
    if (!IsDigitToken(t)) continue;
    if (i < intEnd) {
      intSlots.push_back(i);
    } else if (i < expAt) {
      fracSlots.push_back(i);
      if (t.kind == TokenKind::kZero) minDecimals = static_cast<int>(fracSlots.size());
    } else {
      expSlots.push_back(i);
      if (t.kind == TokenKind::kZero) ++minExpDigits;
    }
  }
  for (std::size_t k = 0; k < intSlots.size(); ++k) {
    if (tokens[intSlots[k]].kind == TokenKind::kZero) {
      minIntDigits = static_cast<int>(intSlots.size() - k);
      break;
    }
  }
  // Commas between integer placeholders group; commas after the last one scale down.
  for (std::size_t i = 0; i < intEnd; ++i) {
    if (tokens[i].kind != TokenKind::kComma) continue;
    const bool digitAfter = !intSlots.empty() && i < intSlots.back();
    const bool digitBefore = !intSlots.empty() && i > intSlots.front();
    if (digitAfter && digitBefore) grouping = true;
    if (!digitAfter && digitBefore) ++scaleDown;
  }

  Decimal d = ToDecimal(value);
  if (!d.digits.empty()) d.pointPos += 2 * percents - 3 * scaleDown;
  const int decimals = static_cast<int>(fracSlots.size());

  int exponent = 0;
  const bool scientific = expAt < tokens.size();
  if (scientific) {
    const int intDigits = std::max<int>(1, static_cast<int>(intSlots.size()));
    if (!d.digits.empty()) {
      RoundDigits(d, intDigits + decimals);
      exponent = d.pointPos - intDigits;
      d.pointPos = intDigits;
    }
  } else {
    RoundDigits(d, static_cast<long>(d.pointPos) + decimals);
  }

  // Integer and fraction digit strings.
  std::string intDigits;
  std::string fracDigits;
  if (!d.digits.empty()) {
    for (int p = 0; p < d.pointPos; ++p) {
      intDigits.push_back(
          p < static_cast<int>(d.digits.size()) ? d.digits[static_cast<std::size_t>(p)] : '0');
    }
    for (int p = d.pointPos; p < d.pointPos + decimals; ++p) {
      const bool has = p >= 0 && p < static_cast<int>(d.digits.size());
      fracDigits.push_back(has ? d.digits[static_cast<std::size_t>(p)] : '0');
    }
  } else {
    fracDigits.assign(static_cast<std::size_t>(decimals), '0');
  }
  if (static_cast<int>(intDigits.size()) < minIntDigits) {
    intDigits.insert(0, static_cast<std::size_t>(minIntDigits) - intDigits.size(), '0');
  }
  while (static_cast<int>(fracDigits.size()) > minDecimals && fracDigits.back() == '0') {
    fracDigits.pop_back();
  }

  // Digits per integer placeholder: one each from the right, the rest to the leftmost.
  std::vector<std::string> intPieces(intSlots.size());
  {
    std::size_t remaining = intDigits.size();
    for (std::size_t k = intSlots.size(); k-- > 0;) {
      const std::size_t take = k == 0 ? remaining : std::min<std::size_t>(1, remaining);
      intPieces[k] = intDigits.substr(remaining - take, take);
      remaining -= take;
    }
  }
  std::string expText;
  if (scientific) {
    expText = std::to_string(std::abs(exponent));
    if (static_cast<int>(expText.size()) < minExpDigits) {
      expText.insert(0, static_cast<std::size_t>(minExpDigits) - expText.size(), '0');
    }
  }

  std::string out;
  std::size_t intSlot = 0;
  std::size_t fracSlot = 0;
  std::size_t digitsFromRight = intDigits.size();  // digits of intDigits not yet written
  bool expWritten = false;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const Token& t = tokens[i];
    switch (t.kind) {
      case TokenKind::kZero:
      case TokenKind::kHash:
        if (i < intEnd) {
          for (const char c : intPieces[intSlot]) {
            out.push_back(c);
            --digitsFromRight;
            if (grouping && digitsFromRight > 0 && digitsFromRight % 3 == 0) out.push_back(',');
          }
          ++intSlot;
        } else if (i < expAt) {
          if (fracSlot < fracDigits.size()) out.push_back(fracDigits[fracSlot]);
          ++fracSlot;
        } else if (!expWritten) {
          out += expText;
          expWritten = true;
        }
        break;
      case TokenKind::kPoint:
        out.push_back('.');
        break;
      case TokenKind::kComma:
        if (i >= intEnd) out.push_back(',');
        break;
      case TokenKind::kExponent:
        out.push_back(t.text[0]);
        if (exponent < 0) {
          out.push_back('-');
        } else if (t.text[1] == '+') {
          out.push_back('+');
        }
        if (expSlots.empty()) out += expText;
        break;
      case TokenKind::kPercent:
      case TokenKind::kLiteral:
        out += t.text;
        break;
    }
  }
  return out;
}

// Splits at ";" outside quotes and escapes.
std::vector<std::string_view> Sections(std::string_view pattern) {
  std::vector<std::string_view> sections;
  std::size_t begin = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (c == '"') quoted = !quoted;
    if (!quoted && c == '\\') {
      ++i;
      continue;
    }
    if (!quoted && c == ';') {
      sections.push_back(pattern.substr(begin, i - begin));
      begin = i + 1;
    }
  }
  sections.push_back(pattern.substr(begin));
  return sections;
}

bool HasNonZeroDigit(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return c >= '1' && c <= '9'; });
}

}  // namespace

std::string GeneralNumber(float value) {
  if (value == 0.0f) return "0";
  std::array<char, 48> buffer{};
  const int length =
      std::snprintf(buffer.data(), buffer.size(), "%.7G", static_cast<double>(value));
  return std::string(buffer.data(), static_cast<std::size_t>(std::max(length, 0)));
}

std::string FormatNumber(float value, std::string_view pattern) {
  if (pattern.empty() || pattern == "General Number" || !std::isfinite(value)) {
    return GeneralNumber(value);
  }
  if (pattern == "Fixed") return FormatNumber(value, "0.00");
  if (pattern == "Standard") return FormatNumber(value, "#,##0.00");
  if (pattern == "Percent") return FormatNumber(value, "0.00%");
  if (pattern == "Scientific") return FormatNumber(value, "0.00E+00");
  if (pattern == "Yes/No") return value != 0.0f ? "Yes" : "No";
  if (pattern == "True/False") return value != 0.0f ? "True" : "False";
  if (pattern == "On/Off") return value != 0.0f ? "On" : "Off";

  const std::vector<std::string_view> sections = Sections(pattern);
  const bool negative = value < 0.0f;
  if (value == 0.0f && sections.size() >= 3 && !sections[2].empty()) {
    return FormatSection(0.0f, Tokenise(sections[2]));
  }
  if (negative && sections.size() >= 2 && !sections[1].empty()) {
    return FormatSection(std::fabs(value), Tokenise(sections[1]));
  }
  std::string text = FormatSection(std::fabs(value), Tokenise(sections[0]));
  if (negative && HasNonZeroDigit(text)) text.insert(text.begin(), '-');
  return text;
}

std::string GroupedWholeNumber(std::int64_t value) {
  std::string digits = std::to_string(value);
  const std::ptrdiff_t firstDigit = value < 0 ? 1 : 0;
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > firstDigit; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), ",");
  }
  return digits;
}

}  // namespace sylvora
