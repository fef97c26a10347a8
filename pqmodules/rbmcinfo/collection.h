// One run of the BMC module, as its collectors see it.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "frame/module.h"

namespace pq {

/// How many queries there are for the controller's data.
inline constexpr std::size_t kOemQueryCount = 6;

/// One run of the module.
struct BmcCollection {
  RRepository& repo;
  const ModuleLog& log;
  std::string hostFolder;  ///< the tools are in folders below
  /// How many names the answer to each of the controller's queries had, for a debugger.
  std::array<std::size_t, kOemQueryCount> nameCounts = {};
};

}  // namespace pq
