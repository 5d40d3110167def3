#include "session/interval_models.h"

#include <algorithm>
#include <cmath>

#include "common/date_time.h"
#include "common/errors.h"
#include "common/leading_number.h"
#include "session/cluster_maps.h"
#include "session/elapsed_time_unit.h"

namespace sylvora {
namespace {

// The unit of an interval length in words, for messages.
const char* TimeUnitWord(std::string_view code) {
  if (code == "s") return "seconds";
  if (code == "n") return "minutes";
  if (code == "h") return "hours";
  if (code == "d") return "days";
  if (code == "ww") return "weeks";
  return "units";
}

// The order the models are built in after the words model.
constexpr IndexKind kSecondaryKinds[] = {IndexKind::kLinks, IndexKind::kHashtags,
                                         IndexKind::kMentions, IndexKind::kUsers};

class ModelRun {
 public:
  ModelRun(Session& session, const ModelOptions& options, Notifier& notifier,
           const ProgressCallback& progress)
      : session_(session), options_(options), notifier_(notifier), progress_(progress) {}

  ModelReport Run();

 private:
  // Checks of steps 1 to 3; false (with the report filled) when the build must not start.
  bool CheckLength();
  bool BuildModel(IndexKind kind);
  void PlaceEvents(TextStream& words);
  // The refusal text of a build that would pass the memory budget.
  std::string OverBudget(std::int64_t intervals, std::int64_t bytes, std::int64_t length) const;
  // False (models emptied, message shown) when the interval similarity model would pass the
  // memory budget.
  bool SimilarityFits(const TextStream& words);
  // Empties the models after a stop past the checks.
  ModelReport Stop(std::string reason, bool cancelled);
  // A progress callback that prefixes the stage with the model's name.
  ProgressCallback Named(std::string_view name);

  Session& session_;
  const ModelOptions& options_;
  Notifier& notifier_;
  const ProgressCallback& progress_;
  ModelReport report_;
  StageClock clock_;
  std::int32_t length_ = 0;
  // Set when the progress callback asked to stop.
  bool progressCancelled_ = false;
};

ProgressCallback ModelRun::Named(std::string_view name) {
  if (!progress_) return {};
  return [this, name = std::string(name)](std::string_view stage, std::int64_t done,
                                          std::int64_t total) {
    if (progress_(name + ": " + std::string(stage), done, total)) return true;
    progressCancelled_ = true;
    return false;
  };
}

ModelReport ModelRun::Stop(std::string reason, bool cancelled) {
  session_.ClearModels();
  report_.error = std::move(reason);
  report_.cancelled = cancelled;
  report_.stages = clock_.Stages();
  return report_;
}

std::string ModelRun::OverBudget(std::int64_t intervals, std::int64_t bytes,
                                 std::int64_t length) const {
  return "The models would have " + std::to_string(intervals) + " intervals and need about " +
         Megabytes(bytes) + ", more than the memory budget of " +
         Megabytes(options_.memoryBudgetBytes) + ". Choose an interval length of at least " +
         std::to_string(length) + " " + TimeUnitWord(report_.unitCode) + ".";
}

bool ModelRun::SimilarityFits(const TextStream& words) {
  const std::int64_t linear = std::int64_t{words.IntervalCount()} * kBytesPerInterval;
  const std::int64_t room = options_.memoryBudgetBytes - linear;
  const std::int64_t pairs = words.IntervalSimilarityPairEstimate(
      report_.trunK, std::max<std::int64_t>(room, 0) / kBytesPerSimilarPair);
  const std::int64_t bytes = linear + pairs * kBytesPerSimilarPair;
  if (bytes <= options_.memoryBudgetBytes) return true;
  const std::string text =
      OverBudget(words.IntervalCount(), bytes,
                 LengthThatFits(length_, bytes, options_.memoryBudgetBytes, 0.5));
  notifier_.ShowMessage(text, kIntervalLengthTitle, MessageIcon::kExclamation);
  Stop(text, false);
  return false;
}

bool ModelRun::CheckLength() {
  const DocumentSet& documents = session_.Documents();
  const auto refuse = [&](const char* message, std::string reason) {
    notifier_.ShowMessage(message, kIntervalLengthTitle, MessageIcon::kExclamation);
    report_.error = std::move(reason);
    return false;
  };
  const double length = LeadingNumber(options_.intervalLength);
  const std::int64_t rounded = RoundHalfEven(length);
  if (!(length > 0) || rounded < 1 || rounded > INT32_MAX) {
    return refuse(kIntervalLengthInvalidMessage,
                  "Interval length \"" + options_.intervalLength +
                      "\" is not a positive whole number of time units");
  }
  length_ = static_cast<std::int32_t>(rounded);
  const double elapsed =
      LeadingNumber(documents.Text(documents.DocumentCount() - 1, documents.ElapsedTimeField()));
  const double ratio = elapsed / length;
  if (ratio < 2) {
    return refuse(kIntervalTooLongMessage,
                  "Interval length " + options_.intervalLength + " is too long: the corpus spans " +
                      std::to_string(std::llround(elapsed)) + " units, fewer than two intervals");
  }
  if (ratio > static_cast<double>(TextStream::kMaxIntervalCount)) {
    return refuse(kIntervalLengthInvalidMessage,
                  "Interval length " + options_.intervalLength + " is too short: more than " +
                      std::to_string(TextStream::kMaxIntervalCount) + " intervals");
  }
  const std::int64_t intervals = static_cast<std::int64_t>(elapsed / length_) + 1;
  const std::int64_t bytes = intervals * kBytesPerInterval;
  if (bytes > options_.memoryBudgetBytes) {
    const std::string text =
        OverBudget(intervals, bytes, LengthThatFits(length_, bytes, options_.memoryBudgetBytes, 1));
    notifier_.ShowMessage(text, kIntervalLengthTitle, MessageIcon::kExclamation);
    report_.error = text;
    return false;
  }
  if (ratio < 10 &&
      notifier_.Ask(kFewIntervalsQuestion, kFewIntervalsTitle, QuestionButtons::kOkCancel,
                    MessageIcon::kQuestion) != Answer::kOk) {
    report_.error = "Model building cancelled: fewer than 10 intervals";
    report_.cancelled = true;
    return false;
  }
  return true;
}

bool ModelRun::BuildModel(IndexKind kind) {
  const std::string_view name = IndexKindName(kind);
  TextStream& model = session_.Model(kind);
  model = TextStream();
  model.SetDocumentSet(session_.Documents());
  model.SetTermDocumentMatrix(session_.Index(kind));
  const bool built = model.BuildTermIntervalFrequencyModel(session_.Documents().ElapsedTimeField(),
                                                           length_, notifier_, Named(name));
  clock_.Finish(std::string(name));
  return built;
}

void ModelRun::PlaceEvents(TextStream& words) {
  for (const TimelineEvent& event : options_.events) {
    const auto interval = words.IntervalFromDateTime(event.dateTime, report_.unitCode);
    if (!interval || *interval < 1 || *interval > words.IntervalCount()) {
      report_.warnings.push_back("Event \"" + event.description + "\" at \"" + event.dateTime +
                                 "\" is not on the time line");
      continue;
    }
    words.SetEvents(*interval, event.description);
  }
}

ModelReport ModelRun::Run() {
  const DocumentSet& documents = session_.Documents();
  const CorpusInfo& corpus = session_.Corpus();
  if (documents.DocumentCount() < 1 || !session_.Indexed()) {
    report_.error = "Load a corpus and build its indexes before building the views";
    return report_;
  }
  if (!corpus.elapsedTimeDerived && corpus.format != CorpusFormat::kRadian6) {
    report_.error = "The corpus has no elapsed-time column (its dates could not be read)";
    return report_;
  }
  report_.unitCode = options_.unitCode.empty() ? corpus.elapsedTimeUnit : options_.unitCode;
  if (!ParseTimeUnit(report_.unitCode)) {
    report_.error = "Unknown time unit \"" + report_.unitCode + "\" (use s, n, h, d or ww)";
    return report_;
  }
  // Intervals count the unit of the elapsed-time column: count again in the asked unit, or
  // say why the corpus's own unit stays.
  if (report_.unitCode != corpus.elapsedTimeUnit) {
    std::string why;
    if (!ChangeElapsedTimeUnit(session_, report_.unitCode, why, Named("elapsed time"))) {
      if (progressCancelled_) return Stop("Model building cancelled", true);
      report_.warnings.push_back(why);
      report_.unitCode = corpus.elapsedTimeUnit;
    }
  }
  if (!CheckLength()) return report_;
  report_.intervalLength = length_;
  session_.SetModelsBuilt(false);

  try {
    // The words model first: its size decides whether to go on.
    if (!BuildModel(IndexKind::kWords)) {
      return Stop(progressCancelled_ ? "Model building cancelled"
                                     : "The words model has fewer than two intervals",
                  progressCancelled_);
    }
    TextStream& words = session_.WordModel();
    if (options_.maxVisibleColumns > 0 && words.IntervalCount() > options_.maxVisibleColumns) {
      notifier_.ShowMessage(kManyIntervalsNotice, options_.applicationTitle,
                            MessageIcon::kInformation);
    }
    PlaceEvents(words);
    const std::int32_t largest = words.MaxIntervalDocCount();
    const double seconds = EstimatedTweetMapSeconds(largest);
    if (largest > kLargeIntervalDocuments && seconds > options_.largeIntervalQuestionSeconds &&
        notifier_.Ask(LargeIntervalQuestion(largest, seconds), kLargeIntervalTitle,
                      QuestionButtons::kOkCancel, MessageIcon::kExclamation) != Answer::kOk) {
      return Stop("Model building cancelled: the largest interval holds " +
                      std::to_string(words.MaxIntervalDocCount()) + " documents",
                  true);
    }

    for (const IndexKind kind : kSecondaryKinds) {
      if (!BuildModel(kind)) {
        return Stop(progressCancelled_ ? "Model building cancelled"
                                       : "The " + std::string(IndexKindName(kind)) +
                                             " model has fewer than two intervals",
                    progressCancelled_);
      }
    }

    report_.trunK = ChooseTrunK(words);
    if (!SimilarityFits(words)) return report_;
    words.BuildIntervalSimilarityModel(report_.trunK, Named("words: interval similarities"));
    clock_.Finish("similarity");
    if (progressCancelled_) return Stop("Model building cancelled", true);

    words.BuildSentimentIntervalFrequencyModel(corpus.sentimentPositiveField,
                                               corpus.sentimentNegativeField);
    clock_.Finish("sentiment");
  } catch (const RangeError& error) {
    return Stop(error.what(), false);
  }

  session_.SetIntervalSettings(length_, report_.unitCode);
  session_.SetModelsBuilt(true);
  report_.built = true;
  report_.intervalCount = session_.WordModel().IntervalCount();
  report_.maxIntervalDocCount = session_.WordModel().MaxIntervalDocCount();
  report_.stages = clock_.Stages();
  return report_;
}

}  // namespace

std::string LargeIntervalQuestion(std::int32_t tweets, double seconds) {
  const auto rounded = std::max<long long>(1, std::llround(seconds));
  return std::string(kLargeIntervalQuestion) + " (The tweet map of the largest interval, " +
         std::to_string(tweets) + " tweets, would take about " +
         (rounded < 120 ? std::to_string(rounded) + " s"
                        : std::to_string((rounded + 30) / 60) + " min") +
         " to build.)";
}

std::int32_t ChooseTrunK(const TextStream& wordModel) {
  std::int32_t trunK = kTrunKNone;
  const SparseMatrixSingle& tifm = wordModel.TIFM();
  for (std::int32_t i = 1; i <= tifm.ColCount(); ++i) {
    std::int32_t distinct = 0;
    for (const float value : tifm.Vector(i)->ElementValues()) distinct += value != 0.0f ? 1 : 0;
    if (distinct >= kTrunKMinimumTerms && distinct < trunK) trunK = distinct;
  }
  return trunK;
}

ModelReport BuildModels(Session& session, const ModelOptions& options, Notifier& notifier,
                        const ProgressCallback& progress) {
  ModelRun run(session, options, notifier, progress);
  return run.Run();
}

}  // namespace sylvora
