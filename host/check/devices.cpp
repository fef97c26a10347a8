#include "host/check/devices.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "host/catalogue/table_sources.h"

namespace host {
namespace {

constexpr std::uint16_t kLsiVendor = 0x1000;
constexpr std::uint16_t kIntelVendor = 0x8086;
constexpr std::uint16_t kMicrochipVendor = 0x9005;

constexpr std::uint16_t kStorageClass = 0x01;  // Of any subclass.
constexpr std::uint16_t kRaidClass = 0x0104;

/// The devices of the second SAS generation, which have a tool of their own.
constexpr std::uint16_t kSas2Devices[] = {0x0064, 0x0065, 0x006e, 0x0070, 0x0072, 0x0074,
                                          0x0076, 0x0077, 0x007e, 0x0080, 0x0081, 0x0082,
                                          0x0083, 0x0084, 0x0085, 0x0086, 0x0087};

bool IsStorage(const PciDevice& device) { return device.classCode >> 8 == kStorageClass; }

struct PciArea {
  const char* area;
  bool (*fits)(const PciDevice&);
};
constexpr PciArea kPciAreas[] = {
    {"LSI RAID",
     [](const PciDevice& device) { return device.vendor == kLsiVendor && IsStorage(device); }},
    {"LSI SAS2",
     [](const PciDevice& device) {
       return device.vendor == kLsiVendor &&
              std::ranges::find(kSas2Devices, device.device) != std::end(kSas2Devices);
     }},
    {"Intel RAID",
     [](const PciDevice& device) {
       return device.vendor == kIntelVendor && device.classCode == kRaidClass;
     }},
    {"Microchip RAID",
     [](const PciDevice& device) {
       return device.vendor == kMicrochipVendor && IsStorage(device);
     }},
};

constexpr char kNoDevice[] = "no such device";
constexpr char kNotThisFamily[] = "not this platform family";

/// Whether the table's rows come from a program.
bool ComesFrom(const pq::TableDescription& table,
               const std::function<bool(const std::string&)>& isThere) {
  return std::ranges::any_of(
      table.commands, [&](const pq::ToolCommand& command) { return isThere(command.program); });
}

}  // namespace

DevicesByArea FindDevices(const Hardware& hardware) {
  DevicesByArea devices;
  if (hardware.pci) {
    for (const PciArea& known : kPciAreas) {
      devices[known.area] = std::ranges::any_of(*hardware.pci, known.fits);
    }
  }
  if (hardware.hasBmc) devices["BMC"] = *hardware.hasBmc;
  if (hardware.hasAmt) devices["Intel AMT"] = *hardware.hasAmt;
  return devices;
}

DevicesByArea FindDevices(const Collection& collection,
                          const std::function<bool(const std::string& program)>& isThere) {
  DevicesByArea devices;
  for (const CollectedTable& table : collection.tables) {
    const pq::TableDescription* known = FindTableDescription(table.className);
    if (known == nullptr) continue;
    if (table.RowCount() > 0 && ComesFrom(*known, isThere)) {
      devices[known->area] = true;
    } else if (table.status.outcome == kNoDevice) {
      devices.try_emplace(known->area, false);
    }
  }
  return devices;
}

std::set<std::string> FindNeverAsked(const Collection& collection) {
  std::set<std::string> classes;
  for (const CollectedTable& table : collection.tables) {
    if (table.status.outcome == kNotThisFamily) classes.insert(table.className);
  }
  return classes;
}

}  // namespace host
