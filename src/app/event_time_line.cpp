#include "app/event_time_line.h"

#include <string_view>

#include "common/date_time.h"
#include "common/file_io.h"
#include "common/text_decoding.h"

namespace sylvora::app {
namespace {

std::vector<std::string_view> SplitTabs(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  while (true) {
    const std::size_t tab = line.find('\t', start);
    fields.push_back(line.substr(start, tab == std::string_view::npos ? line.npos : tab - start));
    if (tab == std::string_view::npos) break;
    start = tab + 1;
  }
  return fields;
}

bool Blank(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos;
}

}  // namespace

EventTimeLine ParseEventTimeLine(std::string text) {
  DecodeText(text);
  EventTimeLine result;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (Blank(line)) continue;
    const std::vector<std::string_view> fields = SplitTabs(line);
    if (fields.size() < 2 || !DateTime::Parse(fields[0])) {
      ++result.skipped;
      continue;
    }
    result.events.push_back({std::string(fields[0]), std::string(fields[1])});
    std::string entry;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (i > 0) entry += '-';
      entry += fields[i];
    }
    result.listEntries.push_back(std::move(entry));
  }
  if (result.events.empty()) {
    result.error = result.skipped == 0
                       ? "The event file holds no events"
                       : "The event file holds no event with a date-time and a tab-separated "
                         "description";
  }
  return result;
}

EventTimeLine ReadEventTimeLine(const std::string& path) {
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(path, bytes, error)) {
    EventTimeLine result;
    result.error = error.empty() ? "Cannot read the event file " + path : error;
    return result;
  }
  return ParseEventTimeLine(std::move(bytes));
}

}  // namespace sylvora::app
