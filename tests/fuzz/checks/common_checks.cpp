// Checks of the readers in common/: text decoding, leading numbers, date-times.

#include <cmath>
#include <cstdio>
#include <string>

#include "checks/target_list.h"
#include "common/date_time.h"
#include "common/leading_number.h"
#include "common/text_decoding.h"

namespace sylvora::fuzz {
namespace {

std::string CheckDecoding(std::string_view input) {
  std::string bytes(input);
  const SourceEncoding encoding = DecodeText(bytes);
  if (!IsValidUtf8(bytes)) return "decoded text is not valid UTF-8";
  if (encoding == SourceEncoding::kUtf8) {
    std::string_view expected = input;
    if (expected.starts_with("\xEF\xBB\xBF")) expected.remove_prefix(3);
    if (bytes != expected) return "valid UTF-8 changed in decoding";
    if (!IsValidUtf8(input)) return "invalid UTF-8 taken as UTF-8";
  }
  if (encoding == SourceEncoding::kMixed) {
    std::string_view body = input;
    if (body.starts_with("\xEF\xBB\xBF")) body.remove_prefix(3);
    if (IsValidUtf8(body)) return "valid UTF-8 repaired";
    // Every byte is kept or becomes one character: the reading is never shorter.
    if (bytes.size() < body.size()) return "repaired reading lost bytes";
  }
  std::string again = bytes;
  if (DecodeText(again) != SourceEncoding::kUtf8 || again != bytes) {
    // A decoded text starting with a BOM-like sequence legitimately loses it once more.
    if (!(bytes.starts_with("\xEF\xBB\xBF") && again == bytes.substr(3))) {
      return "decoding is not idempotent";
    }
  }
  return {};
}

std::string CheckLeadingNumber(std::string_view input) {
  const double value = LeadingNumber(input);
  if (std::isnan(value)) return "leading number is NaN";
  if (!std::isfinite(value)) return {};  // hundreds of digits overflow, as doubles do
  char text[64];
  std::snprintf(text, sizeof text, "%.17g", value);
  const std::string written(text);
  if (written.find_first_of("eE") == std::string::npos && LeadingNumber(written) != value) {
    return "number " + written + " does not read back as itself";
  }
  if (std::fabs(value) < 9.0e15) {
    const auto whole = RoundHalfEven(value);
    const double distance = std::fabs(static_cast<double>(whole) - value);
    if (distance > 0.5) return "rounding moved " + written + " by more than a half";
    if (distance == 0.5 && whole % 2 != 0) return "a half of " + written + " rounded to odd";
    if (LeadingWholeNumber(input) != whole) return "whole number differs from rounding";
  }
  return {};
}

// Input: a date text, optionally "|" and a second date text.
std::string CheckDateTime(std::string_view input) {
  const std::size_t bar = input.find('|');
  const auto first = DateTime::Parse(input.substr(0, bar));
  if (first) {
    const std::string formatted = first->Format();
    const auto again = DateTime::Parse(formatted);
    if (!again || *again != *first) return "date " + formatted + " does not read back";
  }
  if (bar == std::string_view::npos || !first) return {};
  const auto second = DateTime::Parse(input.substr(bar + 1));
  if (!second) return {};
  for (TimeUnit unit :
       {TimeUnit::kSecond, TimeUnit::kMinute, TimeUnit::kHour, TimeUnit::kDay, TimeUnit::kWeek}) {
    const auto forward = DateDiff(unit, *first, *second);
    if (forward != -DateDiff(unit, *second, *first)) return "date difference not antisymmetric";
    if (DateDiff(unit, *first, *first) != 0) return "date difference of a date with itself";
    // Moving by the difference lands in the unit that holds the second date.
    const DateTime moved = DateAdd(unit, forward, *first);
    if (DateDiff(unit, moved, *second) != 0) return "adding the difference misses the unit";
  }
  return {};
}

}  // namespace

std::vector<FuzzTarget> CommonTargets() {
  return {{"text_decoding", CheckDecoding},
          {"leading_number", CheckLeadingNumber},
          {"date_time", CheckDateTime}};
}

}  // namespace sylvora::fuzz
