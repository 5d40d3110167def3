#pragma once
// Counts heap allocations, so that tests can check what a hot-path function allocates. The
// test executable that links allocation_count.cpp replaces the global operator new.

namespace sylvora::test {

// Counts the calls of operator new on any thread while an object of this class exists. Objects
// must not overlap.
class ScopedAllocationCount {
 public:
  ScopedAllocationCount();
  ~ScopedAllocationCount();
  ScopedAllocationCount(const ScopedAllocationCount&) = delete;
  ScopedAllocationCount& operator=(const ScopedAllocationCount&) = delete;

  int Count() const;
};

}  // namespace sylvora::test
