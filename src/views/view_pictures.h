#pragma once
// PNG pictures of the views for programs without windows (the command-line tool). The header
// holds no Qt type, so its users need no Qt headers; the implementation draws offscreen with
// Qt Gui only (no widgets). When the program has no Qt application yet, one is made on the
// "offscreen" platform unless QT_QPA_PLATFORM names another.

#include <cstdint>
#include <string>

#include "session/cluster_map.h"

namespace sylvora {

class TermDocumentMatrix;
class TextStream;
struct IntervalSeries;

// The word map's start label threshold (documents per thousand: 12 %).
inline constexpr std::int16_t kWordMapLabelThreshold = 120;

struct PictureSize {
  std::int32_t width = 1600;
  std::int32_t height = 1200;
};

// A map as the cluster explorer draws it (word maps: labels at or above `labelThreshold`
// documents per thousand; every map: circles sized as weight^0.75 x base), with dark red labels
// that read on white and stand out from the black circles. False, with `error` saying why, when the
// map is empty or the file cannot be written.
bool WriteMapPng(const ClusterMap& clusterMap, std::int16_t labelThreshold, const std::string& path,
                 PictureSize size, std::string& error);

// The term time line (terms by intervals, Line style) as the time line explorer draws it,
// `size` high and at most `size` wide (narrower when there are few intervals, since wide
// columns turn the lens to its Text style).
// False, with `error` saying why, when the model has no intervals or the file cannot be
// written.
bool WriteTermTimelinePng(const TextStream& wordModel, const TermDocumentMatrix& wordIndex,
                          const std::string& unitCode, const std::string& path, PictureSize size,
                          std::string& error);

// The main time line of the series (ComputeIntervalSeries) as the time line explorer draws it,
// with the sentiment lines by `sentimentAverage` (0 mean, 1 mode, 2 median), `size` high and
// at most `size` wide (columns of at most 30 pixels). False, with `error` saying why, when the
// series has no intervals or the file cannot be written.
bool WriteTimeLineChartPng(const IntervalSeries& series, std::int16_t sentimentAverage,
                           const std::string& path, PictureSize size, std::string& error);

}  // namespace sylvora
