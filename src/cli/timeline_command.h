#pragma once
// "sylvora-cli timeline FILE --length L": loads and indexes a corpus as "sylvora-cli index"
// does (same flags; --unit is both the unit of the elapsed-time column and of the intervals),
// builds the five interval models as "(Re)Build Views" does, and writes one row per interval:
// its number, start date-time, documents, documents with links, novelty, homogeneity (with the
// sample step the main time line uses), link ratio, the sentiment mean, mode and median of
// each side, the three words of highest burst score among those present in the interval, and
// its events. CSV by default, JSON with --json. Infinite and undefined scores are written as
// "inf", "-inf" and "nan" (JSON strings). Stage times go to stderr.

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "session/interval_series.h"
#include "session/session.h"

namespace sylvora::cli {

// Returns the process exit code: 0 written, 1 the corpus could not be loaded, indexed or
// modelled (the message says why), 2 bad usage.
int RunTimelineCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err);

// The figures of one interval, as the timeline command writes them.
using TimelineRow = IntervalSeriesRow;

// The rows of every interval of the session's built words model, in order
// (ComputeIntervalSeries without progress).
std::vector<TimelineRow> TimelineRows(Session& session, std::uint8_t noveltyWindow,
                                      std::int32_t burstMeasure);

}  // namespace sylvora::cli
