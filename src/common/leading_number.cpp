#include "common/leading_number.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace sylvora {

double LeadingNumber(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && text[i] == ' ') ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  const std::size_t start = i;
  bool seenPoint = false;
  bool seenDigit = false;
  while (i < text.size()) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      seenDigit = true;
    } else if (c == '.' && !seenPoint) {
      seenPoint = true;
    } else {
      break;
    }
    ++i;
  }
  if (!seenDigit) return 0.0;
  double value = 0.0;
  std::string_view digits = text.substr(start, i - start);
  if (digits.back() == '.') digits.remove_suffix(1);  // "5." reads as 5
  std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
  return negative ? -value : value;
}

std::int64_t RoundHalfEven(double value) {
  if (std::isnan(value)) return 0;
  // The default floating-point environment rounds to nearest, ties to even.
  const double rounded = std::nearbyint(value);
  constexpr double kMax = 9.2233720368547748e18;  // 2^63, the first value past the range
  if (rounded >= kMax) return std::numeric_limits<std::int64_t>::max();
  if (rounded < -kMax) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(rounded);
}

std::int64_t LeadingWholeNumber(std::string_view text) {
  return RoundHalfEven(LeadingNumber(text));
}

}  // namespace sylvora
