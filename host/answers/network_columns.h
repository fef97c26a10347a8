// Whether the tables of the network show what arp and netstat printed.
#pragma once

#include <vector>

#include "host/answers/columns_fit.h"

namespace host {

std::vector<ColumnCheck> ListNetworkColumnChecks();

}  // namespace host
