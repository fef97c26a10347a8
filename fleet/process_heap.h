// The memory of a process that ends after one piece of work: new and delete in a room of its own.
#pragma once

namespace fleet {

/// From now on new takes its memory from a room that nothing has used. In a forked process each of
/// the parent's pages would be copied when a freed part of it is used again. Once in a process that
/// has no other threads.
void BeginProcessHeap() noexcept;

}  // namespace fleet
