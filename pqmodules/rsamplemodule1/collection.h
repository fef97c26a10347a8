// One run of the RAID inventory, as its collectors see it.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

/// One run of the module.
struct RaidInventoryCollection {
  RRepository& repo;
  const ModuleLog& log;
  std::string hostFolder;  ///< the tools are in folders below
};

}  // namespace pq
