#include "allocation_count.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {
std::atomic<bool> gCounting{false};
std::atomic<int> gAllocations{0};
}  // namespace

void* operator new(std::size_t size) {
  if (gCounting.load(std::memory_order_relaxed)) gAllocations.fetch_add(1);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}

void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace sylvora::test {

ScopedAllocationCount::ScopedAllocationCount() {
  gAllocations = 0;
  gCounting = true;
}

ScopedAllocationCount::~ScopedAllocationCount() { gCounting = false; }

int ScopedAllocationCount::Count() const { return gAllocations.load(); }

}  // namespace sylvora::test
