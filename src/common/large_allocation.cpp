#include "common/large_allocation.h"

#include <malloc.h>
#include <sys/mman.h>

#include <cstdlib>

namespace sylvora {
namespace {

// Below this, the heap is as good and wastes less.
constexpr std::size_t kLargeThreshold = std::size_t{4} << 20;

}  // namespace

void* AllocateLarge(std::size_t bytes) {
  if (bytes == 0) return nullptr;
  if (bytes < kLargeThreshold) {
    void* memory = std::malloc(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
  }
  void* memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  ::madvise(memory, bytes, MADV_HUGEPAGE);  // a hint: failure only costs speed
  return memory;
}

void FreeLarge(void* memory, std::size_t bytes) noexcept {
  if (memory == nullptr) return;
  if (bytes < kLargeThreshold) {
    std::free(memory);
    return;
  }
  ::munmap(memory, bytes);
}

void UseReturnableLargeBlocks() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
#endif
}

}  // namespace sylvora
