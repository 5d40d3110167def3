#include "session/elapsed_time_unit.h"

#include <algorithm>
#include <limits>

#include <vector>

#include "common/date_time.h"

namespace sylvora {
bool ChangeElapsedTimeUnit(Session& session, const std::string& unitCode, std::string& error,
                           const ProgressCallback& progress) {
  CorpusInfo& corpus = session.Corpus();
  if (unitCode == corpus.elapsedTimeUnit) return true;
  const auto unit = ParseTimeUnit(unitCode);
  if (!unit) {
    error = "Unknown time unit \"" + unitCode + "\" (use s, n, h, d or ww)";
    return false;
  }
  if (corpus.format == CorpusFormat::kRadian6 || !corpus.elapsedTimeDerived) {
    error = "The intervals count the unit of the corpus's own elapsed-time column (\"" +
            corpus.elapsedTimeUnit + "\"): it has no date-times to count again in \"" + unitCode +
            "\"";
    return false;
  }
  DocumentSet& documents = session.Documents();
  const DocIndex count = documents.DocumentCount();
  std::vector<std::int64_t> values(static_cast<std::size_t>(count));
  std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
  ProgressReporter reporter(progress, "Counting elapsed time", count);
  // Any fixed instant serves as the origin: the column starts at 0 for the earliest document.
  const DateTime origin = *DateTime::FromParts(2011, 1, 1, 0, 0, 1);
  for (DocIndex d = 0; d < count; ++d) {
    const auto date = documents.DocumentDateTime(d);
    if (!date) {
      error = "Document " + std::to_string(d + 1) + " has no date-time to count elapsed time from";
      return false;
    }
    values[static_cast<std::size_t>(d)] = DateDiff(*unit, origin, *date);
    smallest = std::min(smallest, values[static_cast<std::size_t>(d)]);
    if (!reporter.Step()) {
      error = "Elapsed time cancelled";
      return false;
    }
  }
  for (std::int64_t& value : values) {
    value -= smallest;
    if (value > std::numeric_limits<std::int32_t>::max()) {
      error = "The corpus spans too many units of \"" + unitCode + "\" to count them";
      return false;
    }
  }
  const FieldIndex field = documents.ElapsedTimeField();
  for (DocIndex d = 0; d < count; ++d) {
    documents.SetText(d, field, std::to_string(values[static_cast<std::size_t>(d)]));
  }
  documents.SetFieldName(field, ElapsedFieldName(unitCode));
  corpus.elapsedTimeUnit = unitCode;
  return true;
}

}  // namespace sylvora
