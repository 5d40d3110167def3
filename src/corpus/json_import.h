#pragma once
// The JSON half of corpus_import.h, over simdjson's On Demand API (kept out of other files so
// that only one translation unit includes its large header).

#include <cstddef>
#include <string>

#include "common/large_allocation.h"
#include "common/progress.h"
#include "corpus/corpus_import.h"
#include "corpus/imported_rows.h"

namespace sylvora {

// Whether `bytes` (starting, after blanks and a byte-order mark, with "{" or "[") is a JSON
// export of a known shape; fills `detection` (container, shape, keys of the first post).
DetectionOutcome DetectJsonShape(const std::string& name, const char* bytes, std::size_t size,
                                 std::size_t capacity, ImportDetection& detection,
                                 std::string& error);

// Imports the posts of `input` (adopted by `rows`). False with report.error.
bool ImportJsonPosts(const std::string& name, ByteBuffer&& input, const ImportDetection& detection,
                     const ImportOptions& options, ImportedRows& rows, ImportReport& report,
                     const ProgressCallback& progress);

}  // namespace sylvora
