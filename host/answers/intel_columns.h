// Whether the columns of the Intel tables fit what rstcli or IntelVROCCli printed.
#pragma once

#include <vector>

#include "host/answers/columns_fit.h"

namespace host {

std::vector<ColumnCheck> ListIntelColumnChecks();

}  // namespace host
