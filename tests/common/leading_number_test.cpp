#include "common/leading_number.h"

#include <gtest/gtest.h>

#include <limits>

namespace sylvora {
namespace {

TEST(LeadingNumber, ReadsTheLongestNumericPrefix) {
  struct Case {
    const char* text;
    double value;
  };
  const Case cases[] = {
      {"42", 42},  {"-3 points", -3}, {"+7", 7},      {"  12.5kg", 12.5},
      {".5", 0.5}, {"5.", 5},         {"1.2.3", 1.2}, {"abc", 0},
      {"", 0},     {"-", 0},          {".", 0},       {"-.25", -0.25},
      {"007", 7},  {"1e5", 1},        {"3,5", 3},     {"12\t4", 12},
  };
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(LeadingNumber(c.text), c.value) << c.text;
}

TEST(LeadingNumber, RoundsHalfToEven) {
  EXPECT_EQ(RoundHalfEven(2.5), 2);
  EXPECT_EQ(RoundHalfEven(3.5), 4);
  EXPECT_EQ(RoundHalfEven(-2.5), -2);
  EXPECT_EQ(RoundHalfEven(-3.5), -4);
  EXPECT_EQ(RoundHalfEven(2.4999), 2);
  EXPECT_EQ(RoundHalfEven(1e30), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(RoundHalfEven(-1e30), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(LeadingWholeNumber("0.5 stars"), 0);
  EXPECT_EQ(LeadingWholeNumber("1.5"), 2);
  EXPECT_EQ(LeadingWholeNumber("none"), 0);
}

}  // namespace
}  // namespace sylvora
