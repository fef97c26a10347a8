// The modules and their tables, listed for people and programs.
#pragma once

#include <ostream>
#include <vector>

#include "host/collect/collection.h"
#include "host/formats/formats.h"

namespace host {

/// A line for each table, by area.
void WriteModulesList(const std::vector<LoadedModule>& modules, const Screen& screen,
                      std::ostream& out);
/// One JSON object (docs/json.md).
void WriteModulesJson(const std::vector<LoadedModule>& modules, std::ostream& out);

}  // namespace host
