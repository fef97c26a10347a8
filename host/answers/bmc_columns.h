// Whether the tables of the management controller show what ipmiutil printed.
#pragma once

#include <vector>

#include "host/answers/columns_fit.h"

namespace host {

std::vector<ColumnCheck> ListBmcColumnChecks();

}  // namespace host
