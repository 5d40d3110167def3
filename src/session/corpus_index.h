#pragma once
// The indexing workflow: from a loaded corpus to its five term indexes.
//
//  * words     the fields chosen for the word index (normally the tweet text), cleaned,
//              folded, filtered by length and stop list, optionally stemmed, pruned by Min DF
//              and Max DF, then weighted by tf-idf;
//  * links     the link column, each link one term with its "http://" or "https://";
//  * hashtags  the hashtag column, cleaned and lower-cased like words (stop list, 3 letters);
//  * mentions  the mention column, each mention one term, case kept;
//  * users     the author column, each user name one term, case kept.
// The four secondary indexes take every document, keep tokens of at least 2 characters, are
// never stemmed, and keep the terms found in at least the secondary Min DF documents (no upper
// bound). With "Terms per first letter" every index keeps at most that many terms per first
// letter; the report counts the terms dropped and the log names them per index.
//
// Fields. The word index covers every field that is expressed when the run starts, plus the
// word fields of the options (the load workflow leaves the content field and the fields it
// derived expressed). Each secondary index covers its own field only; a completed run leaves
// every field switched off, so a later run covers only what it switches on again.
//
// Threads. The four secondary indexes are built one after another on a thread of their own
// while the calling thread builds the word index, and each index splits its passes over the
// cores (TermDocumentMatrix). Only the calling thread calls the progress callback; a cancel
// stops both.
//
// The five new indexes replace the session's only when all five are built; on an error or a
// cancel the session keeps the indexes it had and its fields' expressed flags, and the report
// says why.
//
// Errors: a stop list that cannot be used (missing, unreadable, more than 1000 words) stops
// the workflow with report.error naming the file; options out of range stop it before any
// work. Cost: a few passes over the corpus text per index, linear in its size, shared out
// over the machine's cores.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/progress.h"
#include "common/stopwatch.h"
#include "session/session.h"

namespace sylvora {

struct IndexOptions {
  // Fields switched on for the word index besides those already expressed.
  std::vector<FieldIndex> wordFields;
  // "Max # Docs": the word index covers the first this many documents; nullopt for all.
  std::optional<DocIndex> wordDocumentCount;
  // "Min DF" of the word index; nullopt: the whole part of DocumentCount / 1000, plus 2.
  std::optional<std::int32_t> minDocFrequency;
  // "Max DF" of the word index, an absolute number of documents, rounded half to even where a
  // whole number is needed; nullopt: half the documents.
  std::optional<double> maxDocFrequency;
  // "Min Chars": tokens starting with a lower-case letter need at least this many (0..255).
  int minChars = 3;
  bool porter = true;
  // "Index Abbreviations": tokens whose second character is not lower case keep their case.
  bool abbreviations = true;
  // "Allow Numbers": offered by the window, but no indexing step reads it: digits always
  // separate tokens.
  bool allowNumbers = false;
  // "Min DF" of the links, hashtags, mentions and users indexes.
  std::int32_t secondaryMinDocFrequency = 2;
  // The stop list of the word and hashtag indexes.
  std::string stopListPath;
  // "Terms per first letter": each index keeps at most this many terms per first letter (in
  // order of first appearance) and drops the rest; 0 keeps every term.
  std::int32_t termsPerLetter = 0;
};

// The "Terms per first letter" value the window offers once the cap is switched on.
inline constexpr std::int32_t kDefaultTermsPerLetter = 1000;

struct IndexReport {
  bool indexed = false;
  bool cancelled = false;
  // One line a user can act on, when not indexed.
  std::string error;
  // The bounds the word index used.
  std::int32_t minDocFrequency = 0;
  std::int32_t maxDocFrequency = 0;
  DocIndex wordDocuments = 0;
  // The indexing log of the window: the word index's stages with their times, and a line
  // per index whose terms the cap dropped (CR LF lines).
  std::string log;
  // The status line: "Building word index...", ..., "All done :-)".
  std::string status;
  // Per index (by IndexKind), the distinct terms that "Terms per first letter" dropped.
  std::array<std::int64_t, 5> droppedTerms{};
  // "words: assign", "words: preprocess", ... "users: counts", each with its seconds.
  std::vector<StageTiming> stages;
};

// The Min DF default for a corpus of `documents` documents.
std::int32_t DefaultMinDocFrequency(DocIndex documents);
// The Max DF default: half the documents.
double DefaultMaxDocFrequency(DocIndex documents);

IndexReport BuildIndexes(Session& session, const IndexOptions& options,
                         const ProgressCallback& progress = {});

// Term numbers of `index` in order of falling document frequency (equal frequencies in term
// order), at most `limit` of them.
std::vector<std::int32_t> TermsByDocumentFrequency(const TermDocumentMatrix& index,
                                                   std::size_t limit);

}  // namespace sylvora
