#include "tests/support/refused_allocation.h"

#include <new>

namespace {
std::size_t refused = 0;  // None.
}  // namespace

// Replaces the standard library's for the whole test program.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  if (refused != 0 && size == refused) return nullptr;
  try {
    return ::operator new[](size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

namespace test {

RefusedAllocation::RefusedAllocation(std::size_t bytes) { refused = bytes; }
RefusedAllocation::~RefusedAllocation() { refused = 0; }

}  // namespace test
