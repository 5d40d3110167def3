#pragma once
// An interval length that fits the corpus: 24 hours unless that cuts the corpus's span into
// more than about a thousand intervals, which no view can show; then the shortest of 1, 2 and 4
// weeks, a quarter (13 weeks), half a year, a year, 2, 5, 10, 20 and 50 years that stays within
// that number.
//
// Cost: two date-times read; no pass over the documents.

#include <cstdint>
#include <string>

#include "corpus/document_set.h"

namespace sylvora {

struct IntervalLengthProposal {
  // False when 24 hours fits (or the corpus has no dated first and last document).
  bool proposed = false;
  std::int32_t length = 24;
  std::string unitCode = "h";
  std::int64_t intervals = 0;         // with the proposal
  std::int64_t defaultIntervals = 0;  // with 24 hours
  // "Interval length: 4 weeks, about 290 intervals (24 hours would give 8,036)"; "" when
  // nothing is proposed.
  std::string Describe() const;
};

// `documents` are in time order (the load sorts them).
IntervalLengthProposal ProposeIntervalLength(const DocumentSet& documents,
                                             std::int64_t maxIntervals = 1000);

}  // namespace sylvora
