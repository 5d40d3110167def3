#pragma once
// A vector of single-precision values over a large index space of which only a few elements
// are non-zero: one document's term frequencies, one interval's term weights, one node's
// similarities. It is the column type of SparseMatrixSingle.
//
// Numbering. Elements are 1-based (a term, document or node number); an element that is not
// stored is worth 0. Elements below 1 are never stored: writes to them are ignored and reads
// give 0. "List positions" (ValueByListIndex, ElementByListIndex) are the 1-based ranks of the
// stored elements in ascending element order, not element numbers.
//
// Dense arrays. A dense copy of elements 1..n is a std::vector<float> of n + 1 entries in which
// entry e holds element e and entry 0 is unused (always 0), so that dense[e] reads element e.
//
// Storage. Element numbers strictly ascending with no duplicates, and their values, in one
// heap block: a small header (capacity, count) followed by `capacity` element numbers and then
// `capacity` values. The object itself is a pointer to that block, the declared dimension count
// and the iteration cursor: 16 bytes, because a matrix keeps one vector per column and an index
// has a column per document. An empty vector that never held anything (or was reloaded empty)
// owns no block; one emptied by deletes keeps its block for reuse. Look-up is a binary search
// (O(log nnz)); writing an element past the last one appends in amortised O(1); writing or
// deleting in the middle moves the later entries (O(nnz)). SetVector loads a whole dense array
// in O(n) and allocates exactly once; a copy allocates exactly what it holds; a move hands the
// block over.
//
// What a write does. SetValue with 0 or a negative value deletes the element, so negative
// values cannot be stored that way; SetVector stores every non-zero entry, negatives included;
// SetValueByListIndex stores whatever it is given at an existing position (0 included).
//
// Declared dimension count. SetVector declares the vector's size (and a matrix declares its
// row count for its columns); DimensionCount() is that size, or the largest stored element
// when none was declared.
//
// Sums. Magnitude and inner products accumulate in float, in ascending element order.
//
// Nothing here throws apart from std::bad_alloc; out-of-range arguments give 0, -1 or an empty
// result as stated per operation. Copies are deep; the type is cheap to move. Const operations
// may run concurrently; the iteration operations move the cursor and count as writes.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace sylvora {

class SparseMatrixSingle;

class SparseVectorSingle {
 public:
  SparseVectorSingle() = default;
  SparseVectorSingle(const SparseVectorSingle& other);
  SparseVectorSingle(SparseVectorSingle&& other) noexcept;
  SparseVectorSingle& operator=(const SparseVectorSingle& other);
  SparseVectorSingle& operator=(SparseVectorSingle&& other) noexcept;
  ~SparseVectorSingle();

  // Number of stored elements.
  std::int32_t NZElementCount() const { return static_cast<std::int32_t>(Count()); }

  // The declared dimension count when non-zero, else the largest stored element (0 when
  // empty).
  std::int32_t DimensionCount() const;

  // Removes the element when it is stored; otherwise nothing happens.
  void DeleteElement(std::int32_t element);

  // The stored value of `element`, or 0. O(log nnz).
  float Value(std::int32_t element) const;

  // Stores or replaces `element`; a value of 0 or below deletes it instead. Appending past the
  // last element is amortised O(1).
  void SetValue(std::int32_t element, float value);

  // True when `element` has no stored value.
  bool IsEmpty(std::int32_t element) const;

  // The value at 1-based list position `index`; 0 outside 1..NZElementCount().
  float ValueByListIndex(std::int32_t index) const;

  // Overwrites the value at list position `index` as given (0 and negatives included; nothing
  // is deleted or moved). Ignored outside 1..NZElementCount().
  void SetValueByListIndex(std::int32_t index, float value);

  // The element number at list position `index`, as a float; 0 outside 1..NZElementCount().
  float ElementByListIndex(std::int32_t index) const;

  // Euclidean length: the square root of the float sum of the squared stored values. O(nnz),
  // computed anew on every call.
  float Magnitude() const;

  // Inner product (any `metric` but 2) or cosine (`metric` 2) with the dense vector `vec2Arr`
  // (entry e = element e) whose magnitude the caller gives. The product is a float sum over the
  // stored elements in ascending order; elements past the end of `vec2Arr` count as 0. Under
  // cosine: -1 when `vec2Magnitude` is 0 or below; otherwise dot / (Magnitude() *
  // vec2Magnitude) when dot > 0, and dot itself when dot <= 0. O(nnz).
  float GetSimilarity(std::span<const float> vec2Arr, std::int32_t metric,
                      float vec2Magnitude) const;

  // Dense copy of elements 1..n: n = `numElements`, or the declared dimension count when
  // `numElements` is 0 (an undeclared vector then gives no elements). The result has n + 1
  // entries (entry 0 unused); stored elements past n are left out, so result.size() - 1 is
  // the n that was used. A negative `numElements` gives no elements. O(n).
  std::vector<float> GetVectorArr(std::int32_t numElements) const;

  // Replaces the whole content by the non-zero entries 1..`dimensions` of `denseVector` (entry
  // e = element e; entries past its end count as 0), negatives included, and declares
  // `dimensions` as the dimension count. O(dimensions).
  void SetVector(std::span<const float> denseVector, std::int32_t dimensions);

  // Keeps only the `count` largest values of the dense copy of elements 1..DimensionCount()
  // (ties keep the lower element), as SelectTopK picks them, then reloads the vector from that
  // dense copy with DimensionCount() dimensions. Stored elements past the dimension count are
  // dropped; `count` <= 0 empties the vector. O(nnz log nnz); vectors holding NaN or values
  // beyond about +-16 million take the repeated scan, O(count * n).
  void TruncateLocal(std::int32_t count);

  // Iteration in ascending element order through a cursor over the list positions:
  // FirstElementIndex() then NextElementIndex() until -1. Writes do not move the cursor.
  // The element at position 1, or -1 when empty; the cursor goes to position 1.
  std::int32_t FirstElementIndex();
  // The element at the last position, or -1 when empty; the cursor goes there.
  std::int32_t LastElementIndex();
  // Advances the cursor; the element there, or -1 past the end.
  std::int32_t NextElementIndex();

  // Divides every stored value by Magnitude() (taken once). A vector of magnitude 0 is left
  // as it is.
  void Normalise();

  // Read-only views of the storage for fast sequential reading: entry k (0-based) holds list
  // position k + 1. Valid until the next write, move or destruction of the vector (a vector of
  // one entry keeps it in the object itself).
  std::span<const std::int32_t> ElementIndexes() const { return {Elements(), Count()}; }
  std::span<const float> ElementValues() const { return {Values(), Count()}; }

 private:
  friend class SparseMatrixSingle;

  // The head of the heap block; `capacity` element numbers follow it, then `capacity` values.
  struct Block {
    std::int32_t capacity;
    std::int32_t count;
  };

  // One entry is kept in the object itself, not in a heap block of its own (which would cost
  // 32 bytes more): most columns of the link, hashtag, mention and user indexes hold one term.
  // The sign bit of declaredDimensions_ says so.
  struct Single {
    std::int32_t element;
    float value;
  };
  static constexpr std::int32_t kSingleFlag = std::numeric_limits<std::int32_t>::min();
  bool IsSingle() const { return declaredDimensions_ < 0; }
  std::int32_t Dimensions() const { return declaredDimensions_ & ~kSingleFlag; }
  void SetDimensions(std::int32_t count) {
    declaredDimensions_ = (declaredDimensions_ & kSingleFlag) | (count < 0 ? 0 : count);
  }
  // Stores the one entry in the object, freeing any block.
  void MakeSingle(std::int32_t element, float value);
  // Leaves the object without entry and without block.
  void DropStorage();

  std::size_t Count() const {
    if (IsSingle()) return 1;
    return block_ == nullptr ? 0 : static_cast<std::size_t>(block_->count);
  }
  std::size_t Capacity() const {
    if (IsSingle()) return 1;
    return block_ == nullptr ? 0 : static_cast<std::size_t>(block_->capacity);
  }
  // Stores the count of entries, 0..Capacity().
  void SetCount(std::size_t count);
  std::int32_t* Elements() {
    if (IsSingle()) return &single_.element;
    return block_ == nullptr ? nullptr : reinterpret_cast<std::int32_t*>(block_ + 1);
  }
  const std::int32_t* Elements() const {
    if (IsSingle()) return &single_.element;
    return block_ == nullptr ? nullptr : reinterpret_cast<const std::int32_t*>(block_ + 1);
  }
  float* Values() {
    if (IsSingle()) return &single_.value;
    return block_ == nullptr ? nullptr : reinterpret_cast<float*>(Elements() + block_->capacity);
  }
  const float* Values() const {
    if (IsSingle()) return &single_.value;
    return block_ == nullptr ? nullptr
                             : reinterpret_cast<const float*>(Elements() + block_->capacity);
  }

  // A block with room for `capacity` entries and none stored; nullptr for a capacity of 0.
  static Block* Allocate(std::size_t capacity);
  static void Free(Block* block);

  // Moves the content into a block of exactly `capacity` entries (at least Count(); 0 frees
  // the block).
  void Reallocate(std::size_t capacity);

  // Makes room for `count` entries in all, allocating exactly that when it must grow.
  void Reserve(std::size_t count) {
    if (count > Capacity()) Reallocate(count);
  }

  // Gives back the room past the stored entries.
  void ShrinkToFit() {
    if (Count() < Capacity()) Reallocate(Count());
  }

  // Keeps the first `count` entries.
  void KeepFirst(std::size_t count) {
    if (count < Count()) SetCount(count);
  }

  // Makes room for one more entry, doubling the capacity when full.
  void GrowForOne();

  // Appends an element known to be larger than the last one.
  void Append(std::int32_t element, float value) {
    if (Count() == Capacity()) GrowForOne();
    const std::size_t at = Count();
    Elements()[at] = element;
    Values()[at] = value;
    SetCount(at + 1);
  }

  // Appends elements known to be ascending and larger than the last one.
  void Append(std::span<const std::int32_t> elements, std::span<const float> values);

  // The element list position (0-based) of `element`, or -1.
  std::int64_t Find(std::int32_t element) const;

  // Replaces the content by the given (ascending) elements and values, in a block of exactly
  // their size.
  void Assign(std::span<const std::int32_t> elements, std::span<const float> values);

  // Replaces the storage by `block` (which may be nullptr), freeing the old block.
  void Replace(Block* block);

  // Declares the dimension count (a matrix declares its row count for every column).
  void SetDimensionCount(std::int32_t count) { SetDimensions(count); }

  union {
    Block* block_ = nullptr;
    Single single_;  // when IsSingle()
  };
  std::int32_t declaredDimensions_ = 0;  // with kSingleFlag when the one entry is in single_
  std::int32_t cursor_ = 0;              // 1-based list position of the last element handed out
};

static_assert(sizeof(SparseVectorSingle) == 16, "one pointer and two 32-bit numbers per vector");

}  // namespace sylvora
