#pragma once
// The captions of the message list (`TweetViewSummary`): what is listed, how many, and the
// start and end of the intervals it comes from.

#include <cstdint>

#include <QString>

#include "session/session.h"

namespace sylvora::app {

// "SHOWING THE <k> TWEETS FROM: <start> TO: <end>"
QString IntervalSummary(std::int64_t count, const QString& start, const QString& end);

// The caption of a term's occurrences, by the index the term comes from:
//   words    "SHOWING THE <k> OCCURRENCES OF <term> FROM: <start> TO: <end>"
//   links    "SHOWING THE <k> OCCURRENCES OF [<first 80 characters>] FROM: ..."
//   hashtags "SHOWING THE <k> OCCURRENCES OF #<term> FROM: ..."
//   mentions "SHOWING THE <k> MENTIONS OF @<term> FROM: ..."
//   users    "SHOWING THE <k> TWEETS BY @<term> FROM: ..."
QString TermSummary(IndexKind kind, std::int64_t count, const QString& term, const QString& start,
                    const QString& end);

}  // namespace sylvora::app
