#include "common/date_time.h"

#include <gtest/gtest.h>

namespace sylvora {
namespace {

DateTime At(std::string_view text) {
  const auto dt = DateTime::Parse(text);
  EXPECT_TRUE(dt.has_value()) << text;
  return dt.value_or(DateTime{});
}

TEST(DateTime, ParsesEveryCorpusLayout) {
  struct Case {
    const char* text;
    const char* formatted;
  };
  const Case cases[] = {
      {"05/01/11 10:20:30", "2011-01-05 10:20:30"},
      {"27/08/08 13:08:45", "2008-08-27 13:08:45"},
      {"31/12/69 00:00:00", "1969-12-31 00:00:00"},
      {"01/01/68 00:00:00", "2068-01-01 00:00:00"},
      {"05/01/2011 10:20", "2011-01-05 10:20:00"},
      {"5/1/2011 9:05:07", "2011-01-05 09:05:07"},
      {"05/01/2011", "2011-01-05 00:00:00"},
      {"01 Jan 2011 00:00:01", "2011-01-01 00:00:01"},
      {"2011-01-05 10:20:30", "2011-01-05 10:20:30"},
      {"2011-01-05T10:20", "2011-01-05 10:20:00"},
      {"2011-01-05T10:20:30.123Z", "2011-01-05 10:20:30"},
      {"2011-01-05", "2011-01-05 00:00:00"},
      {"Wed Aug 27 13:08:45 +0000 2008", "2008-08-27 13:08:45"},
      {"20110105T10:00:00Z", "2011-01-05 10:00:00"},
      {"20110105T100000Z", "2011-01-05 10:00:00"},
      {"\"29/02/12 23:59:59\"", "2012-02-29 23:59:59"},
  };
  for (const auto& c : cases) EXPECT_EQ(At(c.text).Format(), c.formatted) << c.text;
}

TEST(DateTime, TextThatIsNoDateIsAnError) {
  for (const char* text : {"", "  ", "tomorrow", "32/01/2011 10:00", "29/02/11 10:00:00",
                           "05/13/2011", "2011-01-05 24:00", "2011-01-05 10:60",
                           "01 Foo 2011 00:00:01", "05/01/2011 10:20 extra", "123"}) {
    EXPECT_FALSE(DateTime::Parse(text).has_value()) << text;
  }
}

TEST(DateTime, DifferenceCountsBoundariesCrossed) {
  const DateTime a = At("2011-01-01 23:59:59");
  const DateTime b = At("2011-01-02 00:00:00");
  EXPECT_EQ(DateDiff(TimeUnit::kSecond, a, b), 1);
  EXPECT_EQ(DateDiff(TimeUnit::kMinute, a, b), 1);
  EXPECT_EQ(DateDiff(TimeUnit::kHour, a, b), 1);
  EXPECT_EQ(DateDiff(TimeUnit::kDay, a, b), 1);
  EXPECT_EQ(DateDiff(TimeUnit::kDay, b, a), -1);
  EXPECT_EQ(DateDiff(TimeUnit::kHour, At("2011-01-01 10:00:00"), At("2011-01-01 10:59:59")), 0);
  EXPECT_EQ(DateDiff(TimeUnit::kMinute, At("1960-01-01 00:00:30"), At("1960-01-01 00:01:00")), 1);
}

TEST(DateTime, WeeksStartOnSunday) {
  // 2011-01-01 was a Saturday, 2011-01-02 a Sunday.
  EXPECT_EQ(DateDiff(TimeUnit::kWeek, At("2011-01-01"), At("2011-01-02")), 1);
  EXPECT_EQ(DateDiff(TimeUnit::kWeek, At("2011-01-02"), At("2011-01-08 23:59:59")), 0);
  EXPECT_EQ(DateDiff(TimeUnit::kWeek, At("2011-01-02"), At("2011-01-09")), 1);
  EXPECT_EQ(DateDiff(TimeUnit::kWeek, At("1969-12-27"), At("1969-12-28")), 1);
}

TEST(DateTime, AddIsCalendarArithmetic) {
  const DateTime start = At("2012-02-28 23:30:00");
  EXPECT_EQ(DateAdd(TimeUnit::kHour, 1, start).Format(), "2012-02-29 00:30:00");
  EXPECT_EQ(DateAdd(TimeUnit::kDay, 2, start).Format(), "2012-03-01 23:30:00");
  EXPECT_EQ(DateAdd(TimeUnit::kWeek, -1, start).Format(), "2012-02-21 23:30:00");
  EXPECT_EQ(DateAdd(TimeUnit::kMinute, 45, start).Format(), "2012-02-29 00:15:00");
  EXPECT_EQ(DateAdd(TimeUnit::kSecond, -1, start).Format(), "2012-02-28 23:29:59");
}

TEST(DateTime, UnitCodes) {
  for (const char* code : {"s", "n", "h", "d", "ww"}) {
    const auto unit = ParseTimeUnit(code);
    ASSERT_TRUE(unit.has_value()) << code;
    EXPECT_EQ(TimeUnitCode(*unit), code);
  }
  EXPECT_FALSE(ParseTimeUnit("w").has_value());
  EXPECT_FALSE(ParseTimeUnit("H").has_value());
}

}  // namespace
}  // namespace sylvora
