#include "app/tweet_view_summary.h"

#include "common/date_time.h"
#include "temporal/text_stream.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

QString Range(const QString& start, const QString& end) {
  return u" FROM: "_s + start + u" TO: "_s + end;
}

}  // namespace

QString IntervalSummary(std::int64_t count, const QString& start, const QString& end) {
  return u"SHOWING THE "_s + QString::number(count) + u" TWEETS"_s + Range(start, end);
}

QString MapViewSummary(std::int64_t count) {
  return u"SHOWING THE "_s + QString::number(count) + u" TWEETS OF THE TWEET MAP VIEW"_s;
}

QString ListedSpan(const QString& first, const QString& last) {
  if (first.isEmpty()) return {};
  return u" (FIRST "_s + first + u", LAST "_s + last + u')';
}

std::array<QString, 2> IntervalCalendarBounds(const TextStream& model, std::int32_t interval,
                                              const std::string& unitCode) {
  const auto unit = ParseTimeUnit(unitCode);
  const auto bounds = model.IntervalDateTimeBounds(interval, unitCode);
  const auto start = DateTime::Parse(bounds[0]);
  if (!unit || !start)
    return {QString::fromStdString(bounds[0]), QString::fromStdString(bounds[1])};
  // A Sunday midnight is a boundary of every unit, weeks included.
  const DateTime boundary = *DateTime::FromParts(1970, 1, 4);
  const DateTime from = DateAdd(*unit, DateDiff(*unit, boundary, *start), boundary);
  const std::int64_t length = DateDiff(*unit, *start, *DateTime::Parse(bounds[1]));
  return {QString::fromStdString(from.Format()),
          QString::fromStdString(DateAdd(*unit, length, from).Format())};
}

QString RowDateTime(const DocumentSet& documents, DocIndex row) {
  // The full date-time the load kept, so that a year outside 1969..2068 shows as it was.
  if (const auto dateTime = documents.DocumentDateTime(row)) {
    return QString::fromStdString(dateTime->Format());
  }
  return QString::fromUtf8(documents.Cell(row, documents.DateTimeField()));
}

QString TermSummary(IndexKind kind, std::int64_t count, const QString& term, const QString& start,
                    const QString& end) {
  QString what;
  switch (kind) {
    case IndexKind::kWords:
      what = u" OCCURRENCES OF "_s + term;
      break;
    case IndexKind::kLinks:
      what = u" OCCURRENCES OF ["_s + term.left(80) + u']';
      break;
    case IndexKind::kHashtags:
      what = u" OCCURRENCES OF #"_s + term;
      break;
    case IndexKind::kMentions:
      what = u" MENTIONS OF @"_s + term;
      break;
    case IndexKind::kUsers:
      what = u" TWEETS BY @"_s + term;
      break;
  }
  return u"SHOWING THE "_s + QString::number(count) + what + Range(start, end);
}

}  // namespace sylvora::app
