// Which versions of the vendors' tools took part, as their own output says.
#pragma once

#include <string>
#include <vector>

#include "host/collect/collection.h"

namespace host {

struct ToolVersion {
  std::string tool;     ///< such as "storcli"
  std::string version;  ///< as the tool prints it; bytes in the machine's code page
};

/// Each tool once, where a table holds a line that names its version.
std::vector<ToolVersion> FindToolVersions(const Collection& collection);

}  // namespace host
