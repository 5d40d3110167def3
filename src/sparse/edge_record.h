#pragma once
// One link of a network: its weight and the two nodes it joins. Nodes are 0-based. Edge lists
// are 0-based arrays of these (std::vector<EdgeRecord>), shared by the sorting helpers, the
// proximity networks, the DOT writer and the layout reader.
//
// The field order (Weight, FromNode, ToNode) and widths are part of the record's contract:
// 12 bytes, no padding.

#include <cstdint>

namespace sylvora {

struct EdgeRecord {
  float Weight = 0.0f;
  std::int32_t FromNode = 0;
  std::int32_t ToNode = 0;

  friend bool operator==(const EdgeRecord&, const EdgeRecord&) = default;
};

static_assert(sizeof(EdgeRecord) == 12, "EdgeRecord is three packed 32-bit fields");

}  // namespace sylvora
