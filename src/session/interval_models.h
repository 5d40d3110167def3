#pragma once
// The model building of the "(Re)Build Views" workflow: from an indexed corpus to the five
// interval models (words, links, hashtags, mentions, users) that the time line explorer, the
// term time line and the interval and tweet maps read. No widget is touched here; the
// application draws from the session's models once this returns.
//
// Steps, in order:
//  1. The interval length L is the leading number of the "IntervalLen" text, rounded half to
//     even for the models; E is the elapsed-time value of the last document.
//  2. E / L < 2 stops with the "Reset Interval Length" message. So does a length that is not a
//     positive number (0, negative, no number at all, or below 1 once rounded), a length
//     that would make more intervals than TextStream::kMaxIntervalCount, and one whose
//     intervals would pass the memory budget (the message names the interval count and a
//     length that fits).
//  3. E / L < 10 asks whether to proceed (OK / Cancel).
//  4. The words model is built over ElapsedTimeField; when IntervalCount exceeds the term
//     time line's visible columns the "too many intervals" notice is shown; the events are
//     placed in the intervals IntervalFromDateTime gives them.
//  5. A largest interval of more than 2000 documents asks whether to go on (OK / Cancel) when
//     the estimated build time of its tweet map passes ModelOptions::largeIntervalQuestionSeconds;
//     the question says the estimate.
//  6. The links, hashtags, mentions and users models are built with the same length.
//  7. TrunK: the smallest number of distinct terms among the words model's intervals that hold
//     at least 26, else 9999; the words model's interval similarity model is built with it,
//     unless the pairs of intervals that share terms would pass the memory budget: then the
//     build stops with a message naming the interval count and a length that fits.
//  8. The words model's sentiment model is built from the corpus's sentiment fields.
//  9. The session records the length and unit and that the models are built.
//
// State on failure: a stop at steps 1 to 3 leaves the session's models as they were. A stop
// later (a Cancel answer, a cancelled progress, a model that cannot be built) leaves all five
// models empty and ModelsBuilt() false.
//
// Messages and questions go through the notifier; long steps report through the progress
// callback (once per closed interval and once per NM column) and can be cancelled. Cost: one
// pass over each index's document columns, plus one sparse product for NM.

#include <cstdint>
#include <string>
#include <vector>

#include "common/notifier.h"
#include "common/progress.h"
#include "common/stopwatch.h"
#include "session/memory_budget.h"
#include "session/session.h"

namespace sylvora {

// One external event of the event time line: a date-time text and its description.
struct TimelineEvent {
  std::string dateTime;
  std::string description;
};

struct ModelOptions {
  // The "IntervalLen" text; its leading number is the interval length.
  std::string intervalLength = "24";
  // The interval unit code ("s", "n", "h", "d", "ww"); "" for the unit the elapsed-time column
  // was derived in (CorpusInfo::elapsedTimeUnit).
  std::string unitCode;
  // Events to place in the words model's intervals, in file order.
  std::vector<TimelineEvent> events;
  // The term time line's MaxVisibleColumns; 0 skips the "too many intervals" notice.
  std::int32_t maxVisibleColumns = 0;
  // The title of that notice.
  std::string applicationTitle = "Sylvora";
  // A build whose estimated memory (the intervals of the five models and the pairs of the
  // interval similarity model) passes this is refused before it starts.
  std::int64_t memoryBudgetBytes = kDefaultMemoryBudgetBytes;
  // A largest interval of more than kLargeIntervalDocuments asks whether to go on only when its
  // tweet map would take longer than this to build.
  double largeIntervalQuestionSeconds = 10.0;
};

struct ModelReport {
  bool built = false;
  // True when a question was answered Cancel or the progress callback cancelled.
  bool cancelled = false;
  // One line a user can act on, when not built.
  std::string error;
  std::int32_t intervalLength = 0;
  std::string unitCode;
  std::int32_t intervalCount = 0;
  std::int32_t maxIntervalDocCount = 0;
  // The truncation the interval similarity model used.
  std::int32_t trunK = 0;
  // Events that fell outside the time line or had no readable date-time.
  std::vector<std::string> warnings;
  // "words", "links", ..., "similarity", "sentiment", each with its seconds.
  std::vector<StageTiming> stages;
};

// The message texts and titles of the build checks.
inline constexpr const char* kIntervalTooLongMessage =
    "Interval length too long for this dataset. Length must be short enough to build a model "
    "with at least two intervals";
inline constexpr const char* kIntervalLengthTitle = "Reset Interval Length";
inline constexpr const char* kIntervalLengthInvalidMessage =
    "Interval length must be a positive whole number of time units";
inline constexpr const char* kFewIntervalsQuestion =
    "Model will have fewer than 10 intervals. Proceed anyway?";
inline constexpr const char* kFewIntervalsTitle = "Interval length warning";
inline constexpr const char* kLargeIntervalQuestion =
    "Largest interval contains >2000 tweets. This could cause long delays when performing "
    "certain calculations. Suggest reducing interval length. Click OK to continue anyway or "
    "Cancel to make changes and try again.";
inline constexpr const char* kLargeIntervalTitle = "Warning";
inline constexpr const char* kManyIntervalsNotice =
    "Currently there are too many intervals to display precisely within the current timeline "
    "view. For instance, you may that you can only select every second or third interval. To "
    "correct this, try increasing the interval size.";
inline constexpr std::int32_t kLargeIntervalDocuments = 2000;
// Intervals with fewer distinct terms than this do not bound the truncation of NM.
inline constexpr std::int32_t kTrunKMinimumTerms = 26;
inline constexpr std::int32_t kTrunKNone = 9999;

// The large-interval question with the estimate: kLargeIntervalQuestion, then the tweet count
// and the estimated build time of the largest interval's tweet map.
std::string LargeIntervalQuestion(std::int32_t tweets, double seconds);

// The truncation for the interval similarity model of a words model: the smallest number of
// distinct terms (non-zero cells of a TIFM column) of an interval holding at least 26, else
// 9999.
std::int32_t ChooseTrunK(const TextStream& wordModel);

ModelReport BuildModels(Session& session, const ModelOptions& options, Notifier& notifier,
                        const ProgressCallback& progress = {});

}  // namespace sylvora
