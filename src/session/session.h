#pragma once
// Session: the long-lived objects of one analysis, which the application window holds and
// hands to each workflow (load, index, build models, build maps) in turn. A workflow runs on
// a worker thread with exclusive use of the session and gives it back when it ends.

#include <array>
#include <string>
#include <string_view>

#include "common/numbering.h"
#include "corpus/document_set.h"
#include "indexing/term_document_matrix.h"
#include "temporal/text_stream.h"

namespace sylvora {

// The corpus formats the load workflow offers.
enum class CorpusFormat { kTwitter = 7, kTwitter11 = 8, kRadian6 = 9 };

// What the load workflow found out about the corpus, kept for the later workflows.
struct CorpusInfo {
  CorpusFormat format = CorpusFormat::kTwitter;
  // The sentiment columns the temporal model reads (positive and negative strength).
  FieldIndex sentimentPositiveField = 3;
  FieldIndex sentimentNegativeField = 4;
  // True when the elapsed-time column was derived and the documents are in time order.
  bool elapsedTimeDerived = false;
  // The unit code ("s", "n", "h", "d", "ww") the elapsed-time column was derived in.
  std::string elapsedTimeUnit = "h";
  std::string filePath;
  // What the load found in the file ("tab-separated Twitter1.1 export", "X / Twitter API v2
  // JSON lines", ...). JSON and CSV imports load as format 8.
  std::string shape;
};

// The five term indexes of the indexing workflow, in the order it builds them.
enum class IndexKind { kWords, kLinks, kHashtags, kMentions, kUsers };
inline constexpr std::array<IndexKind, 5> kIndexKinds = {IndexKind::kWords, IndexKind::kLinks,
                                                         IndexKind::kHashtags, IndexKind::kMentions,
                                                         IndexKind::kUsers};

class Session {
 public:
  DocumentSet& Documents() { return documents_; }
  const DocumentSet& Documents() const { return documents_; }

  CorpusInfo& Corpus() { return corpus_; }
  const CorpusInfo& Corpus() const { return corpus_; }

  // The term indexes over the corpus, replaced whole by every indexing run (BuildIndexes,
  // corpus_index.h); empty (no terms) until the first run. They describe the corpus as it was
  // indexed: a workflow that replaces the corpus calls ClearIndexes.
  TermDocumentMatrix& WordIndex() { return words_; }
  const TermDocumentMatrix& WordIndex() const { return words_; }
  TermDocumentMatrix& HashtagIndex() { return hashtags_; }
  const TermDocumentMatrix& HashtagIndex() const { return hashtags_; }
  TermDocumentMatrix& LinkIndex() { return links_; }
  const TermDocumentMatrix& LinkIndex() const { return links_; }
  TermDocumentMatrix& MentionIndex() { return mentions_; }
  const TermDocumentMatrix& MentionIndex() const { return mentions_; }
  TermDocumentMatrix& UserIndex() { return users_; }
  const TermDocumentMatrix& UserIndex() const { return users_; }
  TermDocumentMatrix& Index(IndexKind kind);
  const TermDocumentMatrix& Index(IndexKind kind) const;

  // True once an indexing run has completed and until ClearIndexes.
  bool Indexed() const { return indexed_; }
  void SetIndexed(bool indexed) { indexed_ = indexed; }
  // Replaces the five indexes by empty ones (and the interval models built on them).
  void ClearIndexes();

  // The interval models of the "(Re)Build Views" workflow (BuildModels, interval_models.h),
  // one per index, each over Documents() and Index(kind); replaced whole by every build and
  // unbuilt (IntervalCount 0) until the first. They point into this session: a session that
  // holds built models must not be moved.
  TextStream& Model(IndexKind kind) { return models_[static_cast<std::size_t>(kind)]; }
  const TextStream& Model(IndexKind kind) const { return models_[static_cast<std::size_t>(kind)]; }
  TextStream& WordModel() { return Model(IndexKind::kWords); }
  const TextStream& WordModel() const { return Model(IndexKind::kWords); }
  // True once a model build has completed and until ClearModels.
  bool ModelsBuilt() const { return modelsBuilt_; }
  void SetModelsBuilt(bool built) { modelsBuilt_ = built; }
  // The interval length and unit code of the last completed build (0 and "" before).
  std::int32_t IntervalLength() const { return intervalLength_; }
  const std::string& IntervalUnit() const { return intervalUnit_; }
  void SetIntervalSettings(std::int32_t length, std::string unit) {
    intervalLength_ = length;
    intervalUnit_ = std::move(unit);
  }
  // Replaces the five models by empty ones.
  void ClearModels();

 private:
  DocumentSet documents_;
  CorpusInfo corpus_;
  TermDocumentMatrix words_;
  TermDocumentMatrix hashtags_;
  TermDocumentMatrix links_;
  TermDocumentMatrix mentions_;
  TermDocumentMatrix users_;
  bool indexed_ = false;
  std::array<TextStream, 5> models_;  // by IndexKind
  bool modelsBuilt_ = false;
  std::int32_t intervalLength_ = 0;
  std::string intervalUnit_;
};

// "words", "links", "hashtags", "mentions" or "users".
std::string_view IndexKindName(IndexKind kind);

// "Twitter", "Twitter1.1" or "Radian 6".
std::string_view CorpusFormatName(CorpusFormat format);

}  // namespace sylvora
