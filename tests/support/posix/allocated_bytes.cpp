#include "tests/support/allocated_bytes.h"

#include <malloc.h>

#include "tests/support/sanitizers.h"

#if PQ_HAS_ADDRESS_SANITIZER
// The address sanitizer brings an allocator of its own.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace test {

std::size_t CountAllocatedBytes() {
#if PQ_HAS_ADDRESS_SANITIZER
  return __sanitizer_get_current_allocated_bytes();
#else
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

}  // namespace test
