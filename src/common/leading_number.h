#pragma once
// Numbers read from corpus cells. A cell's value is its longest leading numeric prefix:
// optional spaces, an optional sign, digits with at most one ".", as Val() read them. "." is
// always the decimal point, whatever the locale. A cell with no such prefix is worth 0.

#include <cstdint>
#include <string_view>

namespace sylvora {

// The value of the leading number of `text`; 0 when there is none.
double LeadingNumber(std::string_view text);

// Rounds half to even (2.5 -> 2, 3.5 -> 4, -2.5 -> -2), saturating at the int64 range.
std::int64_t RoundHalfEven(double value);

// RoundHalfEven(LeadingNumber(text)): the whole number a cell holds.
std::int64_t LeadingWholeNumber(std::string_view text);

}  // namespace sylvora
