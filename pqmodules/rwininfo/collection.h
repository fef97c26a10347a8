// One run of the Windows module, as its collectors see it.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

/// One run of the module.
struct WindowsCollection {
  RRepository& repo;
  const ModuleLog& log;
  std::string hostFolder;  ///< the SMBIOS tool is in a folder below
};

}  // namespace pq
