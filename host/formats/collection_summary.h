// What writers for people say of a collection as a whole, and how they group its tables.
#pragma once

#include <string>
#include <vector>

#include "host/catalogue/areas.h"
#include "host/collect/collection.h"

namespace host {

/// How many tables have rows, and how many those are.
std::string DescribeOutcome(const Collection& collection);

/// The collection's tables by area. Texts are bytes in the machine's code page.
std::vector<TableGroup> GroupTables(const Collection& collection);

}  // namespace host
