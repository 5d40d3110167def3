#include "sparse/sparse_vector_single.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

#include "sparse/sorting_helpers.h"

namespace sylvora {

namespace {

// The bound that SelectTopK starts its smallest value from.
constexpr float kSelectHighest = 100000000.0f;

bool ValidListIndex(std::int32_t index, std::size_t count) {
  return index >= 1 && static_cast<std::size_t>(index) <= count;
}

}  // namespace

std::int32_t SparseVectorSingle::DimensionCount() const {
  if (declaredDimensions_ != 0) return declaredDimensions_;
  return elements_.empty() ? 0 : elements_.back();
}

std::int64_t SparseVectorSingle::Find(std::int32_t element) const {
  const auto it = std::lower_bound(elements_.begin(), elements_.end(), element);
  if (it == elements_.end() || *it != element) return -1;
  return it - elements_.begin();
}

void SparseVectorSingle::DeleteElement(std::int32_t element) {
  const std::int64_t at = Find(element);
  if (at < 0) return;
  elements_.erase(elements_.begin() + at);
  values_.erase(values_.begin() + at);
}

float SparseVectorSingle::Value(std::int32_t element) const {
  const std::int64_t at = Find(element);
  return at < 0 ? 0.0f : values_[static_cast<std::size_t>(at)];
}

void SparseVectorSingle::SetValue(std::int32_t element, float value) {
  if (value <= 0.0f) {
    DeleteElement(element);
    return;
  }
  if (element < 1) return;
  if (elements_.empty() || element > elements_.back()) {
    Append(element, value);
    return;
  }
  const auto it = std::lower_bound(elements_.begin(), elements_.end(), element);
  const auto at = it - elements_.begin();
  if (*it == element) {
    values_[static_cast<std::size_t>(at)] = value;
    return;
  }
  elements_.insert(it, element);
  values_.insert(values_.begin() + at, value);
}

bool SparseVectorSingle::IsEmpty(std::int32_t element) const { return Find(element) < 0; }

float SparseVectorSingle::ValueByListIndex(std::int32_t index) const {
  if (!ValidListIndex(index, values_.size())) return 0.0f;
  return values_[static_cast<std::size_t>(index) - 1];
}

void SparseVectorSingle::SetValueByListIndex(std::int32_t index, float value) {
  if (!ValidListIndex(index, values_.size())) return;
  values_[static_cast<std::size_t>(index) - 1] = value;
}

float SparseVectorSingle::ElementByListIndex(std::int32_t index) const {
  if (!ValidListIndex(index, elements_.size())) return 0.0f;
  return static_cast<float>(elements_[static_cast<std::size_t>(index) - 1]);
}

float SparseVectorSingle::Magnitude() const {
  float sum = 0.0f;
  for (const float v : values_) sum += v * v;
  return std::sqrt(sum);
}

float SparseVectorSingle::GetSimilarity(std::span<const float> vec2Arr, std::int32_t metric,
                                        float vec2Magnitude) const {
  float dot = 0.0f;
  for (std::size_t k = 0; k < elements_.size(); ++k) {
    const auto element = static_cast<std::size_t>(elements_[k]);
    if (element < vec2Arr.size()) dot += vec2Arr[element] * values_[k];
  }
  if (metric != 2) return dot;
  if (vec2Magnitude <= 0.0f) return -1.0f;
  if (dot > 0.0f) return dot / (Magnitude() * vec2Magnitude);
  return dot;
}

std::vector<float> SparseVectorSingle::GetVectorArr(std::int32_t numElements) const {
  if (numElements == 0) numElements = declaredDimensions_;
  if (numElements < 0) numElements = 0;
  std::vector<float> dense(static_cast<std::size_t>(numElements) + 1, 0.0f);
  for (std::size_t k = 0; k < elements_.size(); ++k) {
    if (elements_[k] > numElements) break;
    dense[static_cast<std::size_t>(elements_[k])] = values_[k];
  }
  return dense;
}

void SparseVectorSingle::SetVector(std::span<const float> denseVector, std::int32_t dimensions) {
  const std::int32_t n = std::max<std::int32_t>(dimensions, 0);
  const std::size_t last =
      std::min<std::size_t>(static_cast<std::size_t>(n) + 1, denseVector.size());
  std::size_t nonZero = 0;
  for (std::size_t e = 1; e < last; ++e) nonZero += denseVector[e] != 0.0f ? 1 : 0;

  std::vector<std::int32_t> elements;
  std::vector<float> values;
  elements.reserve(nonZero);
  values.reserve(nonZero);
  for (std::size_t e = 1; e < last; ++e) {
    if (denseVector[e] == 0.0f) continue;
    elements.push_back(static_cast<std::int32_t>(e));
    values.push_back(denseVector[e]);
  }
  Assign(std::move(elements), std::move(values));
  declaredDimensions_ = n;
}

void SparseVectorSingle::Assign(std::vector<std::int32_t> elements, std::vector<float> values) {
  elements_ = std::move(elements);
  values_ = std::move(values);
}

void SparseVectorSingle::TruncateLocal(std::int32_t count) {
  const std::int32_t n = DimensionCount();
  const std::int32_t keep = std::min(count, n);

  // The picks of SelectTopK over the dense copy 1..n are the positions in order of (value
  // descending, position ascending) as long as every value lies strictly above its sentinel
  // and none is NaN. Then only the stored elements need sorting: unstored positions are
  // zeros, which rank between the positive and the negative values and are not stored again.
  std::vector<std::size_t> positive;
  std::vector<std::size_t> negative;
  float smallest = kSelectHighest;
  bool ordered = true;
  std::size_t stored = 0;
  for (std::size_t k = 0; k < elements_.size() && elements_[k] <= n; ++k) {
    ++stored;
    const float v = values_[k];
    if (std::isnan(v)) ordered = false;
    smallest = std::min(smallest, v);
    if (v > 0.0f) positive.push_back(k);
    if (v < 0.0f) negative.push_back(k);
  }
  if (stored < static_cast<std::size_t>(n)) smallest = std::min(smallest, 0.0f);
  if (!(smallest - 1.0f < smallest)) ordered = false;

  if (!ordered) {
    // Rare values (NaN, or a smallest value so large that subtracting 1 leaves it unchanged
    // in float): ask SelectTopK itself.
    const std::vector<float> dense = GetVectorArr(n);
    std::int32_t picks = keep;
    const std::vector<std::int32_t> top = SelectTopK(dense, -1, picks, true, 1);
    std::vector<float> kept(dense.size(), 0.0f);
    for (std::size_t slot = 1; slot < top.size(); ++slot) {
      const auto position = static_cast<std::size_t>(top[slot]);
      if (top[slot] >= 1) kept[position] = dense[position];
    }
    SetVector(kept, n);
    return;
  }

  const auto better = [this](std::size_t a, std::size_t b) {
    if (values_[a] != values_[b]) return values_[a] > values_[b];
    return a < b;
  };
  std::sort(positive.begin(), positive.end(), better);
  std::sort(negative.begin(), negative.end(), better);

  const std::size_t slots = keep > 0 ? static_cast<std::size_t>(keep) : 0;
  const std::size_t zeros = static_cast<std::size_t>(n) - positive.size() - negative.size();
  std::vector<std::size_t> chosen(positive.begin(),
                                  positive.begin() + std::min(slots, positive.size()));
  std::size_t left = slots - chosen.size();
  left -= std::min(left, zeros);
  chosen.insert(chosen.end(), negative.begin(), negative.begin() + std::min(left, negative.size()));
  std::sort(chosen.begin(), chosen.end());

  std::vector<std::int32_t> elements(chosen.size());
  std::vector<float> values(chosen.size());
  for (std::size_t k = 0; k < chosen.size(); ++k) {
    elements[k] = elements_[chosen[k]];
    values[k] = values_[chosen[k]];
  }
  Assign(std::move(elements), std::move(values));
  declaredDimensions_ = n;
}

std::int32_t SparseVectorSingle::FirstElementIndex() {
  cursor_ = 1;
  return elements_.empty() ? -1 : elements_.front();
}

std::int32_t SparseVectorSingle::LastElementIndex() {
  cursor_ = NZElementCount();
  return elements_.empty() ? -1 : elements_.back();
}

std::int32_t SparseVectorSingle::NextElementIndex() {
  if (cursor_ <= NZElementCount()) ++cursor_;
  if (cursor_ < 1 || cursor_ > NZElementCount()) return -1;
  return elements_[static_cast<std::size_t>(cursor_) - 1];
}

void SparseVectorSingle::Normalise() {
  const float magnitude = Magnitude();
  if (magnitude == 0.0f) return;
  for (float& v : values_) v /= magnitude;
}

}  // namespace sylvora
