// Reading an index: terms, frequencies and weights.

#include "indexing/term_document_matrix.h"

#include <cmath>
#include <limits>

#include "common/leading_number.h"
#include "indexing/character_classes.h"
#include "indexing/porter.h"

namespace sylvora {
namespace {

bool InRange(std::int32_t index, std::size_t count) {
  return index >= 1 && static_cast<std::size_t>(index) <= count;
}

}  // namespace

const std::string& TermDocumentMatrix::Term(std::int32_t mIndex) const {
  static const std::string kNone;
  return InRange(mIndex, terms_.size()) ? terms_[static_cast<std::size_t>(mIndex) - 1] : kNone;
}

std::int32_t TermDocumentMatrix::TermIndex(std::string_view termStr) const {
  const bool stem = isStemmed_ && IsLatinScriptWord(termStr);
  const std::string stemmed = stem ? Porter::Stem(termStr) : std::string();
  const std::string_view wanted = stem ? std::string_view(stemmed) : termStr;
  for (std::size_t t = 0; t < terms_.size(); ++t) {
    if (terms_[t] == wanted) return static_cast<std::int32_t>(t) + 1;
  }
  return -1;
}

std::int32_t TermDocumentMatrix::LetterStart(int bucket) const {
  return bucket >= 0 && bucket < static_cast<int>(letterStart_.size())
             ? letterStart_[static_cast<std::size_t>(bucket)]
             : 0;
}

std::int32_t TermDocumentMatrix::DocFreq(std::int32_t mIndex) const {
  return InRange(mIndex, docFreq_.size()) ? docFreq_[static_cast<std::size_t>(mIndex) - 1] : 0;
}

std::int32_t TermDocumentMatrix::GlobalFreq(std::int32_t mIndex) const {
  return InRange(mIndex, globalFreq_.size()) ? globalFreq_[static_cast<std::size_t>(mIndex) - 1]
                                             : 0;
}

std::int16_t TermDocumentMatrix::TermFreq(std::int32_t mIndex, std::int32_t nIndex) const {
  const float cell = matrix_.Value(mIndex, nIndex);
  if (!std::isfinite(cell)) return 0;
  const std::int64_t rounded = RoundHalfEven(cell);
  if (rounded < std::numeric_limits<std::int16_t>::min() ||
      rounded > std::numeric_limits<std::int16_t>::max()) {
    return 0;
  }
  return static_cast<std::int16_t>(rounded);
}

double TermDocumentMatrix::GlobalFactor(std::int32_t term, std::int32_t scheme) const {
  switch (scheme) {
    case kRawFrequency:
      return 1.0;
    case kInverseDocumentFrequency: {
      const std::int32_t df = DocFreq(term);
      return df > 0 ? std::log(static_cast<double>(docCount_) / df) : 0.0;
    }
    case kMeanFrequency: {
      const std::int32_t df = DocFreq(term);
      return df > 0 ? static_cast<double>(GlobalFreq(term)) / df : 0.0;
    }
    default:
      return 0.0;
  }
}

std::int32_t TermDocumentMatrix::DocumentMaximum(std::int32_t nIndex) const {
  const SparseVectorSingle* column = matrix_.Vector(nIndex);
  if (column == nullptr) return 0;
  // Walking the stored cells in term order gives the running maximum of the walk over every
  // term: an absent cell (0) never exceeds it.
  const auto elements = column->ElementIndexes();
  const auto values = column->ElementValues();
  std::int32_t maximum = 0;
  for (std::size_t k = 0; k < elements.size() && elements[k] <= TermCount(); ++k) {
    if (static_cast<double>(values[k]) > maximum) {
      maximum = static_cast<std::int32_t>(RoundHalfEven(values[k]));
    }
  }
  return maximum;
}

double TermDocumentMatrix::WeightedCell(float cell, std::int32_t term, std::int32_t scheme,
                                        bool normalise, std::int32_t documentMaximum) const {
  float tf = cell;
  if (normalise) {
    if (documentMaximum == 0) return 0.0;
    tf = static_cast<float>(static_cast<double>(tf) / documentMaximum);
  }
  if (weightsApplied_) return tf;
  return static_cast<double>(tf) * GlobalFactor(term, scheme);
}

double TermDocumentMatrix::TermWeight(std::int32_t mIndex, std::int32_t nIndex, std::int32_t scheme,
                                      bool normalise) const {
  if (!InRange(mIndex, terms_.size()) || nIndex < 1 || nIndex > matrix_.ColCount()) return 0.0;
  return WeightedCell(matrix_.Value(mIndex, nIndex), mIndex, scheme, normalise,
                      normalise ? DocumentMaximum(nIndex) : 0);
}

}  // namespace sylvora
