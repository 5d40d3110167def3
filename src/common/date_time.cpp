#include "common/date_time.h"

#include <array>
#include <cstdio>

namespace sylvora {
namespace {

using std::chrono::days;
using std::chrono::seconds;

constexpr std::array<std::string_view, 12> kMonthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// A small cursor over the text being parsed.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  bool AtEnd() const { return pos_ == text_.size(); }
  std::size_t Position() const { return pos_; }
  void Reset(std::size_t pos) { pos_ = pos; }

  // Exactly `width` digits (width > 0), or 1..maxWidth digits when width is 0.
  bool Digits(int& value, int width, int maxWidth = 4) {
    value = 0;
    int count = 0;
    const int limit = width > 0 ? width : maxWidth;
    while (pos_ < text_.size() && count < limit && IsDigit(text_[pos_])) {
      value = value * 10 + (text_[pos_] - '0');
      ++pos_, ++count;
    }
    if (width > 0) return count == width;
    return count > 0;
  }

  bool Char(char c) {
    if (pos_ < text_.size() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }

  bool Spaces() {  // one or more
    const std::size_t start = pos_;
    while (pos_ < text_.size() && text_[pos_] == ' ') ++pos_;
    return pos_ > start;
  }

  bool Month(int& month) {
    if (pos_ + 3 > text_.size()) return false;
    const std::string_view name = text_.substr(pos_, 3);
    for (std::size_t i = 0; i < kMonthNames.size(); ++i) {
      if (kMonthNames[i] == name) {
        month = static_cast<int>(i) + 1;
        pos_ += 3;
        return true;
      }
    }
    return false;
  }

  bool Letters(std::size_t count) {
    if (pos_ + count > text_.size()) return false;
    for (std::size_t i = 0; i < count; ++i) {
      const char c = text_[pos_ + i];
      if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))) return false;
    }
    pos_ += count;
    return true;
  }

  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
};

struct Clock {
  int hour = 0, minute = 0, second = 0;
};

// "HH:MM[:SS]", optionally followed by a fraction of a second.
bool ReadClock(Scanner& s, Clock& clock, bool secondsRequired) {
  if (!s.Digits(clock.hour, 0, 2) || !s.Char(':') || !s.Digits(clock.minute, 2)) return false;
  clock.second = 0;
  if (s.Char(':')) {
    if (!s.Digits(clock.second, 2)) return false;
    if (s.Char('.')) {
      int ignored;
      if (!s.Digits(ignored, 0, 9)) return false;
    }
  } else if (secondsRequired) {
    return false;
  }
  return true;
}

int ExpandTwoDigitYear(int year) { return year >= 69 ? 1900 + year : 2000 + year; }

std::optional<DateTime> Build(int y, int mo, int d, const Clock& c) {
  return DateTime::FromParts(y, mo, d, c.hour, c.minute, c.second);
}

// "DD/MM/YY[YY][ HH:MM[:SS]]"
std::optional<DateTime> ParseDayFirst(Scanner s) {
  int day, month, year;
  if (!s.Digits(day, 0, 2) || !s.Char('/') || !s.Digits(month, 0, 2) || !s.Char('/')) return {};
  const std::size_t yearStart = s.Position();
  if (!s.Digits(year, 0, 4)) return {};
  const std::size_t yearWidth = s.Position() - yearStart;
  if (yearWidth == 2) {
    year = ExpandTwoDigitYear(year);
  } else if (yearWidth != 4) {
    return {};
  }
  Clock clock;
  if (s.Spaces() && !ReadClock(s, clock, false)) return {};
  if (!s.AtEnd()) return {};
  return Build(year, month, day, clock);
}

// "DD Mon YYYY[ HH:MM[:SS]]"
std::optional<DateTime> ParseDayMonthName(Scanner s) {
  int day, month, year;
  if (!s.Digits(day, 0, 2) || !s.Spaces() || !s.Month(month) || !s.Spaces() || !s.Digits(year, 4)) {
    return {};
  }
  Clock clock;
  if (s.Spaces() && !ReadClock(s, clock, false)) return {};
  if (!s.AtEnd()) return {};
  return Build(year, month, day, clock);
}

// "YYYY-MM-DD[( |T)HH:MM[:SS[.fff]]][Z]"
std::optional<DateTime> ParseIso(Scanner s) {
  int year, month, day;
  if (!s.Digits(year, 4) || !s.Char('-') || !s.Digits(month, 2) || !s.Char('-') ||
      !s.Digits(day, 2)) {
    return {};
  }
  Clock clock;
  if (s.Char('T') || s.Spaces()) {
    if (!ReadClock(s, clock, false)) return {};
    s.Char('Z');
  }
  if (!s.AtEnd()) return {};
  return Build(year, month, day, clock);
}

// "Www Mmm DD HH:MM:SS +ZZZZ YYYY"
std::optional<DateTime> ParseTweetV1(Scanner s) {
  int month, day, offset, year;
  Clock clock;
  if (!s.Letters(3) || !s.Spaces() || !s.Month(month) || !s.Spaces() || !s.Digits(day, 0, 2) ||
      !s.Spaces() || !ReadClock(s, clock, true) || !s.Spaces()) {
    return {};
  }
  if (!s.Char('+') && !s.Char('-')) return {};
  if (!s.Digits(offset, 4) || !s.Spaces() || !s.Digits(year, 4) || !s.AtEnd()) return {};
  return Build(year, month, day, clock);
}

// "YYYYMMDDTHH:MM:SSZ" or "YYYYMMDDTHHMMSSZ"
std::optional<DateTime> ParseCompact(Scanner s) {
  int year, month, day;
  Clock clock;
  if (!s.Digits(year, 4) || !s.Digits(month, 2) || !s.Digits(day, 2) || !s.Char('T')) return {};
  const std::size_t clockStart = s.Position();
  if (!ReadClock(s, clock, true)) {
    s.Reset(clockStart);
    if (!s.Digits(clock.hour, 2) || !s.Digits(clock.minute, 2) || !s.Digits(clock.second, 2)) {
      return {};
    }
  }
  s.Char('Z');
  if (!s.AtEnd()) return {};
  return Build(year, month, day, clock);
}

std::string_view StripDecoration(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '"')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '"')) text.remove_suffix(1);
  return text;
}

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
  std::int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

std::int64_t UnitSeconds(TimeUnit unit) {
  switch (unit) {
    case TimeUnit::kSecond:
      return 1;
    case TimeUnit::kMinute:
      return 60;
    case TimeUnit::kHour:
      return 3600;
    case TimeUnit::kDay:
      return 86400;
    case TimeUnit::kWeek:
      return 7 * 86400;
  }
  return 1;
}

// The index of the unit period that holds an instant. Weeks run Sunday to Saturday; the
// epoch (1970-01-01) was a Thursday, so the first Sunday is day 3.
std::int64_t PeriodIndex(TimeUnit unit, std::int64_t secondsSinceEpoch) {
  if (unit == TimeUnit::kWeek) {
    const std::int64_t day = FloorDiv(secondsSinceEpoch, 86400);
    return FloorDiv(day - 3, 7);
  }
  return FloorDiv(secondsSinceEpoch, UnitSeconds(unit));
}

}  // namespace

std::optional<TimeUnit> ParseTimeUnit(std::string_view code) {
  if (code == "s") return TimeUnit::kSecond;
  if (code == "n") return TimeUnit::kMinute;
  if (code == "h") return TimeUnit::kHour;
  if (code == "d") return TimeUnit::kDay;
  if (code == "ww") return TimeUnit::kWeek;
  return std::nullopt;
}

std::string_view TimeUnitCode(TimeUnit unit) {
  switch (unit) {
    case TimeUnit::kSecond:
      return "s";
    case TimeUnit::kMinute:
      return "n";
    case TimeUnit::kHour:
      return "h";
    case TimeUnit::kDay:
      return "d";
    case TimeUnit::kWeek:
      return "ww";
  }
  return "";
}

std::optional<DateTime> DateTime::FromParts(int year, int month, int day, int hour, int minute,
                                            int second) {
  const std::chrono::year_month_day ymd{std::chrono::year{year},
                                        std::chrono::month{static_cast<unsigned>(month)},
                                        std::chrono::day{static_cast<unsigned>(day)}};
  if (month < 1 || month > 12 || day < 1 || !ymd.ok()) return std::nullopt;
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return std::nullopt;
  }
  const auto instant = std::chrono::sys_days{ymd} + std::chrono::hours{hour} +
                       std::chrono::minutes{minute} + seconds{second};
  return DateTime(std::chrono::time_point_cast<seconds>(instant));
}

std::optional<DateTime> DateTime::Parse(std::string_view text) {
  const std::string_view t = StripDecoration(text);
  if (t.empty()) return std::nullopt;
  const Scanner s(t);
  if (auto dt = ParseIso(s)) return dt;
  if (auto dt = ParseDayFirst(s)) return dt;
  if (auto dt = ParseDayMonthName(s)) return dt;
  if (auto dt = ParseCompact(s)) return dt;
  if (auto dt = ParseTweetV1(s)) return dt;
  return std::nullopt;
}

std::string DateTime::Format() const {
  const auto dayPoint = std::chrono::floor<days>(instant_);
  const std::chrono::year_month_day ymd{dayPoint};
  const std::chrono::hh_mm_ss clock{instant_ - dayPoint};
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u %02d:%02d:%02d",
                static_cast<int>(ymd.year()), static_cast<unsigned>(ymd.month()),
                static_cast<unsigned>(ymd.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return buffer;
}

std::int64_t DateDiff(TimeUnit unit, DateTime from, DateTime to) {
  return PeriodIndex(unit, to.SecondsSinceEpoch()) - PeriodIndex(unit, from.SecondsSinceEpoch());
}

DateTime DateAdd(TimeUnit unit, std::int64_t count, DateTime dt) {
  return DateTime(dt.Instant() + seconds{count * UnitSeconds(unit)});
}

}  // namespace sylvora
