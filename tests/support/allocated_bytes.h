// How much memory the process has allocated. Linux alone lets a program ask its allocator.
#pragma once

#include <cstddef>

#ifdef __has_feature
#define PQ_HAS_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#else
#define PQ_HAS_ADDRESS_SANITIZER 0
#endif

namespace test {

/// Bytes that are allocated now, by the system's allocator or the address sanitizer's.
std::size_t CountAllocatedBytes();

}  // namespace test
