// Which machine a collection is of, and since when, for people.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/collect/collection.h"

namespace host {

/// What to call the machine.
std::string NameMachine(const Collection& collection);

/// Name and value of what tells the machine from others, and how old its values are. UTF-8.
std::vector<std::pair<std::string, std::string>> ListMachineFacts(const Collection& collection);

}  // namespace host
