// How much memory the process has allocated. Linux alone lets a program ask its allocator.
#pragma once

#include <cstddef>

namespace test {

/// Bytes that are allocated now, by the system's allocator or the address sanitizer's.
std::size_t CountAllocatedBytes();

}  // namespace test
