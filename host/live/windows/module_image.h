// The imports and exports of a loaded module, read from its image in memory.
#pragma once

#include <string>
#include <vector>

namespace host {

/// One function that a module imports by name.
struct Import {
  std::string library;   ///< as the module names it, such as "KERNEL32.dll"
  std::string function;  ///< undecorated or decorated, as the linker saw it
  void** slot;           ///< where the module keeps the function's address; read-only memory
};

/// `module` is a handle from LoadLibrary. Functions imported by number are left out.
std::vector<Import> ListImports(void* module);
/// The libraries that `module` names as its own, in its order.
std::vector<std::string> ListImportedLibraries(void* module);
/// The names that `module` exports, in the order of the table, which is sorted.
std::vector<std::string> ListExports(void* module);

}  // namespace host
