// One run of the AMT module, as its collectors see it.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

/// One run of the module.
struct AmtCollection {
  RRepository& repo;
  const ModuleLog& log;
  std::string hostFolder;  ///< the tools are in a folder below
};

}  // namespace pq
