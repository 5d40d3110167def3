#pragma once
// ClusterMap: one laid-out node map of the cluster explorer (word, interval or tweet map), as a
// map build leaves it for the point map and for export: per node a label and a weight, the
// layout (positions, drawing size, edge list) and the DOT text it was laid out from.
//
// Numbering. Nodes are 0-based. Word map: node i is term i + 1 of the word index. Interval map:
// node i is interval i + 1. Tweet map: node i is corpus row FirstDocument() + i.

#include <cstdint>
#include <string>
#include <vector>

#include "common/numbering.h"
#include "layout/spatial.h"

namespace sylvora {

enum class MapKind { kWords, kIntervals, kTweets };

struct ClusterMap {
  MapKind kind = MapKind::kWords;
  // Per node: what the map writes beside it and how big it draws it.
  std::vector<std::string> labels;
  std::vector<float> weights;
  // Positions, drawing size and links.
  Spatial layout;
  // The DOT text handed to Graphviz.
  std::string dot;
  // Tweet map: the selected interval (1-based) and the corpus row of node 0.
  std::int32_t interval = 0;
  DocIndex firstDocument = 0;

  std::int32_t NodeCount() const { return layout.NodeCount(); }
};

// "words", "intervals" or "tweets".
const char* MapKindName(MapKind kind);

}  // namespace sylvora
