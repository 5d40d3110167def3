#pragma once
// The event time line file of "Get Event Time Line": one event per line, its date-time and its
// description separated by a tab (further tab-separated fields are kept in the list entry
// only). A line without a tab, or whose first field is no date-time that DateTime::Parse
// reads, is skipped and counted; blank lines are ignored. The file is decoded like a corpus
// (UTF-8, else Windows-1252); CR LF and LF line ends are both read.

#include <string>
#include <vector>

#include "session/interval_models.h"

namespace sylvora::app {

struct EventTimeLine {
  // The events in file order.
  std::vector<TimelineEvent> events;
  // The entries of the EventList combo: each line's fields joined with "-".
  std::vector<std::string> listEntries;
  // Lines skipped for having no tab or no readable date-time.
  int skipped = 0;
  // Set when the file cannot be read or holds no event at all.
  std::string error;
};

EventTimeLine ReadEventTimeLine(const std::string& path);
// The same from the file's text (for tests and callers holding it).
EventTimeLine ParseEventTimeLine(std::string text);

}  // namespace sylvora::app
