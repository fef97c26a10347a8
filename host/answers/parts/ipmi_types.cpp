#include "host/answers/parts/ipmi_types.h"

#include <algorithm>
#include <array>

#include "host/answers/parts/report_values.h"

namespace host {
namespace {

// By number, from 1, as ipmiutil calls them.
constexpr std::array<std::string_view, 0x2c> kTypes{
    "Temperature",
    "Voltage",
    "Current",
    "Fan",
    "Platform Security",
    "Security Violation",
    "Processor",
    "Power Supply",
    "Power Unit",
    "Cooling Device",
    "FRU Sensor",
    "Memory",
    "Drive Slot",
    "POST Memory Resize",
    "System Firmware",
    "Event Log",
    "Watchdog_1",
    "System Event",
    "Critical Interrupt",
    "Button",
    "Module/Board",
    "Microcontroller",
    "Add-in Card",
    "Chassis",
    "Chip Set",
    "Other FRU",
    "Cable Interconnect",
    "Terminator",
    "System Boot Initiated",
    "Boot Error",
    "OS Boot",
    "OS Critical Stop",
    "Slot/Connector",
    "ACPI Power State",
    "Watchdog_2",
    "Platform Alert",
    "Entity Presence",
    "Monitor ASIC",
    "LAN",
    "Management Subsys Health",
    "Battery",
    "Session Audit",
    "Version Change",
    "FRU State",
};
// ipmiutil uses the standard's name in some listings only.
constexpr std::string_view kStandardName = "Physical Security";
constexpr std::int64_t kPhysicalSecurity = 5;

/// As long as this, the beginning of a name tells the type.
constexpr std::size_t kShortestCut = 12;

bool IsNamed(std::string_view type, std::string_view name) {
  return type == name || (name.size() >= kShortestCut && type.starts_with(name));
}

}  // namespace

Integer FindSensorType(std::string_view name) {
  const auto* found = std::find_if(kTypes.begin(), kTypes.end(),
                                   [&](std::string_view type) { return IsNamed(type, name); });
  if (found != kTypes.end()) return found - kTypes.begin() + 1;
  if (IsNamed(kStandardName, name)) return kPhysicalSecurity;
  // "OEM(c5)"
  if (name.starts_with("OEM(") && name.ends_with(')')) {
    return ReadHex(name.substr(4, name.size() - 5));
  }
  return std::nullopt;
}

}  // namespace host
