// Overwriting memory that is not read again.
#pragma once

#include <cstddef>

namespace host {

/// Sets `size` bytes to zero, also where a compiler sees that nobody reads them.
void ClearMemory(void* memory, std::size_t size);

}  // namespace host
