// The scores of the interval model: bursts, novelty, homogeneity, links and sentiment.

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/errors.h"
#include "common/leading_number.h"
#include "temporal/text_stream.h"

namespace sylvora {
namespace {

// ln(100 f + 1), with the argument formed in single precision as the scores always did.
double Damping(float frequency) { return std::log(static_cast<double>(100.0f * frequency + 1.0f)); }

// A cell as Text() would read it, without a string copy when the field exists.
std::string_view CellText(const DocumentSet& corpus, DocIndex row, FieldIndex field,
                          std::string& scratch) {
  if (field < corpus.FieldCount()) return corpus.Cell(row, field);
  scratch = corpus.Text(row, field);
  return scratch;
}

std::int16_t Sign(std::int16_t value) { return value > 0 ? 1 : (value < 0 ? -1 : 0); }

}  // namespace

float TextStream::RatioBurstScore(std::int32_t termIndex, std::int32_t intervalIndex) const {
  if (tdm_ == nullptr) return 0.0f;
  const float f = tifm_.Value(termIndex, intervalIndex);
  const double share = static_cast<double>(tdm_->DocFreq(termIndex)) / tdm_->DocCount();
  return static_cast<float>(f / share * Damping(f));
}

float TextStream::TemporalRatioBurstScore(std::int32_t termIndex,
                                          std::int32_t intervalIndex) const {
  if (intervalIndex < 1) return 0.0f;
  const float previous = intervalIndex == 1 ? 0.0f : tifm_.Value(termIndex, intervalIndex - 1);
  if (previous <= 0.0f) return RatioBurstScore(termIndex, intervalIndex);
  const float f = tifm_.Value(termIndex, intervalIndex);
  return static_cast<float>(static_cast<double>(f / previous) * Damping(f));
}

void TextStream::ComputeZScoreStatistics() {
  zStatisticsComputed_ = true;
  if (intervalCount_ < 1) return;
  const std::size_t terms = zMeanCache_.size();
  std::vector<double> sums(terms, 0.0);
  std::vector<std::int32_t> stored(terms, 0);
  const std::int32_t columns = std::min(intervalCount_, tifm_.ColCount());
  for (std::int32_t i = 1; i <= columns; ++i) {
    const SparseVectorSingle& column = *tifm_.Vector(i);
    const auto elements = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < elements.size(); ++k) {
      const auto t = static_cast<std::size_t>(elements[k]);
      if (t >= terms) continue;
      sums[t] += values[k];
      ++stored[t];
    }
  }
  const double count = intervalCount_;
  std::vector<double> means(terms, 0.0);
  std::vector<double> squares(terms, 0.0);
  for (std::size_t t = 1; t < terms; ++t) means[t] = sums[t] / count;
  for (std::int32_t i = 1; i <= columns; ++i) {
    const SparseVectorSingle& column = *tifm_.Vector(i);
    const auto elements = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < elements.size(); ++k) {
      const auto t = static_cast<std::size_t>(elements[k]);
      if (t >= terms) continue;
      const double d = values[k] - means[t];
      squares[t] += d * d;
    }
  }
  for (std::size_t t = 1; t < terms; ++t) {
    // Every interval without a stored cell for the term contributes (0 - m)^2.
    const double absent = count - stored[t];
    const double total = squares[t] + absent * means[t] * means[t];
    zMeanCache_[t] = static_cast<float>(means[t]);
    zDeviationCache_[t] = static_cast<float>(std::sqrt(total / count));
  }
}

float TextStream::TermIntervalZScore(std::int32_t termIndex, std::int32_t intervalIndex) {
  if (termIndex < 1 || static_cast<std::size_t>(termIndex) >= zMeanCache_.size()) return 0.0f;
  const auto t = static_cast<std::size_t>(termIndex);
  if (zMeanCache_[t] == 0.0f && !zStatisticsComputed_) ComputeZScoreStatistics();
  const float f = tifm_.Value(termIndex, intervalIndex);
  // IEEE division: a deviation of 0 gives +-infinity or NaN, as intended.
  return (f - zMeanCache_[t]) / zDeviationCache_[t];
}

std::vector<float> TextStream::IntervalBurstScores(std::int32_t intervalIndex,
                                                   std::int32_t measure) {
  const std::int32_t terms = tdm_ != nullptr ? tdm_->TermCount() : 0;
  std::vector<float> scores(static_cast<std::size_t>(terms) + 1, 0.0f);
  if (measure < kRatioBurst || measure > kZScoreBurst) return scores;
  for (std::int32_t t = 1; t <= terms; ++t) {
    float& score = scores[static_cast<std::size_t>(t)];
    switch (measure) {
      case kRatioBurst:
        score = RatioBurstScore(t, intervalIndex);
        break;
      case kTemporalRatioBurst:
        score = TemporalRatioBurstScore(t, intervalIndex);
        break;
      default:
        score = TermIntervalZScore(t, intervalIndex);
        break;
    }
  }
  return scores;
}

float TextStream::IntervalNoveltyScore(std::int32_t intervalIndex, std::uint8_t windowSz) const {
  if (windowSz == 0 || intervalIndex - windowSz < 1) return 0.0f;
  double sum = 0.0;
  for (std::int32_t k = intervalIndex - 1; k >= intervalIndex - windowSz; --k) {
    sum += nm_.Value(intervalIndex, k);
  }
  return static_cast<float>(1.0 - sum / windowSz);
}

float TextStream::IntervalHomogScore(std::int32_t intervalIndex, std::int16_t sampleStep) {
  if (intervalIndex == 0) return 0.0f;
  const std::size_t i = CheckedInterval(intervalIndex, "IntervalHomogScore");
  if (homogCache_[i] != 0.0f) return homogCache_[i];
  const SparseMatrixSingle& matrix = tdm_->Matrix();
  const DocIndex first = firstDocumentIndex_[i];
  const DocIndex last = lastDocumentIndex_[i];
  const DocIndex step = std::max<DocIndex>(sampleStep, 1);
  double sum = 0.0;
  std::int64_t pairs = 0;
  if (step == 1 && last > first && first >= 0 && last < matrix.ColCount()) {
    // Every pair: one sparse product over the interval's columns instead of n^2 / 2 merges.
    sum = matrix.PairCosineSum(first + 1, last + 1);
    pairs = static_cast<std::int64_t>(last - first) * (last - first + 1) / 2;
  } else {
    for (DocIndex d1 = first; d1 < last; ++d1) {
      for (DocIndex d2 = d1 + 1; d2 <= last; d2 += step) {
        sum += matrix.GetSimilarity(d1 + 1, d2 + 1, 2);
        ++pairs;
      }
    }
  }
  const float score = intervalDocCount_[i] >= 2 && pairs > 0
                          ? static_cast<float>(sum / static_cast<double>(pairs))
                          : 0.0f;
  homogCache_[i] = score;
  return score;
}

std::int16_t TextStream::ChartHomogSampleStep(std::int32_t intervalIndex, std::int32_t docCount) {
  if (intervalIndex == 1) return 1;
  return static_cast<std::int16_t>(
      std::clamp<std::int32_t>(docCount, 1, std::numeric_limits<std::int16_t>::max()));
}

std::int32_t TextStream::URLCount(std::int32_t intervalIndex) const {
  if (intervalIndex == 0) return 0;
  const std::size_t i = CheckedInterval(intervalIndex, "URLCount");
  const FieldIndex field = corpus_->URLField();
  std::string scratch;
  std::int32_t count = 0;
  for (DocIndex d = firstDocumentIndex_[i]; d <= lastDocumentIndex_[i]; ++d) {
    if (!CellText(*corpus_, d, field, scratch).empty()) ++count;
  }
  return count;
}

float TextStream::URLRatio(std::int32_t intervalIndex) const {
  const std::int32_t count = URLCount(intervalIndex);
  const std::int32_t n = IntervalDocCount(intervalIndex);
  if (count == 0 || n == 0) return 0.0f;
  return static_cast<float>(static_cast<double>(count) / n);
}

void TextStream::BuildSentimentIntervalFrequencyModel(FieldIndex posField, FieldIndex negField) {
  sifm_.Reset(kSentimentRows, intervalCount_);
  // A model that was not built (fewer than two intervals) has no documents to place.
  if (intervalCount_ < 2) return;
  // The second document tells whether the corpus carries sentiment at all.
  if (LeadingNumber(corpus_->Text(1, posField)) == 0.0 ||
      LeadingNumber(corpus_->Text(1, negField)) == 0.0) {
    return;
  }
  const DocIndex documents = corpus_->DocumentCount();
  std::array<float, kSentimentRows + 1> counters{};
  std::string scratch;
  std::int32_t j = 1;
  for (DocIndex d = 0; d < documents; ++d) {
    std::int64_t p = LeadingWholeNumber(CellText(*corpus_, d, posField, scratch));
    if (p < 1 || p > 5) p = 1;
    counters[static_cast<std::size_t>(p + 5)] += 1.0f;
    std::int64_t q = LeadingWholeNumber(CellText(*corpus_, d, negField, scratch));
    if (q < -5 || q > -1) q = -1;
    counters[static_cast<std::size_t>(q + 6)] += 1.0f;
    if (d != lastDocumentIndex_[static_cast<std::size_t>(j)]) continue;
    for (std::int32_t row = 1; row <= kSentimentRows; ++row) {
      sifm_.SetValue(row, j, counters[static_cast<std::size_t>(row)]);
    }
    if (d != documents - 1 && j < intervalCount_) ++j;
    // Empty intervals keep their zero columns.
    while (intervalDocCount_[static_cast<std::size_t>(j)] == 0 && j < intervalCount_) ++j;
    counters.fill(0.0f);
  }
}

float TextStream::SentimentCount(std::int32_t intervalIndex, std::int32_t sign,
                                 std::int32_t strength) const {
  const std::int32_t row = sign < 0 ? 6 - strength : 5 + strength;
  return sifm_.Value(row, intervalIndex);
}

float TextStream::IntervalSentimentMean(std::int32_t intervalIndex, std::int16_t& valence) const {
  valence = Sign(valence);
  const std::int32_t n = IntervalDocCount(intervalIndex);
  if (n == 0 || valence == 0) return 0.0f;
  double sum = 0.0;
  for (std::int32_t k = 1; k <= 5; ++k) sum += k * SentimentCount(intervalIndex, valence, k);
  return static_cast<float>(sum / n);
}

std::int32_t TextStream::IntervalSentimentMode(std::int32_t intervalIndex,
                                               std::int16_t& valence) const {
  valence = Sign(valence);
  const std::int32_t n = IntervalDocCount(intervalIndex);
  if (n == 0 || valence == 0) return 0;
  float best = 0.0f;
  std::int32_t mode = 0;
  for (std::int32_t k = 1; k <= 5; ++k) {
    const float count = SentimentCount(intervalIndex, valence, k);
    if (count > best) best = count, mode = k;
  }
  return mode;
}

std::int32_t TextStream::IntervalSentimentMedian(std::int32_t intervalIndex,
                                                 std::int16_t& valence) const {
  valence = Sign(valence);
  const std::int32_t n = IntervalDocCount(intervalIndex);
  if (n == 0 || valence == 0) return 0;
  double accumulated = 0.0;
  for (std::int32_t k = 1; k <= 5; ++k) {
    accumulated += SentimentCount(intervalIndex, valence, k);
    if (accumulated / n > 0.5) return k;
  }
  return 0;
}

std::vector<std::array<float, 2>> TextStream::TermSentimentScores(std::int32_t intervalIndex,
                                                                  FieldIndex posSentIdx,
                                                                  FieldIndex negSentIdx) const {
  const std::int32_t terms = tdm_ != nullptr ? tdm_->TermCount() : 0;
  std::vector<std::array<float, 2>> scores(static_cast<std::size_t>(terms) + 1, {0.0f, 0.0f});
  if (intervalIndex == 0 || tdm_ == nullptr || corpus_ == nullptr) return scores;
  const std::size_t i = CheckedInterval(intervalIndex, "TermSentimentScores");
  std::vector<std::array<double, 2>> sums(scores.size(), {0.0, 0.0});
  std::vector<std::int32_t> counts(scores.size(), 0);
  const SparseMatrixSingle& matrix = tdm_->Matrix();
  std::string scratch;
  for (DocIndex d = firstDocumentIndex_[i]; d <= lastDocumentIndex_[i]; ++d) {
    const SparseVectorSingle* column = matrix.Vector(d + 1);
    if (column == nullptr) continue;
    const double positive = LeadingNumber(CellText(*corpus_, d, posSentIdx, scratch));
    const double negative = LeadingNumber(CellText(*corpus_, d, negSentIdx, scratch));
    const auto elements = column->ElementIndexes();
    const auto values = column->ElementValues();
    for (std::size_t k = 0; k < elements.size(); ++k) {
      const auto t = static_cast<std::size_t>(elements[k]);
      if (values[k] == 0.0f || t >= scores.size()) continue;
      sums[t][0] += positive;
      sums[t][1] += negative;
      ++counts[t];
    }
  }
  for (std::size_t t = 1; t < scores.size(); ++t) {
    if (counts[t] == 0) continue;
    scores[t] = {static_cast<float>(sums[t][0] / counts[t]),
                 static_cast<float>(sums[t][1] / counts[t])};
  }
  return scores;
}

float TextStream::TermIntervalSentimentMean(std::int32_t, std::int32_t, std::int16_t) const {
  return 0.0f;
}

}  // namespace sylvora
