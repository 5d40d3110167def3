#include "session/corpus_index.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <ctime>
#include <future>
#include <limits>
#include <mutex>
#include <numeric>

#include "common/date_time.h"
#include "common/leading_number.h"
#include "indexing/indexing_errors.h"
#include "sparse/number_format.h"

namespace sylvora {
namespace {

// The minimum token length of the secondary indexes.
constexpr std::uint8_t kSecondaryMinLength = 3;
constexpr const char* kLineBreak = "\r\n";
// The stage texts of the progress callback (after the index name).
constexpr const char* kAssigning = "Assigning text";
constexpr const char* kPreprocessing = "Pre-processing text";
constexpr const char* kVocabulary = "Building vocabulary";
constexpr const char* kCounting = "Counting term-document occurrences";
constexpr const char* kWeighting = "Weighting";

// The current local date and time in the general date format.
std::string NowText() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const auto dateTime = DateTime::FromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                            local.tm_hour, local.tm_min, local.tm_sec);
  return dateTime ? dateTime->Format() : std::string();
}

// Puts the expressed flags back as they were when the object was made, unless Keep() was
// called.
class ExpressionRestorer {
 public:
  explicit ExpressionRestorer(DocumentSet& documents)
      : documents_(documents), pattern_(documents.FieldExpressionPattern()) {}
  ~ExpressionRestorer() {
    if (!keep_) documents_.SetFieldExpressionPattern(pattern_);
  }
  ExpressionRestorer(const ExpressionRestorer&) = delete;
  ExpressionRestorer& operator=(const ExpressionRestorer&) = delete;

  void Keep() { keep_ = true; }

 private:
  DocumentSet& documents_;
  std::string pattern_;
  bool keep_ = false;
};

class IndexingRun {
 public:
  IndexingRun(const DocumentSet& documents, const IndexOptions& options,
              const ProgressCallback& progress, IndexReport& report)
      : documents_(documents), options_(options), progress_(progress), report_(report) {}

  // Each returns false when the progress callback cancelled; stop-list errors propagate.
  bool BuildWords(TermDocumentMatrix& index);
  bool BuildSecondary(IndexKind kind, FieldIndex field, TermDocumentMatrix& index);

  const std::vector<StageTiming>& Stages() const { return clock_.Stages(); }

 private:
  // The progress callback with the index name in front of each stage text.
  ProgressCallback ProgressFor(IndexKind kind) const;
  // Tells the progress callback that a stage begins; false when it asks to stop.
  bool Begin(IndexKind kind, const char* stage) const;
  // Records the stage and returns its time in the log's form.
  std::string Finish(IndexKind kind, const char* stage);
  // The slot limit of BuildVocab for "Terms per first letter".
  std::int32_t SlotLimit() const;
  // Counts and logs the terms the cap dropped from `index`.
  void NoteDropped(IndexKind kind, const TermDocumentMatrix& index);

  const DocumentSet& documents_;
  const IndexOptions& options_;
  const ProgressCallback& progress_;
  IndexReport& report_;
  StageClock clock_;
};

ProgressCallback IndexingRun::ProgressFor(IndexKind kind) const {
  if (!progress_) return {};
  const std::string prefix = std::string(IndexKindName(kind)) + ": ";
  return [this, prefix](std::string_view stage, std::int64_t done, std::int64_t total) {
    return progress_(prefix + std::string(stage), done, total);
  };
}

bool IndexingRun::Begin(IndexKind kind, const char* stage) const {
  return !progress_ || progress_(std::string(IndexKindName(kind)) + ": " + stage, 0, 0);
}

std::string IndexingRun::Finish(IndexKind kind, const char* stage) {
  clock_.Finish(std::string(IndexKindName(kind)) + ": " + stage);
  return GeneralNumber(static_cast<float>(clock_.Stages().back().seconds));
}

std::int32_t IndexingRun::SlotLimit() const {
  return options_.termsPerLetter > 0 ? options_.termsPerLetter - 1
                                     : TermDocumentMatrix::kNoSlotLimit;
}

void IndexingRun::NoteDropped(IndexKind kind, const TermDocumentMatrix& index) {
  const std::int64_t dropped = index.DroppedTermCount();
  report_.droppedTerms[static_cast<std::size_t>(kind)] = dropped;
  if (dropped == 0) return;
  report_.log += std::string(IndexKindName(kind)) + " index: " + std::to_string(dropped) +
                 " terms dropped (more than " + std::to_string(options_.termsPerLetter) +
                 " per first letter)" + kLineBreak;
}

bool IndexingRun::BuildWords(TermDocumentMatrix& index) {
  const IndexKind kind = IndexKind::kWords;
  const ProgressCallback progress = ProgressFor(kind);
  std::string& log = report_.log;
  report_.status = "Building word index...";

  log = "Assigning text for processing...";
  DocIndex count = options_.wordDocumentCount.value_or(documents_.DocumentCount());
  std::vector<FieldIndex> fields;
  for (int f = 0; f < documents_.FieldCount(); ++f) {
    if (documents_.FieldExpressed(static_cast<FieldIndex>(f))) {
      fields.push_back(static_cast<FieldIndex>(f));
    }
  }
  // The cells are borrowed: Preprocess runs next, while the set stays as it is.
  if (!Begin(kind, kAssigning) ||
      !index.AssignText(documents_, fields, count, false, true, progress)) {
    return false;
  }
  report_.wordDocuments = count;
  log += "[Completed in " + Finish(kind, "assign") + " s]" + kLineBreak;

  log += "Pre-processing input text...";
  if (!Begin(kind, kPreprocessing) ||
      !index.Preprocess(false, options_.abbreviations, static_cast<std::uint8_t>(options_.minChars),
                        options_.stopListPath, options_.porter, progress)) {
    return false;
  }
  log += " [Completed in " + Finish(kind, "preprocess") + " s]" + kLineBreak;

  log += "Building vocabulary...";
  if (!Begin(kind, kVocabulary) || !index.BuildVocab(0, SlotLimit(), progress)) {
    return false;
  }
  log += std::to_string(index.TermCount()) + " index terms retained [Completed in " +
         Finish(kind, "vocabulary") + " s]" + kLineBreak;
  NoteDropped(kind, index);

  log += "Counting Term-Doc occurrences...";
  if (!Begin(kind, kCounting) ||
      !index.BuildTDM(report_.minDocFrequency, report_.maxDocFrequency, progress)) {
    return false;
  }
  log += "Terms retained within DF bounds = " + std::to_string(index.TermCount()) + " ";
  log += "[Completed in " + Finish(kind, "counts") + " s" + kLineBreak + "All done! [" + NowText() +
         "]" + kLineBreak;

  if (!Begin(kind, kWeighting) ||
      !index.WeightMatrixValues(TermDocumentMatrix::kInverseDocumentFrequency, progress)) {
    return false;
  }
  Finish(kind, "tf-idf");
  return true;
}

bool IndexingRun::BuildSecondary(IndexKind kind, FieldIndex field, TermDocumentMatrix& index) {
  static constexpr const char* kStatus[] = {"", "Building link index...",
                                            "Building hashtag index...",
                                            "Building mention index...", "Building user index..."};
  report_.status = kStatus[static_cast<int>(kind)];
  const ProgressCallback progress = ProgressFor(kind);
  // Links, mentions and user names are whole terms; hashtags are cleaned like words.
  const bool cleaned = kind == IndexKind::kHashtags;

  DocIndex count = documents_.DocumentCount();
  if (!Begin(kind, kAssigning) ||
      !index.AssignText(documents_, {field}, count, kind == IndexKind::kLinks, true, progress)) {
    return false;
  }
  Finish(kind, "assign");
  if (!Begin(kind, kPreprocessing) ||
      !index.Preprocess(!cleaned, false, kSecondaryMinLength,
                        cleaned ? options_.stopListPath : std::string(), false, progress)) {
    return false;
  }
  Finish(kind, "preprocess");
  if (!Begin(kind, kVocabulary) || !index.BuildVocab(0, SlotLimit(), progress)) {
    return false;
  }
  Finish(kind, "vocabulary");
  NoteDropped(kind, index);
  if (!Begin(kind, kCounting) ||
      !index.BuildTDM(options_.secondaryMinDocFrequency, documents_.DocumentCount(), progress)) {
    return false;
  }
  Finish(kind, "counts");
  return true;
}

// Builds the secondary indexes on a thread of its own. Only the calling thread talks to the
// progress callback: the worker leaves its latest stage here, and Finish() passes it on while
// it waits, so that a cancel reaches the worker at its next step.
class SecondaryIndexes {
 public:
  struct Job {
    IndexKind kind;
    FieldIndex field;
    TermDocumentMatrix* index;
  };

  SecondaryIndexes(const DocumentSet& documents, const IndexOptions& options,
                   const ProgressCallback& progress)
      : documents_(documents), options_(options), progress_(progress) {}
  ~SecondaryIndexes() {
    Cancel();
    Wait();
  }
  SecondaryIndexes(const SecondaryIndexes&) = delete;
  SecondaryIndexes& operator=(const SecondaryIndexes&) = delete;

  void Start(std::vector<Job> jobs) {
    worker_ = std::async(std::launch::async, [this, jobs = std::move(jobs)] { return Run(jobs); });
  }
  void Cancel() { cancelled_ = true; }
  void Wait() {
    if (worker_.valid()) worker_.wait();
  }

  // Waits for the worker while passing its progress on, then adds its log lines and
  // dropped-term counts to `report`. False when cancelled; rethrows the worker's
  // StopListError.
  bool Finish(IndexReport& report) {
    constexpr auto kPoll = std::chrono::milliseconds(20);
    bool ready = false;
    while (!ready) {
      ready = worker_.wait_for(kPoll) == std::future_status::ready;
      std::vector<Stage> pending;
      {
        const std::lock_guard lock(mutex_);
        // Each index the worker began is announced once, in order, so that a status line
        // that follows the stages names every index; then the latest stage, while it runs.
        pending.assign(begun_.begin() + static_cast<std::ptrdiff_t>(announced_), begun_.end());
        announced_ = begun_.size();
        if (!ready) pending.push_back(latest_);
      }
      for (const Stage& stage : pending) {
        if (progress_ && !stage.text.empty() && !progress_(stage.text, stage.done, stage.total)) {
          cancelled_ = true;
        }
      }
    }
    const bool done = worker_.get();
    report.log += report_.log;
    for (std::size_t kind = 1; kind < report.droppedTerms.size(); ++kind) {
      report.droppedTerms[kind] = report_.droppedTerms[kind];
    }
    return done && !cancelled_;
  }

  const std::vector<StageTiming>& Stages() const { return stages_; }

 private:
  struct Stage {
    std::string text;
    std::int64_t done = 0;
    std::int64_t total = 0;
  };

  bool Run(const std::vector<Job>& jobs) {
    const ProgressCallback relay = [this](std::string_view stage, std::int64_t done,
                                          std::int64_t total) {
      const std::lock_guard lock(mutex_);
      latest_ = {std::string(stage), done, total};
      const std::string_view index = stage.substr(0, stage.find(':'));
      if (begun_.empty() || !begun_.back().text.starts_with(index)) begun_.push_back(latest_);
      return !cancelled_;
    };
    IndexingRun run(documents_, options_, relay, report_);
    bool done = true;
    for (const Job& job : jobs) {
      if (!run.BuildSecondary(job.kind, job.field, *job.index)) {
        done = false;
        break;
      }
    }
    stages_ = run.Stages();
    return done;
  }

  const DocumentSet& documents_;
  const IndexOptions& options_;
  const ProgressCallback& progress_;
  std::future<bool> worker_;
  std::atomic<bool> cancelled_{false};
  std::mutex mutex_;
  Stage latest_;
  std::vector<Stage> begun_;  // the first stage of each index the worker began
  std::size_t announced_ = 0;
  IndexReport report_;  // the worker's own log and counts
  std::vector<StageTiming> stages_;
};

// The whole number a Max DF option stands for, or nullopt when it has none.
std::optional<std::int32_t> WholeDocumentCount(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  const std::int64_t rounded = RoundHalfEven(value);
  if (rounded < std::numeric_limits<std::int32_t>::min() ||
      rounded > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(rounded);
}

}  // namespace

std::int32_t DefaultMinDocFrequency(DocIndex documents) { return documents / 1000 + 2; }

double DefaultMaxDocFrequency(DocIndex documents) { return documents * 0.5; }

IndexReport BuildIndexes(Session& session, const IndexOptions& options,
                         const ProgressCallback& progress) {
  IndexReport report;
  DocumentSet& documents = session.Documents();
  if (documents.DocumentCount() == 0) {
    report.error = "No corpus is loaded: load one before indexing";
    return report;
  }
  if (options.minChars < 0 || options.minChars > 255) {
    report.error =
        "Min Chars must be a whole number from 0 to 255, not " + std::to_string(options.minChars);
    return report;
  }
  if (options.termsPerLetter < 0) {
    report.error = "Terms per first letter must be 0 (no limit) or more, not " +
                   std::to_string(options.termsPerLetter);
    return report;
  }
  const double maxDF =
      options.maxDocFrequency.value_or(DefaultMaxDocFrequency(documents.DocumentCount()));
  const auto maxDocFrequency = WholeDocumentCount(maxDF);
  if (!maxDocFrequency) {
    report.error = "Max DF must be a number of documents, not " + std::to_string(maxDF);
    return report;
  }
  report.minDocFrequency =
      options.minDocFrequency.value_or(DefaultMinDocFrequency(documents.DocumentCount()));
  report.maxDocFrequency = *maxDocFrequency;

  ExpressionRestorer restorer(documents);
  for (const FieldIndex field : options.wordFields) {
    if (field < documents.FieldCount()) documents.SetFieldExpressed(field, true);
  }

  TermDocumentMatrix words, links, hashtags, mentions, users;
  IndexingRun run(documents, options, progress, report);
  SecondaryIndexes secondary(documents, options, progress);
  try {
    // The four secondary indexes are built on a thread of their own while this one builds
    // the word index; each takes its one field without switching any flag of the set.
    secondary.Start({{IndexKind::kLinks, documents.URLField(), &links},
                     {IndexKind::kHashtags, documents.KeyWordField(), &hashtags},
                     {IndexKind::kMentions, documents.RefListField(), &mentions},
                     {IndexKind::kUsers, documents.AuthorField(), &users}});
    bool done = run.BuildWords(words);
    if (!done) secondary.Cancel();
    done = secondary.Finish(report) && done;
    report.stages = run.Stages();
    report.stages.insert(report.stages.end(), secondary.Stages().begin(), secondary.Stages().end());
    if (!done) {
      report.cancelled = true;
      report.error = "Indexing cancelled";
      return report;
    }
  } catch (const StopListError& error) {
    secondary.Cancel();
    secondary.Wait();
    report.stages = run.Stages();
    report.error = error.what();
    return report;
  }
  // A completed run leaves every field switched off.
  documents.SetFieldExpressionPattern("");
#ifdef __GLIBC__
  // The passes' working memory (token ranges, tallies, each thread's allocations) is free
  // now; give it back to the system instead of keeping it in the allocator's free lists.
  malloc_trim(0);
#endif

  // The interval models counted the old indexes' terms: they go with them.
  session.ClearModels();
  session.WordIndex() = std::move(words);
  session.LinkIndex() = std::move(links);
  session.HashtagIndex() = std::move(hashtags);
  session.MentionIndex() = std::move(mentions);
  session.UserIndex() = std::move(users);
  session.SetIndexed(true);
  restorer.Keep();
  report.status = "All done :-)";
  report.indexed = true;
  return report;
}

std::vector<std::int32_t> TermsByDocumentFrequency(const TermDocumentMatrix& index,
                                                   std::size_t limit) {
  std::vector<std::int32_t> terms(static_cast<std::size_t>(index.TermCount()));
  std::iota(terms.begin(), terms.end(), 1);
  const std::size_t count = std::min(limit, terms.size());
  std::partial_sort(terms.begin(), terms.begin() + static_cast<std::ptrdiff_t>(count), terms.end(),
                    [&](std::int32_t a, std::int32_t b) {
                      const std::int32_t dfA = index.DocFreq(a), dfB = index.DocFreq(b);
                      return dfA != dfB ? dfA > dfB : a < b;
                    });
  terms.resize(count);
  return terms;
}

}  // namespace sylvora
