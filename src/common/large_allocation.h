#pragma once
// Memory for the few very large arrays of a big corpus (the file's bytes, the cell columns).
// Such blocks come straight from mmap with transparent huge pages requested, which cuts the
// page faults of filling hundreds of megabytes by a factor of several hundred; small blocks
// use the ordinary heap. Memory is handed out uninitialised.

#include <cstddef>
#include <new>
#include <utility>

namespace sylvora {

// Sets the process's heap policy for a big corpus: blocks of 128 KiB and more come from mmap
// and go back to the system when freed. Without it the C library raises that threshold after
// each large block it frees, and the working memory of loading and indexing (freed, but kept
// in the heap) adds a tenth to the peak. The programs call it once at start.
void UseReturnableLargeBlocks();

// Uninitialised memory of `bytes` bytes; throws std::bad_alloc.
void* AllocateLarge(std::size_t bytes);
// Returns memory from AllocateLarge; `bytes` must be the size asked for.
void FreeLarge(void* memory, std::size_t bytes) noexcept;

// An allocator over AllocateLarge, for std::vector of big arrays.
template <typename T>
struct LargeAllocator {
  using value_type = T;
  LargeAllocator() = default;
  template <typename U>
  LargeAllocator(const LargeAllocator<U>&) {}  // NOLINT: allocators convert implicitly
  T* allocate(std::size_t n) { return static_cast<T*>(AllocateLarge(n * sizeof(T))); }
  void deallocate(T* p, std::size_t n) noexcept { FreeLarge(p, n * sizeof(T)); }
  friend bool operator==(const LargeAllocator&, const LargeAllocator&) { return true; }
};

// A byte buffer that is not zero-filled when sized: the file is read straight into it.
class ByteBuffer {
 public:
  ByteBuffer() = default;
  explicit ByteBuffer(std::size_t capacity)
      : data_(static_cast<char*>(AllocateLarge(capacity))), capacity_(capacity) {}
  ~ByteBuffer() { FreeLarge(data_, capacity_); }
  ByteBuffer(ByteBuffer&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}
  ByteBuffer& operator=(ByteBuffer&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
    return *this;
  }
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;

  char* Data() { return data_; }
  const char* Data() const { return data_; }
  std::size_t Size() const { return size_; }
  std::size_t Capacity() const { return capacity_; }
  // Sets the size within the capacity (bytes past the old size are left as they are).
  void SetSize(std::size_t size) { size_ = size < capacity_ ? size : capacity_; }

 private:
  char* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace sylvora
