#pragma once
// The document table's share of the work split over the cores (common/parallel.h): row ranges
// for the per-row derivations, each with an arena of its own for the texts it stores, and
// ranges of a file's text cut at line feeds for reading records.

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include "common/numbering.h"
#include "corpus/cell_store.h"

namespace sylvora {

// Bounds of `rows` rows cut into ranges for the machine's cores; a range of fewer rows than
// a few thousand is not worth a thread.
std::vector<std::size_t> RowRangeBounds(DocIndex rows);

// Runs body(part, begin, end, arena) for every range of `bounds` as RunRanges does. A
// CellStore serves one thread only, so each range stores its texts in an arena of its own
// (valid for views at once): range 0, on the calling thread, stores into `store` itself, and
// the other arenas join it in range order once every range ended, also when a range threw.
void RunRowRanges(const std::vector<std::size_t>& bounds, CellStore& store,
                  const std::function<void(std::size_t part, DocIndex begin, DocIndex end,
                                           CellStore& arena)>& body);

// Bounds of `text` cut into at most `parts` ranges of at least about `minimumBytes` each,
// every cut just after a line feed, so that no line, CR LF pair or UTF-8 sequence is split
// between two ranges. No range is empty, except the only one of an empty text.
std::vector<std::size_t> LineRangeBounds(std::string_view text, std::size_t parts,
                                         std::size_t minimumBytes);

}  // namespace sylvora
