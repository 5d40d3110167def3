#pragma once
// The unit of the elapsed-time column, changed after the load: the intervals of the time line
// count the unit of that column, so a build in another unit counts again in the new one from
// each document's date-time, in place (no new column), and renames the column after its unit.
//
// Cost: one pass over the documents. The order of the documents stays valid, since counting
// unit boundaries keeps the order of the date-times.

#include <string>

#include "common/progress.h"
#include "session/session.h"

namespace sylvora {

// True when the column now counts `unitCode`; false with `error` when it cannot (a Radian 6
// export brings its own elapsed time, a corpus without derived elapsed time, an unknown unit,
// a document without a date-time, a span too long for the unit, or a cancel).
bool ChangeElapsedTimeUnit(Session& session, const std::string& unitCode, std::string& error,
                           const ProgressCallback& progress = {});

}  // namespace sylvora
