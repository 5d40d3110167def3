#include "session/corpus_index.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
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
  IndexingRun(DocumentSet& documents, const IndexOptions& options, const ProgressCallback& progress,
              IndexReport& report)
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

  DocumentSet& documents_;
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
  if (!Begin(kind, kAssigning) || !index.AssignText(documents_, count, false, progress)) {
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

  documents_.SetFieldExpressed(field, true);
  DocIndex count = documents_.DocumentCount();
  if (!Begin(kind, kAssigning) ||
      !index.AssignText(documents_, count, kind == IndexKind::kLinks, progress)) {
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
  documents_.SetFieldExpressed(field, false);
  return true;
}

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
  try {
    bool done = run.BuildWords(words);
    if (done) {
      documents.SetFieldExpressionPattern("");
      done = run.BuildSecondary(IndexKind::kLinks, documents.URLField(), links) &&
             run.BuildSecondary(IndexKind::kHashtags, documents.KeyWordField(), hashtags) &&
             run.BuildSecondary(IndexKind::kMentions, documents.RefListField(), mentions) &&
             run.BuildSecondary(IndexKind::kUsers, documents.AuthorField(), users);
    }
    report.stages = run.Stages();
    if (!done) {
      report.cancelled = true;
      report.error = "Indexing cancelled";
      return report;
    }
  } catch (const StopListError& error) {
    report.stages = run.Stages();
    report.error = error.what();
    return report;
  }

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
