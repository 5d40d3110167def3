#include "sparse/sparse_vector_single.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "sparse/sorting_helpers.h"

namespace sylvora {

namespace {

// The bound that SelectTopK starts its smallest value from.
constexpr float kSelectHighest = 100000000.0f;

bool ValidListIndex(std::int32_t index, std::size_t count) {
  return index >= 1 && static_cast<std::size_t>(index) <= count;
}

// The capacity after growing a full block of `capacity` entries to hold at least `needed`:
// doubling keeps appends amortised O(1).
std::size_t GrownCapacity(std::size_t capacity, std::size_t needed) {
  constexpr auto kLargest = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  return std::max({needed, std::min(2 * capacity, kLargest), std::size_t{2}});
}

}  // namespace

SparseVectorSingle::SparseVectorSingle(const SparseVectorSingle& other)
    : declaredDimensions_(other.Dimensions()), cursor_(other.cursor_) {
  Assign(other.ElementIndexes(), other.ElementValues());
}

SparseVectorSingle::SparseVectorSingle(SparseVectorSingle&& other) noexcept
    : declaredDimensions_(other.declaredDimensions_), cursor_(other.cursor_) {
  std::memcpy(static_cast<void*>(&single_), static_cast<const void*>(&other.single_),
              sizeof(single_));  // the block pointer or the one entry, whichever it holds
  other.block_ = nullptr;
  other.declaredDimensions_ &= ~kSingleFlag;
}

SparseVectorSingle& SparseVectorSingle::operator=(const SparseVectorSingle& other) {
  if (this == &other) return *this;
  const std::size_t count = other.Count();
  if (count > Capacity()) {
    Assign(other.ElementIndexes(), other.ElementValues());
  } else if (count == 0) {
    SetCount(0);
  } else {
    // The storage is big enough: reuse it rather than allocate.
    std::memmove(Elements(), other.Elements(), count * sizeof(std::int32_t));
    std::memmove(Values(), other.Values(), count * sizeof(float));
    SetCount(count);
  }
  SetDimensions(other.Dimensions());
  cursor_ = other.cursor_;
  return *this;
}

SparseVectorSingle& SparseVectorSingle::operator=(SparseVectorSingle&& other) noexcept {
  if (this == &other) return *this;
  DropStorage();
  std::memcpy(static_cast<void*>(&single_), static_cast<const void*>(&other.single_),
              sizeof(single_));
  declaredDimensions_ = other.declaredDimensions_;
  cursor_ = other.cursor_;
  other.block_ = nullptr;
  other.declaredDimensions_ &= ~kSingleFlag;
  return *this;
}

SparseVectorSingle::~SparseVectorSingle() { DropStorage(); }

void SparseVectorSingle::DropStorage() {
  if (IsSingle()) {
    declaredDimensions_ &= ~kSingleFlag;
  } else {
    Free(block_);
  }
  block_ = nullptr;
}

void SparseVectorSingle::MakeSingle(std::int32_t element, float value) {
  DropStorage();
  single_ = {element, value};
  declaredDimensions_ |= kSingleFlag;
}

void SparseVectorSingle::SetCount(std::size_t count) {
  if (IsSingle()) {
    if (count == 0) DropStorage();
  } else if (block_ != nullptr) {
    block_->count = static_cast<std::int32_t>(count);
  }
}

SparseVectorSingle::Block* SparseVectorSingle::Allocate(std::size_t capacity) {
  if (capacity == 0) return nullptr;
  if (capacity > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    throw std::bad_alloc();
  void* memory = ::operator new(sizeof(Block) + capacity * (sizeof(std::int32_t) + sizeof(float)));
  return new (memory) Block{static_cast<std::int32_t>(capacity), 0};
}

void SparseVectorSingle::Free(Block* block) {
  if (block != nullptr) ::operator delete(static_cast<void*>(block));
}

void SparseVectorSingle::Replace(Block* block) {
  DropStorage();
  block_ = block;
}

void SparseVectorSingle::Reallocate(std::size_t capacity) {
  const std::size_t count = Count();
  if (count == 1 && capacity <= 1) return MakeSingle(Elements()[0], Values()[0]);
  Block* block = Allocate(std::max(capacity, count));
  if (count > 0) {
    std::memcpy(reinterpret_cast<std::int32_t*>(block + 1), Elements(),
                count * sizeof(std::int32_t));
    std::memcpy(
        reinterpret_cast<float*>(reinterpret_cast<std::int32_t*>(block + 1) + block->capacity),
        Values(), count * sizeof(float));
    block->count = static_cast<std::int32_t>(count);
  }
  Replace(block);
}

void SparseVectorSingle::GrowForOne() { Reallocate(GrownCapacity(Capacity(), Count() + 1)); }

void SparseVectorSingle::Append(std::span<const std::int32_t> elements,
                                std::span<const float> values) {
  if (elements.empty()) return;
  const std::size_t count = Count();
  const std::size_t needed = count + elements.size();
  if (needed > Capacity()) Reallocate(GrownCapacity(Capacity(), needed));
  std::memcpy(Elements() + count, elements.data(), elements.size() * sizeof(std::int32_t));
  std::memcpy(Values() + count, values.data(), elements.size() * sizeof(float));
  SetCount(needed);
}

void SparseVectorSingle::Assign(std::span<const std::int32_t> elements,
                                std::span<const float> values) {
  if (elements.size() == 1) return MakeSingle(elements[0], values[0]);
  Block* block = Allocate(elements.size());
  if (block != nullptr) {
    auto* to = reinterpret_cast<std::int32_t*>(block + 1);
    std::memcpy(to, elements.data(), elements.size() * sizeof(std::int32_t));
    std::memcpy(reinterpret_cast<float*>(to + block->capacity), values.data(),
                elements.size() * sizeof(float));
    block->count = block->capacity;
  }
  Replace(block);
}

std::int32_t SparseVectorSingle::DimensionCount() const {
  if (Dimensions() != 0) return Dimensions();
  return Count() == 0 ? 0 : Elements()[Count() - 1];
}

std::int64_t SparseVectorSingle::Find(std::int32_t element) const {
  const auto elements = ElementIndexes();
  const auto it = std::lower_bound(elements.begin(), elements.end(), element);
  if (it == elements.end() || *it != element) return -1;
  return it - elements.begin();
}

void SparseVectorSingle::DeleteElement(std::int32_t element) {
  const std::int64_t found = Find(element);
  if (found < 0) return;
  // The block stays, also when it empties: a vector cleared this way is usually refilled.
  const auto at = static_cast<std::size_t>(found);
  const std::size_t after = Count() - at - 1;
  std::memmove(Elements() + at, Elements() + at + 1, after * sizeof(std::int32_t));
  std::memmove(Values() + at, Values() + at + 1, after * sizeof(float));
  SetCount(Count() - 1);
}

float SparseVectorSingle::Value(std::int32_t element) const {
  const std::int64_t at = Find(element);
  return at < 0 ? 0.0f : Values()[at];
}

void SparseVectorSingle::SetValue(std::int32_t element, float value) {
  if (value <= 0.0f) {
    DeleteElement(element);
    return;
  }
  if (element < 1) return;
  const std::size_t count = Count();
  if (count == 0 || element > Elements()[count - 1]) {
    Append(element, value);
    return;
  }
  const std::int32_t* first = Elements();
  const auto at = static_cast<std::size_t>(std::lower_bound(first, first + count, element) - first);
  if (first[at] == element) {
    Values()[at] = value;
    return;
  }
  if (count == Capacity()) GrowForOne();
  const std::size_t after = count - at;
  std::memmove(Elements() + at + 1, Elements() + at, after * sizeof(std::int32_t));
  std::memmove(Values() + at + 1, Values() + at, after * sizeof(float));
  Elements()[at] = element;
  Values()[at] = value;
  SetCount(count + 1);
}

bool SparseVectorSingle::IsEmpty(std::int32_t element) const { return Find(element) < 0; }

float SparseVectorSingle::ValueByListIndex(std::int32_t index) const {
  if (!ValidListIndex(index, Count())) return 0.0f;
  return Values()[index - 1];
}

void SparseVectorSingle::SetValueByListIndex(std::int32_t index, float value) {
  if (!ValidListIndex(index, Count())) return;
  Values()[index - 1] = value;
}

float SparseVectorSingle::ElementByListIndex(std::int32_t index) const {
  if (!ValidListIndex(index, Count())) return 0.0f;
  return static_cast<float>(Elements()[index - 1]);
}

float SparseVectorSingle::Magnitude() const {
  float sum = 0.0f;
  for (const float v : ElementValues()) sum += v * v;
  return std::sqrt(sum);
}

float SparseVectorSingle::GetSimilarity(std::span<const float> vec2Arr, std::int32_t metric,
                                        float vec2Magnitude) const {
  const auto elements = ElementIndexes();
  const auto values = ElementValues();
  float dot = 0.0f;
  for (std::size_t k = 0; k < elements.size(); ++k) {
    const auto element = static_cast<std::size_t>(elements[k]);
    if (element < vec2Arr.size()) dot += vec2Arr[element] * values[k];
  }
  if (metric != 2) return dot;
  if (vec2Magnitude <= 0.0f) return -1.0f;
  if (dot > 0.0f) return dot / (Magnitude() * vec2Magnitude);
  return dot;
}

std::vector<float> SparseVectorSingle::GetVectorArr(std::int32_t numElements) const {
  if (numElements == 0) numElements = Dimensions();
  if (numElements < 0) numElements = 0;
  std::vector<float> dense(static_cast<std::size_t>(numElements) + 1, 0.0f);
  const auto elements = ElementIndexes();
  const auto values = ElementValues();
  for (std::size_t k = 0; k < elements.size(); ++k) {
    if (elements[k] > numElements) break;
    dense[static_cast<std::size_t>(elements[k])] = values[k];
  }
  return dense;
}

void SparseVectorSingle::SetVector(std::span<const float> denseVector, std::int32_t dimensions) {
  const std::int32_t n = std::max<std::int32_t>(dimensions, 0);
  const std::size_t last =
      std::min<std::size_t>(static_cast<std::size_t>(n) + 1, denseVector.size());
  std::size_t nonZero = 0;
  for (std::size_t e = 1; e < last; ++e) nonZero += denseVector[e] != 0.0f ? 1 : 0;

  // Filled before the old block goes, so `denseVector` may be a view of this vector.
  Block* block = Allocate(nonZero);
  if (block != nullptr) {
    auto* elements = reinterpret_cast<std::int32_t*>(block + 1);
    auto* values = reinterpret_cast<float*>(elements + block->capacity);
    std::size_t k = 0;
    for (std::size_t e = 1; e < last; ++e) {
      if (denseVector[e] == 0.0f) continue;
      elements[k] = static_cast<std::int32_t>(e);
      values[k] = denseVector[e];
      ++k;
    }
    block->count = block->capacity;
  }
  Replace(block);
  SetDimensions(n);
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
  const auto elements = ElementIndexes();
  const auto values = ElementValues();
  for (std::size_t k = 0; k < elements.size() && elements[k] <= n; ++k) {
    ++stored;
    const float v = values[k];
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

  const auto better = [values](std::size_t a, std::size_t b) {
    if (values[a] != values[b]) return values[a] > values[b];
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

  Block* block = Allocate(chosen.size());
  if (block != nullptr) {
    auto* keptElements = reinterpret_cast<std::int32_t*>(block + 1);
    auto* keptValues = reinterpret_cast<float*>(keptElements + block->capacity);
    for (std::size_t k = 0; k < chosen.size(); ++k) {
      keptElements[k] = elements[chosen[k]];
      keptValues[k] = values[chosen[k]];
    }
    block->count = block->capacity;
  }
  Replace(block);
  SetDimensions(n);
}

std::int32_t SparseVectorSingle::FirstElementIndex() {
  cursor_ = 1;
  return Count() == 0 ? -1 : Elements()[0];
}

std::int32_t SparseVectorSingle::LastElementIndex() {
  cursor_ = NZElementCount();
  return Count() == 0 ? -1 : Elements()[Count() - 1];
}

std::int32_t SparseVectorSingle::NextElementIndex() {
  if (cursor_ <= NZElementCount()) ++cursor_;
  if (cursor_ < 1 || cursor_ > NZElementCount()) return -1;
  return Elements()[cursor_ - 1];
}

void SparseVectorSingle::Normalise() {
  const float magnitude = Magnitude();
  if (magnitude == 0.0f) return;
  float* values = Values();
  for (std::size_t k = 0; k < Count(); ++k) values[k] /= magnitude;
}

}  // namespace sylvora
