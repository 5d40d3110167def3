#include "views/session_views.h"

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
