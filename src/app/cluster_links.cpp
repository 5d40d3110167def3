#include "app/cluster_links.h"

#include <algorithm>
#include <cmath>

#include "indexing/term_document_matrix.h"
#include "sparse/number_format.h"
#include "temporal/text_stream.h"
#include "views/point_map_2d.h"

namespace sylvora::app {

BestTwoTerms PickBestTwoTerms(const std::vector<float>& weighted) {
  BestTwoTerms result;
  float bestScore = 0.0f;
  for (std::size_t t = 1; t < weighted.size(); ++t) {
    if (weighted[t] >= bestScore) {
      result.second = result.best;
      result.best = static_cast<std::int32_t>(t);
      bestScore = weighted[t];
    }
  }
  return result;
}

std::vector<float> WeightedBurstScores(const std::vector<float>& zScores,
                                       const std::vector<float>& frequencies) {
  std::vector<float> weighted(zScores.size(), 0.0f);
  for (std::size_t t = 1; t < zScores.size(); ++t) {
    const double frequency = t < frequencies.size() ? frequencies[t] : 0.0;
    // ln(1) = 0 would turn an infinite or undefined z-score into NaN: absent terms weigh 0.
    if (frequency == 0.0) continue;
    weighted[t] = static_cast<float>(static_cast<double>(zScores[t]) * std::log(frequency + 1.0));
  }
  return weighted;
}

QString IntervalTooltip(TextStream& wordModel, const TermDocumentMatrix& wordIndex,
                        std::int32_t interval) {
  if (interval < 1 || interval > wordModel.IntervalCount()) return {};
  const std::vector<float> zScores =
      wordModel.IntervalBurstScores(interval, TextStream::kZScoreBurst);
  std::vector<float> frequencies(zScores.size(), 0.0f);
  const SparseVectorSingle* column = wordModel.TIFM().Vector(interval);
  if (column != nullptr) {
    const auto terms = column->ElementIndexes();
    const auto values = column->ElementValues();
    for (std::size_t k = 0; k < terms.size(); ++k) {
      if (terms[k] >= 1 && static_cast<std::size_t>(terms[k]) < frequencies.size()) {
        frequencies[static_cast<std::size_t>(terms[k])] = values[k];
      }
    }
  }
  const BestTwoTerms best = PickBestTwoTerms(WeightedBurstScores(zScores, frequencies));
  return QString::number(interval) + QStringLiteral(": ") +
         QString::fromStdString(wordIndex.Term(best.best)) + QStringLiteral(", ") +
         QString::fromStdString(wordIndex.Term(best.second));
}

QString LabelThresholdTip(int value) {
  return QStringLiteral("Doc Freq >= ") +
         QString::fromStdString(GeneralNumber(static_cast<float>(value) / 10.0f)) +
         QStringLiteral("%");
}

std::int16_t GradientEntry(std::int32_t count, std::int32_t visible) {
  // nearbyint follows the default rounding mode: to nearest, halves to even.
  return static_cast<std::int16_t>(
      std::nearbyint(static_cast<double>(count) / static_cast<double>(visible) * 9.0));
}

void SetVisibleWordGradient(PointMap2D& map) { map.SetClusterColorRange(0, 9, 0, 0, 0, 0, 255, 0); }

std::vector<bool> VisibleTerms(const PointMap2D& wordMap, std::int32_t& visibleCount) {
  visibleCount = 0;
  std::vector<bool> visible(static_cast<std::size_t>(wordMap.NodeCount()) + 1, false);
  for (std::int32_t node = 0; node < wordMap.NodeCount(); ++node) {
    if (!wordMap.NodeVisible(node)) continue;
    visible[static_cast<std::size_t>(node) + 1] = true;
    ++visibleCount;
  }
  return visible;
}

namespace {

// The visible terms among a column's stored (non-zero) elements.
std::int32_t CountVisible(const SparseVectorSingle* column, const std::vector<bool>& visible) {
  if (column == nullptr) return 0;
  std::int32_t count = 0;
  const auto terms = column->ElementIndexes();
  const auto values = column->ElementValues();
  for (std::size_t k = 0; k < terms.size(); ++k) {
    const auto term = static_cast<std::size_t>(terms[k]);
    if (terms[k] >= 1 && term < visible.size() && visible[term] && values[k] != 0.0f) ++count;
  }
  return count;
}

}  // namespace

std::vector<std::int32_t> VisibleWordsPerInterval(const TextStream& wordModel,
                                                  const std::vector<bool>& visible) {
  const std::int32_t intervals = wordModel.IntervalCount();
  std::vector<std::int32_t> counts(static_cast<std::size_t>(intervals) + 1, 0);
  for (std::int32_t k = 1; k <= intervals; ++k) {
    counts[static_cast<std::size_t>(k)] = CountVisible(wordModel.TIFM().Vector(k), visible);
  }
  return counts;
}

std::vector<std::int32_t> VisibleWordsPerDocument(const TermDocumentMatrix& wordIndex,
                                                  std::int32_t first, std::int32_t count,
                                                  const std::vector<bool>& visible) {
  std::vector<std::int32_t> counts(static_cast<std::size_t>(std::max(count, 0)), 0);
  for (std::int32_t i = 0; i < count; ++i) {
    // Corpus row d is column d + 1 of the index's matrix.
    counts[static_cast<std::size_t>(i)] =
        CountVisible(wordIndex.Matrix().Vector(first + i + 1), visible);
  }
  return counts;
}

}  // namespace sylvora::app
