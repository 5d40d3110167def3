#pragma once
// Helpers for index tests: small corpora from literal texts, stop lists in a temporary folder,
// and whole indexes built in one call.

#include <string>
#include <vector>

#include "corpus/document_set.h"
#include "indexing/term_document_matrix.h"
#include "support/temp_dir.h"

namespace sylvora::testing {

// A corpus of one document per text, the text in the only expressed field (field 2, "Tweet",
// of the six-column layout).
DocumentSet TextCorpus(const std::vector<std::string>& texts);

// The same corpus read from "<dir>/<name>" so that its FilePath (and the index's BasePath)
// lies in that folder.
DocumentSet TextCorpusFile(const TempDir& dir, const std::string& name,
                           const std::vector<std::string>& texts);

// An index with every document of `corpus` assigned (as links when `links`).
TermDocumentMatrix Assigned(const DocumentSet& corpus, bool links = false);

// Writes a stop list of the given lines (LF line ends) and returns its path.
std::string WriteStopList(const TempDir& dir, const std::vector<std::string>& words);

// The document texts of an index, 1..DocCount.
std::vector<std::string> Texts(const TermDocumentMatrix& index);

// Terms 1..TermCount.
std::vector<std::string> Terms(const TermDocumentMatrix& index);

// An index over `texts` split only at spaces (no cleaning, no stop list), with its vocabulary
// built with `maxCharSlotSz` and, when `build` is set, counted and pruned by the bounds.
TermDocumentMatrix SpaceIndex(const std::vector<std::string>& texts,
                              std::int32_t maxCharSlotSz = 999, bool build = false,
                              std::int32_t minDF = 1, std::int32_t maxDF = 1000000);

}  // namespace sylvora::testing
