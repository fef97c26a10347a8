// The catalogue: what the modules tell of themselves, looked up by module or by table class.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"

namespace host {

/// All modules, in the order in which the host gets them.
const std::vector<pq::ModuleDescription>& GetModuleDescriptions();

/// Null for a module that is not in the catalogue.
const pq::ModuleDescription* FindModuleDescription(std::string_view name);

/// Null for a class that no module describes.
const pq::TableDescription* FindTableDescription(std::string_view className);

/// What the table holds, in words; the class name itself for one that no module describes.
std::string TitleOf(const std::string& className);

}  // namespace host
