// Whether the columns of the Microchip tables fit what arcconf printed.
#pragma once

#include <vector>

#include "host/answers/columns_fit.h"

namespace host {

std::vector<ColumnCheck> ListMicrochipColumnChecks();

}  // namespace host
