// Whether the machine has Intel AMT.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

/// Asks the detection tool below `hostFolder`; false also when it cannot be started.
bool DetectAmt(const ModuleLog& log, const std::string& hostFolder);

void DescribeAmtDetection(ModuleDescription& module);

}  // namespace pq
