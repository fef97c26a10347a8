// Whether the columns of the LSI tables fit what storcli printed.
#pragma once

#include <vector>

#include "host/answers/columns_fit.h"

namespace host {

std::vector<ColumnCheck> ListLsiColumnChecks();

}  // namespace host
