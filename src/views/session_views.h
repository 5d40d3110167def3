#pragma once
// The session's models shown in the two views, set up the way the application's tabs set them
// up: the word map of the cluster explorer and the term time line of the time line explorer.
// Shared by the application, the demo and the picture export.

#include <cstdint>
#include <string>
#include <vector>

#include "session/cluster_map.h"
#include "views/point_map_2d.h"
#include "views/table_lens.h"
#include "views/time_line_chart_series.h"
#include "views/view_pictures.h"

namespace sylvora {

class TermDocumentMatrix;
class TextStream;

// Draws `wordMap` in `map`: labels = the terms, labels and links shown, circle outlines,
// weights = documents per thousand, the label threshold, every node sized weight^0.75 x base.
// The map keeps its colours; the caller may set a readable label colour first.
void ShowWordMap(PointMap2D& map, const ClusterMap& wordMap,
                 std::int16_t labelThreshold = kWordMapLabelThreshold);

// The label threshold (documents per thousand) that labels about `wanted` of the heaviest words
// of a word map with these weights: the smallest whole threshold that labels at most `wanted`
// words, and never one that labels none.
std::int16_t FirstLookLabelThreshold(const std::vector<float>& weights, std::size_t wanted = 30);

// Draws any map of the cluster explorer: the word map as ShowWordMap does; the interval and
// tweet maps with their weights, labels "1".."n" (all shown), links and circle outlines.
void ShowClusterMap(PointMap2D& map, const ClusterMap& clusterMap,
                    std::int16_t wordLabelThreshold = kWordMapLabelThreshold);

// Shows the words model's TIFM in `lens`: terms as rows (named by `wordIndex`), intervals as
// columns named by their start date-time in `unitCode`, all intervals visible, as many rows as
// fit, Line style, raw values. The model must outlive the lens's use of it.
void ShowTermTimeline(TableLens& lens, const TextStream& wordModel,
                      const TermDocumentMatrix& wordIndex, const std::string& unitCode);

}  // namespace sylvora
