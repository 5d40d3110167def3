#pragma once
// Session: the long-lived objects of one analysis, which the application window holds and
// hands to each workflow (load, index, build models, build maps) in turn. A workflow runs on
// a worker thread with exclusive use of the session and gives it back when it ends.

#include <string>

#include "common/numbering.h"
#include "corpus/document_set.h"

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
  std::string filePath;
};

class Session {
 public:
  DocumentSet& Documents() { return documents_; }
  const DocumentSet& Documents() const { return documents_; }

  CorpusInfo& Corpus() { return corpus_; }
  const CorpusInfo& Corpus() const { return corpus_; }

 private:
  DocumentSet documents_;
  CorpusInfo corpus_;
};

// "Twitter", "Twitter1.1" or "Radian 6".
std::string_view CorpusFormatName(CorpusFormat format);

}  // namespace sylvora
