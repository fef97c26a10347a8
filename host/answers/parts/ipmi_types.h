// Sensor types of IPMI 2.0, table 42-3, and what event types tell (table 42-1).
#pragma once

#include <cstdint>
#include <string_view>

#include "host/answers/parts/parts.h"

namespace host {

/// Of sensors that compare a value with thresholds; any other event type tells states.
constexpr std::int64_t kThresholdEvent = 0x01;

/// The number of a sensor type by ipmiutil's name for it, which may be cut off: "Platform Securi".
/// None for other names.
Integer FindSensorType(std::string_view name);

}  // namespace host
