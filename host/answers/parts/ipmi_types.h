// Sensor types of IPMI 2.0, table 42-3.
#pragma once

#include <string_view>

#include "host/answers/parts/parts.h"

namespace host {

/// The number of a sensor type by ipmiutil's name for it, which may be cut off: "Platform Securi".
/// None for other names.
Integer FindSensorType(std::string_view name);

}  // namespace host
