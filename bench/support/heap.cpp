#include "bench/support/heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

// Plain counters: collections run on one thread.
std::size_t inUse = 0;
std::size_t peak = 0;

void* Allocate(std::size_t size) {
  void* block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  inUse += malloc_usable_size(block);
  peak = std::max(peak, inUse);
  return block;
}

void Free(void* block) {
  if (block == nullptr) return;
  inUse -= malloc_usable_size(block);
  std::free(block);
}

/// Memory that was had once stays with the program, as in a host that runs for long. What the
/// kernel takes to hand out and clear pages, over and over for large blocks, would otherwise count
/// in some benchmarks and not in others, depending on what ran before.
const bool keepsMemory = [] {
  constexpr int kNever = std::numeric_limits<int>::max();
  return mallopt(M_MMAP_THRESHOLD, kNever) != 0 && mallopt(M_TRIM_THRESHOLD, kNever) != 0;
}();

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }

namespace bench {

std::size_t HeapInUse() { return inUse; }
void ResetHeapPeak() { peak = inUse; }
std::size_t HeapPeak() { return peak; }

}  // namespace bench
