#include "views/session_views.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "indexing/term_document_matrix.h"
#include "temporal/text_stream.h"

namespace sylvora {

void ShowWordMap(PointMap2D& map, const ClusterMap& wordMap, std::int16_t labelThreshold) {
  map.SetCoordinates(wordMap.layout);
  for (std::int32_t i = 0; i < map.NodeCount(); ++i) {
    if (static_cast<std::size_t>(i) < wordMap.labels.size()) {
      map.SetNodeLabel(i, QString::fromStdString(wordMap.labels[static_cast<std::size_t>(i)]));
    }
    if (static_cast<std::size_t>(i) < wordMap.weights.size()) {
      map.SetWeight(i, wordMap.weights[static_cast<std::size_t>(i)]);
    }
  }
  map.SetShowNodeLabels(true);
  map.SetShowEdges(true);
  map.SetNodeShape(2);
  map.SetNodeLabelThreshold(labelThreshold);
  // Writing the base size back sizes every node as weight^0.75 x base and draws.
  map.SetBaseNodeSize(map.BaseNodeSize());
}

std::int16_t FirstLookLabelThreshold(const std::vector<float>& weights, std::size_t wanted) {
  if (weights.empty()) return 0;
  std::vector<float> heaviest(weights);
  std::sort(heaviest.begin(), heaviest.end(), std::greater<>());
  const auto labelled = [&heaviest](float threshold) {
    // The weights at or above the threshold lead the descending list.
    return static_cast<std::size_t>(
        std::upper_bound(heaviest.begin(), heaviest.end(), threshold, std::greater<>()) -
        heaviest.begin());
  };
  const float top = std::clamp(heaviest.front(), 0.0f, 32767.0f);
  // Candidates are whole thresholds up to the heaviest weight: the labelled count only falls.
  std::int16_t chosen = static_cast<std::int16_t>(std::floor(top));
  std::int32_t low = 0;
  std::int32_t high = chosen;
  while (low <= high) {
    const std::int32_t middle = (low + high) / 2;
    if (labelled(static_cast<float>(middle)) <= wanted) {
      chosen = static_cast<std::int16_t>(middle);
      high = middle - 1;
    } else {
      low = middle + 1;
    }
  }
  return chosen;
}

void ShowClusterMap(PointMap2D& map, const ClusterMap& clusterMap,
                    std::int16_t wordLabelThreshold) {
  if (clusterMap.kind == MapKind::kWords) {
    ShowWordMap(map, clusterMap, wordLabelThreshold);
    return;
  }
  map.SetCoordinates(clusterMap.layout);
  map.SetLabelsAsIndex();
  map.SetShowNodeLabels(true);
  map.SetShowEdges(true);
  map.SetNodeShape(2);
  map.SetNodeLabelThreshold(0);
  std::vector<float> weights(clusterMap.weights.begin(), clusterMap.weights.end());
  weights.resize(static_cast<std::size_t>(map.NodeCount()), 1.0f);
  map.SetNodeWeights(weights);
}

void ShowTermTimeline(TableLens& lens, const TextStream& wordModel,
                      const TermDocumentMatrix& wordIndex, const std::string& unitCode) {
  const SparseMatrixSingle& tifm = wordModel.TIFM();
  lens.SetNumDataTable(tifm);
  lens.SetVisibleColumns(wordModel.IntervalCount());
  lens.SetVisibleRows(lens.MaxVisibleRows());
  lens.SetCellStyle(TableLens::kLine);
  lens.SetNormedCellValues(false);
  for (std::int32_t t = 1; t <= tifm.RowCount(); ++t) {
    lens.SetRowName(t, QString::fromStdString(wordIndex.Term(t)));
  }
  for (std::int32_t i = 1; i <= wordModel.IntervalCount(); ++i) {
    lens.SetColumnName(i, QString::fromStdString(wordModel.IntervalDateTimeBounds(i, unitCode)[0]));
  }
}

}  // namespace sylvora
