// Functions of libraries that are loaded only when they are needed. Includes <windows.h>.
#pragma once

#include <windows.h>

namespace host {

/// Looks `name` up in `library`, for a pointer to a function of its type. Whether it is there.
template <typename Function>
bool FindFunction(HMODULE library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  return function != nullptr;
}

}  // namespace host
