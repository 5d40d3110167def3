#include "corpus/import_dates.h"

#include <array>
#include <chrono>

#include "common/date_time.h"

namespace sylvora {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> kWeekdays = {"Sun", "Mon", "Tue", "Wed",
                                                       "Thu", "Fri", "Sat"};

bool Digits(std::string_view text, std::size_t pos, std::size_t count, int& value) {
  if (pos + count > text.size()) return false;
  value = 0;
  for (std::size_t i = pos; i < pos + count; ++i) {
    const char c = text[i];
    if (c < '0' || c > '9') return false;
    value = value * 10 + (c - '0');
  }
  return true;
}

std::optional<std::int64_t> FromParts(int year, int month, int day, int hour, int minute,
                                      int second) {
  using namespace std::chrono;
  const year_month_day date{std::chrono::year(year),
                            std::chrono::month(static_cast<unsigned>(month)),
                            std::chrono::day(static_cast<unsigned>(day))};
  // Years 1..9998 stay within 0..9999, four digits, after any time-zone offset.
  if (year < 1 || year > 9998) return std::nullopt;
  if (!date.ok() || hour > 23 || minute > 59 || second > 60) return std::nullopt;
  const auto days = sys_days(date).time_since_epoch().count();
  return static_cast<std::int64_t>(days) * 86400 + hour * 3600 + minute * 60 + second;
}

std::string_view Strip(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '"')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '"')) text.remove_suffix(1);
  return text;
}

// "+HH:MM", "+HHMM", "+HH" or "Z" at `pos` to the end; seconds east of UTC.
std::optional<int> ZoneOffset(std::string_view text, std::size_t pos) {
  if (pos == text.size()) return 0;
  const std::string_view zone = text.substr(pos);
  if (zone == "Z" || zone == "z") return 0;
  if (zone[0] != '+' && zone[0] != '-') return std::nullopt;
  int hours = 0, minutes = 0;
  if (!Digits(zone, 1, 2, hours)) return std::nullopt;
  if (zone.size() == 6 && zone[3] == ':') {
    if (!Digits(zone, 4, 2, minutes)) return std::nullopt;
  } else if (zone.size() == 5) {
    if (!Digits(zone, 3, 2, minutes)) return std::nullopt;
  } else if (zone.size() != 3) {
    return std::nullopt;
  }
  if (hours > 23 || minutes > 59) return std::nullopt;
  const int offset = hours * 3600 + minutes * 60;
  return zone[0] == '-' ? -offset : offset;
}

}  // namespace

std::optional<std::int64_t> ParseIsoInstant(std::string_view text) {
  text = Strip(text);
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (text.size() < 16 || !Digits(text, 0, 4, year) || text[4] != '-' ||
      !Digits(text, 5, 2, month) || text[7] != '-' || !Digits(text, 8, 2, day) ||
      (text[10] != 'T' && text[10] != ' ') || !Digits(text, 11, 2, hour) || text[13] != ':' ||
      !Digits(text, 14, 2, minute)) {
    return std::nullopt;
  }
  std::size_t pos = 16;
  if (pos < text.size() && text[pos] == ':') {
    if (!Digits(text, pos + 1, 2, second)) return std::nullopt;
    pos += 3;
    if (pos < text.size() && (text[pos] == '.' || text[pos] == ',')) {
      ++pos;
      const std::size_t start = pos;
      while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos;
      if (pos == start) return std::nullopt;
    }
  }
  const auto offset = ZoneOffset(text, pos);
  if (!offset) return std::nullopt;
  const auto local = FromParts(year, month, day, hour, minute, second);
  if (!local) return std::nullopt;
  return *local - *offset;
}

std::optional<std::int64_t> ParseTwitterInstant(std::string_view text) {
  text = Strip(text);
  // Www Mmm DD HH:MM:SS +ZZZZ YYYY
  // 0   4   8  11 14 17 20    26
  if (text.size() != 30 || text[3] != ' ' || text[7] != ' ' || text[10] != ' ' || text[13] != ':' ||
      text[16] != ':' || text[19] != ' ' || text[25] != ' ') {
    return std::nullopt;
  }
  int month = 0;
  while (month < 12 && kMonths[static_cast<std::size_t>(month)] != text.substr(4, 3)) ++month;
  bool weekday = false;
  for (const auto name : kWeekdays) weekday = weekday || name == text.substr(0, 3);
  int day = 0, hour = 0, minute = 0, second = 0, year = 0;
  if (month == 12 || !weekday || !Digits(text, 8, 2, day) || !Digits(text, 11, 2, hour) ||
      !Digits(text, 14, 2, minute) || !Digits(text, 17, 2, second) || !Digits(text, 26, 4, year)) {
    return std::nullopt;
  }
  const auto offset = ZoneOffset(text.substr(20, 5), 0);
  const auto local = FromParts(year, month + 1, day, hour, minute, second);
  if (!offset || !local) return std::nullopt;
  return *local - *offset;
}

std::optional<std::int64_t> ParseEpochInstant(std::string_view text) {
  text = Strip(text);
  if (text.size() < 9 || text.size() > 14) return std::nullopt;
  std::int64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return text.size() >= 12 ? value / 1000 : value;
}

std::optional<std::int64_t> ParseAnyInstant(std::string_view text) {
  if (auto iso = ParseIsoInstant(text)) return iso;
  if (auto twitter = ParseTwitterInstant(text)) return twitter;
  if (auto epoch = ParseEpochInstant(text)) return epoch;
  if (auto other = DateTime::Parse(text)) return other->SecondsSinceEpoch();
  return std::nullopt;
}

void AppendTwitterDateTime(std::int64_t seconds, std::string& out) {
  using namespace std::chrono;
  std::int64_t days = seconds / 86400;
  std::int64_t rest = seconds % 86400;
  if (rest < 0) {
    rest += 86400;
    --days;
  }
  const sys_days date{std::chrono::days(days)};
  const year_month_day ymd(date);
  const weekday wd(date);
  const auto two = [&out](int value) {
    out.push_back(static_cast<char>('0' + value / 10 % 10));
    out.push_back(static_cast<char>('0' + value % 10));
  };
  out.append(kWeekdays[wd.c_encoding()]);
  out.push_back(' ');
  out.append(kMonths[static_cast<unsigned>(ymd.month()) - 1]);
  out.push_back(' ');
  two(static_cast<int>(static_cast<unsigned>(ymd.day())));
  out.push_back(' ');
  two(static_cast<int>(rest / 3600));
  out.push_back(':');
  two(static_cast<int>(rest / 60 % 60));
  out.push_back(':');
  two(static_cast<int>(rest % 60));
  out.append(" +0000 ");
  // Four digits always, as the tweet layout has them: year 243 is "0243".
  const std::string digits = std::to_string(static_cast<int>(ymd.year()));
  out.append(digits.size() < 4 ? 4 - digits.size() : 0, '0');
  out.append(digits);
}

std::string TwitterDateTime(std::int64_t seconds) {
  std::string text;
  AppendTwitterDateTime(seconds, text);
  return text;
}

}  // namespace sylvora
