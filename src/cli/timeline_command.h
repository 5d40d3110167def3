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

#include "session/session.h"

namespace sylvora::cli {

// Returns the process exit code: 0 written, 1 the corpus could not be loaded, indexed or
// modelled (the message says why), 2 bad usage.
int RunTimelineCommand(const std::vector<std::string>& arguments, std::ostream& out,
                       std::ostream& err);

// One burst word of an interval.
struct BurstTerm {
  std::string term;
  float score = 0.0f;
};

// The figures of one interval, as the timeline command writes them.
struct TimelineRow {
  std::int32_t interval = 0;
  std::string start;
  std::int32_t documents = 0;
  std::int32_t documentsWithLinks = 0;
  float novelty = 0.0f;
  float homogeneity = 0.0f;
  float linkRatio = 0.0f;
  float positiveMean = 0.0f;
  std::int32_t positiveMode = 0;
  std::int32_t positiveMedian = 0;
  float negativeMean = 0.0f;
  std::int32_t negativeMode = 0;
  std::int32_t negativeMedian = 0;
  std::vector<BurstTerm> bursts;  // at most three, highest first
  std::string events;             // "" or "|A|B"
};

// The rows of every interval of the session's built words model, in order. Homogeneity is
// computed for interval 1 first, as the chart draws it. `burstMeasure` is a TextStream burst
// measure; the burst words are the terms present in the interval (TIFM > 0) ordered by falling
// score (an undefined score last, equal scores in term order).
std::vector<TimelineRow> TimelineRows(Session& session, std::uint8_t noveltyWindow,
                                      std::int32_t burstMeasure);

// A score as the command writes it: the shortest text that reads back as the same float, or
// "inf", "-inf", "nan".
std::string ScoreText(float value);

}  // namespace sylvora::cli
