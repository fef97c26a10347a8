#include "host/secrets/clear_memory.h"

#include <cstring>

namespace host {

void ClearMemory(void* memory, std::size_t size) { explicit_bzero(memory, size); }

}  // namespace host
