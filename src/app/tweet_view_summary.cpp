#include "app/tweet_view_summary.h"

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
