#pragma once
// Date-times as the corpus layer and the temporal model use them: naive calendar date-times
// (no time zone, no daylight saving) to the second, over std::chrono.
//
// A difference counts the unit boundaries crossed between two instants, so from 23:59:59 to
// 00:00:00 the next day is one day. Weeks start on Sunday.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sylvora {

// The interval units, with their codes "s", "n", "h", "d", "ww".
enum class TimeUnit { kSecond, kMinute, kHour, kDay, kWeek };

// The unit of a code; nullopt for any other text (codes are case-sensitive).
std::optional<TimeUnit> ParseTimeUnit(std::string_view code);
std::string_view TimeUnitCode(TimeUnit unit);

class DateTime {
 public:
  using Seconds = std::chrono::sys_seconds;

  constexpr DateTime() = default;
  constexpr explicit DateTime(Seconds instant) : instant_(instant) {}

  // Date and time of day from their parts; nullopt when a part is out of range.
  static std::optional<DateTime> FromParts(int year, int month, int day, int hour = 0,
                                           int minute = 0, int second = 0);

  // Reads the layouts that corpus files carry:
  //   "DD/MM/YY HH:MM:SS" and "DD/MM/YYYY HH:MM[:SS]" (day first; two-digit years 69..99 are
  //   1969..1999 and 00..68 are 2000..2068), also without the time;
  //   "01 Jan 2011 00:00:01" (day, English month abbreviation, year, time);
  //   ISO 8601 "YYYY-MM-DD[ T]HH:MM[:SS]" with an optional fraction and "Z", or the date alone;
  //   the tweet layouts "Wed Aug 27 13:08:45 +0000 2008" (the offset is ignored, the clock
  //   time is kept) and "20110105T10:00:00Z" / "20110105T100000Z".
  // Surrounding spaces and double quotes are ignored. Anything else is nullopt: a text that is
  // no date is an error for the caller to report, never a zero.
  static std::optional<DateTime> Parse(std::string_view text);

  // The general date format "YYYY-MM-DD HH:MM:SS".
  std::string Format() const;

  Seconds Instant() const { return instant_; }
  std::int64_t SecondsSinceEpoch() const { return instant_.time_since_epoch().count(); }

  friend constexpr bool operator==(DateTime a, DateTime b) = default;
  friend constexpr auto operator<=>(DateTime a, DateTime b) = default;

 private:
  Seconds instant_{};
};

// The number of `unit` boundaries crossed from `from` to `to` (negative when `to` is earlier).
std::int64_t DateDiff(TimeUnit unit, DateTime from, DateTime to);

// `dt` moved by `count` units (calendar arithmetic; all units here have a fixed length).
DateTime DateAdd(TimeUnit unit, std::int64_t count, DateTime dt);

}  // namespace sylvora
