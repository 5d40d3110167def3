#include "sparse/number_format.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace sylvora {
namespace {

struct GeneralCase {
  float value;
  const char* expected;
};

void PrintTo(const GeneralCase& c, std::ostream* out) { *out << c.value << " -> " << c.expected; }

class SparseGeneralNumber : public ::testing::TestWithParam<GeneralCase> {};

TEST_P(SparseGeneralNumber, WritesSevenSignificantDigits) {
  EXPECT_EQ(GeneralNumber(GetParam().value), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SparseGeneralNumber,
    ::testing::Values(GeneralCase{0.0f, "0"}, GeneralCase{-0.0f, "0"}, GeneralCase{1.0f, "1"},
                      GeneralCase{12.5f, "12.5"}, GeneralCase{0.1f, "0.1"},
                      GeneralCase{-2.0f, "-2"}, GeneralCase{1.0f / 3.0f, "0.3333333"},
                      GeneralCase{0.0001f, "0.0001"}, GeneralCase{0.00001f, "1E-05"},
                      GeneralCase{1234567.0f, "1234567"}, GeneralCase{12345678.0f, "1.234568E+07"},
                      GeneralCase{10000000.0f, "1E+07"}, GeneralCase{0.1875f, "0.1875"}));

struct FormatCase {
  float value;
  const char* pattern;
  const char* expected;
};

void PrintTo(const FormatCase& c, std::ostream* out) {
  *out << c.value << " with \"" << c.pattern << "\" -> " << c.expected;
}

class SparseFormatNumber : public ::testing::TestWithParam<FormatCase> {};

TEST_P(SparseFormatNumber, FollowsThePattern) {
  const FormatCase& c = GetParam();
  EXPECT_EQ(FormatNumber(c.value, c.pattern), c.expected) << c.value << " with " << c.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SparseFormatNumber,
    ::testing::Values(
        FormatCase{5, "000", "005"}, FormatCase{1234, "00", "1234"}, FormatCase{0.5f, "#.##", ".5"},
        FormatCase{5, "#.##", "5."}, FormatCase{0, "###", ""}, FormatCase{0.5f, "0.00", "0.50"},
        FormatCase{0.285f, "0.00", "0.29"}, FormatCase{0.125f, "0.00", "0.13"},
        FormatCase{2.5f, "0", "3"}, FormatCase{9.999f, "0.00", "10.00"},
        FormatCase{0.004f, "0.00", "0.00"}, FormatCase{0.06f, "0.0", "0.1"},
        FormatCase{1.0f / 3.0f, "0.00000", "0.33333"}, FormatCase{0.5f, "0.0#", "0.5"},
        FormatCase{0.125f, "0.0#", "0.13"}, FormatCase{-1.5f, "0.0", "-1.5"},
        FormatCase{-0.001f, "0.00", "0.00"}, FormatCase{1234.5f, "#,##0.00", "1,234.50"},
        FormatCase{1234567, "#,##0", "1,234,567"}, FormatCase{999, "#,##0", "999"},
        FormatCase{1500, "0,", "2"}, FormatCase{0.25f, "0%", "25%"},
        FormatCase{0.123f, "0.0%", "12.3%"}, FormatCase{12345, "0.00E+00", "1.23E+04"},
        FormatCase{0.00012f, "0.0E-00", "1.2E-04"}, FormatCase{12345, "0.0E-0", "1.2E4"},
        FormatCase{0, "0.00E+00", "0.00E+00"}, FormatCase{-3, "0;(0)", "(3)"},
        FormatCase{3, "0;(0)", "3"}, FormatCase{0, "0;(0);\"zero\"", "zero"},
        FormatCase{7, "\"n=\"0", "n=7"}, FormatCase{7, "0\\%", "7%"},
        FormatCase{12.34f, "Fixed", "12.34"}, FormatCase{1234.5f, "Standard", "1,234.50"},
        FormatCase{0.5f, "Percent", "50.00%"}, FormatCase{12345, "Scientific", "1.23E+04"},
        FormatCase{0.5f, "General Number", "0.5"}, FormatCase{0.5f, "", "0.5"},
        FormatCase{2, "Yes/No", "Yes"}, FormatCase{0, "True/False", "False"}));

}  // namespace
TEST(GroupedWholeNumber, PutsACommaBetweenGroupsOfThreeDigits) {
  for (const auto& [value, text] : std::initializer_list<std::pair<std::int64_t, const char*>>{
           {0, "0"}, {999, "999"}, {8401, "8,401"}, {-1234567, "-1,234,567"}, {-100, "-100"}}) {
    EXPECT_EQ(GroupedWholeNumber(value), text);
  }
}

}  // namespace sylvora
