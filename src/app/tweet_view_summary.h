#pragma once
// The captions of the message list (`TweetViewSummary`): what is listed, how many, and the
// start and end of the intervals it comes from.

#include <array>
#include <cstdint>
#include <string>

#include <QString>

#include "session/session.h"

namespace sylvora::app {

// "SHOWING THE <k> TWEETS FROM: <start> TO: <end>"
QString IntervalSummary(std::int64_t count, const QString& start, const QString& end);

// "SHOWING THE <k> TWEETS OF THE TWEET MAP VIEW": the tweets whose nodes a zoom left in view.
QString MapViewSummary(std::int64_t count);

// " (FIRST <first>, LAST <last>)": the date-times of the first and last message listed; empty
// when nothing is listed.
QString ListedSpan(const QString& first, const QString& last);

// The start and end of interval `interval` as the intervals are counted: from the start of the
// unit that holds the first document, so a day interval runs from midnight to midnight
// ("YYYY-MM-DD HH:MM:SS" each; both empty when the model has no date-times).
std::array<QString, 2> IntervalCalendarBounds(const TextStream& model, std::int32_t interval,
                                              const std::string& unitCode);

// The date-time of corpus row `row` as "YYYY-MM-DD HH:MM:SS" (the cell itself when it is no
// date-time).
QString RowDateTime(const DocumentSet& documents, DocIndex row);

// The caption of a term's occurrences, by the index the term comes from:
//   words    "SHOWING THE <k> OCCURRENCES OF <term> FROM: <start> TO: <end>"
//   links    "SHOWING THE <k> OCCURRENCES OF [<first 80 characters>] FROM: ..."
//   hashtags "SHOWING THE <k> OCCURRENCES OF #<term> FROM: ..."
//   mentions "SHOWING THE <k> MENTIONS OF @<term> FROM: ..."
//   users    "SHOWING THE <k> TWEETS BY @<term> FROM: ..."
QString TermSummary(IndexKind kind, std::int64_t count, const QString& term, const QString& start,
                    const QString& end);

}  // namespace sylvora::app
