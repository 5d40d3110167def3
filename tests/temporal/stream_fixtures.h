#pragma once
// Small hand-made corpora for interval model tests: each document has an elapsed time, a text
// of space-separated terms, an optional link and two sentiment strengths. The index splits the
// text at spaces only, so the terms are exactly the words written.

#include <memory>
#include <string>
#include <vector>

#include "corpus/document_set.h"
#include "indexing/term_document_matrix.h"
#include "temporal/text_stream.h"

namespace sylvora::testing {

struct StreamDoc {
  std::int64_t time = 0;  // elapsed hours since 2013-09-02 00:00:00
  std::string text;
  std::string link = "";
  std::string pos = "1";
  std::string neg = "-1";
};

// Columns of the test corpus.
inline constexpr FieldIndex kDateField = 0;
inline constexpr FieldIndex kLinkField = 1;
inline constexpr FieldIndex kTextField = 2;
inline constexpr FieldIndex kPosField = 3;
inline constexpr FieldIndex kNegField = 4;
inline constexpr FieldIndex kElapsedField = 5;

// A corpus, its index and a stream bound to both (not built). Heap-held so that the stream's
// borrowed pointers stay valid when the fixture moves.
struct StreamCorpus {
  std::unique_ptr<DocumentSet> corpus;
  std::unique_ptr<TermDocumentMatrix> index;
  std::unique_ptr<TextStream> stream;

  // The term number of `term` (-1 when not indexed).
  std::int32_t Term(const std::string& term) const { return index->TermIndex(term); }
};

// Builds the corpus in the given order (not sorted) and an index keeping every term.
StreamCorpus MakeStreamCorpus(const std::vector<StreamDoc>& docs);

// The same with the interval model built at `length` hours; throws when it is not.
StreamCorpus Built(const std::vector<StreamDoc>& docs, std::int32_t length = 10);

}  // namespace sylvora::testing
