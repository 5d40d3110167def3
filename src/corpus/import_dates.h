#pragma once
// Time stamps of imported posts, read in the layouts today's exports use and rewritten in the
// "Twitter1.1" layout "Www Mmm DD HH:MM:SS +0000 YYYY" (UTC), so that the load workflow's date
// conversion reads an imported corpus exactly as a tab-separated one. Instants are seconds
// since 1970-01-01 00:00:00 UTC; offsets are applied, fractions of a second dropped.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sylvora {

// ISO 8601 "YYYY-MM-DD(T| )HH:MM[:SS[.fff]][Z|+HH:MM|+HHMM|+HH]"; no zone means UTC.
std::optional<std::int64_t> ParseIsoInstant(std::string_view text);

// "Wed Aug 27 13:08:45 +0000 2008", the weekday not checked against the date.
std::optional<std::int64_t> ParseTwitterInstant(std::string_view text);

// Whole seconds (9 to 11 digits) or milliseconds (12 to 14 digits) since the epoch.
std::optional<std::int64_t> ParseEpochInstant(std::string_view text);

// Any of the above, or a layout DateTime::Parse reads (taken as UTC). Spaces and double
// quotes around the text are ignored.
std::optional<std::int64_t> ParseAnyInstant(std::string_view text);

// Appends the instant as "Www Mmm DD HH:MM:SS +0000 YYYY" (30 characters for years 1000..9999).
void AppendTwitterDateTime(std::int64_t seconds, std::string& out);
std::string TwitterDateTime(std::int64_t seconds);

}  // namespace sylvora
