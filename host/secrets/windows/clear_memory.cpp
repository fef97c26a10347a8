#include "host/secrets/clear_memory.h"

#include <windows.h>

namespace host {

void ClearMemory(void* memory, std::size_t size) { SecureZeroMemory(memory, size); }

}  // namespace host
