// The heap of the program: every operator new and delete is counted, and freed memory is kept.
#pragma once

#include <cstddef>

namespace bench {

/// Bytes that are allocated now.
std::size_t HeapInUse();
/// Starts a new highest mark at what is allocated now.
void ResetHeapPeak();
/// The most that was allocated at once since then.
std::size_t HeapPeak();

}  // namespace bench
