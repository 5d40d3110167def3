#pragma once
// Numbering rules shared by every layer, stated once.
//
//  * Document rows of a DocumentSet are 0-based (row 0 .. DocumentCount()-1).
//  * Fields are numbered 0..255 by an unsigned 8-bit FieldIndex; index 255 (or any index past
//    the last field) asks Text() for the whole document.
//  * Terms of an index, documents inside an index, sparse vector elements, intervals, and the
//    rows and columns of tables are 1-based: document row d of the corpus is column d + 1 of a
//    term-document matrix.
//  * Nodes of networks and maps are 0-based.
//
// The public API speaks these numbers; internals may store 0-based positions.

#include <cstdint>

namespace sylvora {

using FieldIndex = std::uint8_t;
using DocIndex = std::int32_t;

// The field index that callers pass to read a whole document as one text.
inline constexpr FieldIndex kWholeDocument = 255;

}  // namespace sylvora
