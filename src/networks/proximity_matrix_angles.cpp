// Document-by-document and term-by-term matrices of an index's weights.
//
// A pair's dot product is a float sum of weight products in ascending order of the summed
// index. Terms (or documents) whose weight is 0 add nothing to such a sum, so only the
// co-occurring ones are visited: for node i, the products with every later node j are
// accumulated through the lists of the other side, in ascending order, which gives each
// pair the same float sum as a pass over every index would.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "indexing/term_document_matrix.h"
#include "networks/proximity_matrix.h"

namespace sylvora {

namespace {

struct Weight {
  std::int32_t node;  // the node of the other side (term or document)
  float value;
};

// The weights of `tdm` by document node (documents 0..DocCount-1, terms 0..TermCount-1), each
// rounded to a float; zero weights are left out. Document and term 0 have none: the index
// numbers both from 1.
std::vector<std::vector<Weight>> WeightsByDocument(const TermDocumentMatrix& tdm,
                                                   std::int32_t scheme, bool normalise) {
  const std::int32_t docs = std::max(tdm.DocCount(), 0);
  const std::int32_t terms = tdm.TermCount();
  std::vector<std::vector<Weight>> byDocument(static_cast<std::size_t>(docs));
  for (std::int32_t d = 1; d < docs; ++d) {
    const SparseVectorSingle* column = tdm.Matrix().Vector(d);
    if (column == nullptr) continue;
    auto& weights = byDocument[static_cast<std::size_t>(d)];
    for (const std::int32_t t : column->ElementIndexes()) {
      if (t < 1 || t >= terms) continue;
      const auto w = static_cast<float>(tdm.TermWeight(t, d, scheme, normalise));
      if (w != 0.0f) weights.push_back({t, w});
    }
  }
  return byDocument;
}

// The same weights by term node, each list in ascending document order.
std::vector<std::vector<Weight>> Transposed(const std::vector<std::vector<Weight>>& byDocument,
                                            std::int32_t terms) {
  std::vector<std::vector<Weight>> byTerm(static_cast<std::size_t>(std::max(terms, 0)));
  for (std::size_t d = 0; d < byDocument.size(); ++d) {
    for (const Weight& w : byDocument[d]) {
      byTerm[static_cast<std::size_t>(w.node)].push_back({static_cast<std::int32_t>(d), w.value});
    }
  }
  return byTerm;
}

// Double sum of the squared weights of each node.
std::vector<double> SquaredMagnitudes(const std::vector<std::vector<Weight>>& byNode) {
  std::vector<double> magnitudes(byNode.size(), 0.0);
  for (std::size_t i = 0; i < byNode.size(); ++i) {
    double sum = 0.0;
    for (const Weight& w : byNode[i]) sum += static_cast<double>(w.value) * w.value;
    magnitudes[i] = sum;
  }
  return magnitudes;
}

// Adds into dots[j], for every node j > i, the products of node i's weights with j's, in
// ascending order of the other side; `touched` lists the j that received a product (a j may
// appear more than once).
void AccumulateDots(std::size_t i, const std::vector<std::vector<Weight>>& byNode,
                    const std::vector<std::vector<Weight>>& byOther, std::vector<float>& dots,
                    std::vector<std::int32_t>& touched) {
  for (const Weight& own : byNode[i]) {
    const auto& sharing = byOther[static_cast<std::size_t>(own.node)];
    auto later = std::upper_bound(sharing.begin(), sharing.end(), static_cast<std::int32_t>(i),
                                  [](std::int32_t node, const Weight& w) { return node < w.node; });
    for (; later != sharing.end(); ++later) {
      const auto j = static_cast<std::size_t>(later->node);
      if (dots[j] == 0.0f) touched.push_back(later->node);
      dots[j] += later->value * own.value;
    }
  }
}

}  // namespace

void ProximityMatrix::ComputeDocAngles(const TermDocumentMatrix& iTDM, std::int32_t iWeight,
                                       bool normPreWeight, bool cosine, bool dissimilarity) {
  const std::int32_t docs = std::max(iTDM.DocCount(), 0);
  InitMatrix(docs, dissimilarity ? kDocumentDissimilarities : kDocumentSimilarities);
  const auto byDocument = WeightsByDocument(iTDM, iWeight, normPreWeight);
  const auto byTerm = Transposed(byDocument, iTDM.TermCount());
  const std::vector<double> magnitudes = SquaredMagnitudes(byDocument);

  std::vector<float> dots(static_cast<std::size_t>(docs), 0.0f);
  std::vector<std::int32_t> touched;
  for (std::int32_t i = 0; i + 1 < docs; ++i) {
    const auto row = static_cast<std::size_t>(i);
    AccumulateDots(row, byDocument, byTerm, dots, touched);
    const double rootI = std::sqrt(magnitudes[row]);
    for (std::int32_t j = i + 1; j < docs; ++j) {
      const float dot = dots[static_cast<std::size_t>(j)];
      float cell = dot;
      if (cosine) {
        const double denominator = std::sqrt(magnitudes[static_cast<std::size_t>(j)]) * rootI;
        cell = denominator > 0.0 ? static_cast<float>(dot / denominator) : 0.0f;
        if (dissimilarity) cell = 1.0f - cell;
      }
      values_[At(i, j)] = cell;
      values_[At(j, i)] = cell;
    }
    std::fill(dots.begin(), dots.end(), 0.0f);
    touched.clear();
  }
}

void ProximityMatrix::ComputeTermAngles(const TermDocumentMatrix& iTDM, std::int32_t iWeight,
                                        bool normPreWeight, bool cosine, bool dissimilarity) {
  const std::int32_t terms = std::max(iTDM.TermCount(), 0);
  InitMatrix(terms, dissimilarity ? kTermDissimilarities : kTermSimilarities);
  const auto byDocument = WeightsByDocument(iTDM, iWeight, normPreWeight);
  const auto byTerm = Transposed(byDocument, terms);
  const std::vector<double> magnitudes = SquaredMagnitudes(byTerm);

  std::vector<float> dots(static_cast<std::size_t>(terms), 0.0f);
  std::vector<std::int32_t> touched;
  for (std::int32_t i = 0; i + 1 < terms; ++i) {
    const auto row = static_cast<std::size_t>(i);
    AccumulateDots(row, byTerm, byDocument, dots, touched);
    const double rootI = std::sqrt(magnitudes[row]);
    std::sort(touched.begin(), touched.end());
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
    for (const std::int32_t j : touched) {
      const auto column = static_cast<std::size_t>(j);
      const float dot = dots[column];
      dots[column] = 0.0f;
      if (!(dot > 0.0f)) continue;  // no shared weight: no link
      float cell = dot;
      if (cosine) {
        cell = static_cast<float>(dot / (rootI * std::sqrt(magnitudes[column])));
        if (dissimilarity) cell = 1.0f - cell;
      }
      values_[At(i, j)] = cell;
      values_[At(j, i)] = cell;
    }
    touched.clear();
  }
}

}  // namespace sylvora
