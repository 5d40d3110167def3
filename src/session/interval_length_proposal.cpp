#include "session/interval_length_proposal.h"

#include <array>
#include <utility>

#include "common/date_time.h"
#include "sparse/number_format.h"

namespace sylvora {
namespace {

// Weeks per interval, shortest first: weeks, "months" of four weeks, quarters, years...
constexpr std::array<std::int32_t, 11> kWeeks = {1, 2, 4, 13, 26, 52, 104, 260, 520, 1040, 2600};

std::int64_t IntervalCount(DateTime first, DateTime last, TimeUnit unit, std::int32_t length) {
  return DateDiff(unit, first, last) / length + 1;
}

}  // namespace

std::string IntervalLengthProposal::Describe() const {
  if (!proposed) return {};
  std::string what = std::to_string(length) + (length == 1 ? " week" : " weeks");
  if (length % 52 == 0) {
    const std::int32_t years = length / 52;
    what = std::to_string(years) + (years == 1 ? " year" : " years") + " (" + what + ")";
  }
  return "Interval length: " + what + ", about " + GroupedWholeNumber(intervals) +
         " intervals (24 hours would give " + GroupedWholeNumber(defaultIntervals) + ")";
}

IntervalLengthProposal ProposeIntervalLength(const DocumentSet& documents,
                                             std::int64_t maxIntervals) {
  IntervalLengthProposal proposal;
  const DocIndex count = documents.DocumentCount();
  if (count < 1) return proposal;
  const auto first = documents.DocumentDateTime(0);
  const auto last = documents.DocumentDateTime(count - 1);
  if (!first || !last || *last < *first) return proposal;
  proposal.defaultIntervals = IntervalCount(*first, *last, TimeUnit::kHour, 24);
  proposal.intervals = proposal.defaultIntervals;
  if (proposal.defaultIntervals <= maxIntervals) return proposal;
  for (const std::int32_t weeks : kWeeks) {
    proposal.length = weeks;
    proposal.intervals = IntervalCount(*first, *last, TimeUnit::kWeek, weeks);
    if (proposal.intervals <= maxIntervals) break;
  }
  proposal.unitCode = "ww";
  proposal.proposed = true;
  return proposal;
}

}  // namespace sylvora
