#include "bench/support/heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
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
