// End devices, arrays and volumes of an Intel RST or VROC controller.
#pragma once

#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

/// Adds the rows of "ENDDEVICEINFO", "ARRAY" and "VOLUME".
void CollectIntelDevices(const RaidLogsCollection& collection);

void DescribeIntelDevices(ModuleDescription& module);

}  // namespace pq
