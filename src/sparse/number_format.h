#pragma once
// Text forms of single-precision numbers for the dense matrix file and the clipboard table.
// "." is always the decimal point and "," the thousands separator, whatever the locale.
// Neither function throws apart from std::bad_alloc.

#include <cstdint>
#include <string>
#include <string_view>

namespace sylvora {

// The general number form: at most 7 significant digits, no trailing zeros, exponent form
// below 0.0001 and from 10000000 on: "0", "12.5", "0.3333333", "-2", "1E-05", "1.234568E+07".
std::string GeneralNumber(float value);

// `value` written with a number pattern of digit placeholders, as spreadsheets use them:
//   0      a digit, or 0 when there is none       #      a digit, or nothing
//   .      the decimal point (always written)     ,      thousands separator between digit
//                                                        placeholders; before the point or at
//                                                        the end it divides by 1000
//   %      multiplies by 100 and is written       E+ E- e+ e-  exponent form ("0.00E+00")
//   \c     the character c                        "text" the text; any other character is
//                                                        written as it is
// Up to three sections separated by ";": positive and zero; negative (written without a
// sign); zero. Named patterns: "General Number", "Fixed", "Standard", "Percent", "Scientific",
// "Yes/No", "True/False", "On/Off". An empty pattern gives GeneralNumber(value).
// Rounding is half away from zero on the shortest decimal form of the float, so 0.285 with
// "0.00" gives "0.29". Examples: 5 with "000" -> "005"; 0.5 with "#.##" -> ".5"; 1234.5 with
// "#,##0.00" -> "1,234.50"; 0.25 with "0%" -> "25%".
std::string FormatNumber(float value, std::string_view pattern);

// A whole number with "," between groups of three digits, exact over the whole 64-bit range:
// 8401 -> "8,401", -1234567 -> "-1,234,567".
std::string GroupedWholeNumber(std::int64_t value);

}  // namespace sylvora
