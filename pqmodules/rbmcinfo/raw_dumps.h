// Raw files of the BMC for later analysis; no table is made of them.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

/// Leaves the event log in hexadecimal, SEL_Hex.txt, in the log folder.
void DumpSelHex(const ModuleLog& log, const std::string& hostFolder);
/// Leaves the sensors with their identifier strings, sensor_with_id_string.txt.
void DumpSensorIds(const ModuleLog& log, const std::string& hostFolder);

void DescribeRawDumps(ModuleDescription& module);

}  // namespace pq
