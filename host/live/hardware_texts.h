// What Windows and the firmware say of a machine's devices, read from their own forms.
#pragma once

#include <optional>
#include <string_view>

#include "host/collect/machine_facts.h"

namespace host {

/// A device by one of its hardware identifiers, the form with a class:
/// "PCI\VEN_1000&DEV_005D&CC_010400". None for any other form.
std::optional<PciDevice> ParsePciId(std::string_view id);

/// Fills in whether there is a BMC and AMT, from the structures of a firmware's SMBIOS table.
void ReadSmbios(std::string_view table, Hardware& hardware);

}  // namespace host
