// Which machine it is, as the inventory of its parts (FRU) says, or the tables of its BIOS
// (SMBIOS).
#pragma once

#include <string>
#include <vector>

#include "host/collect/collection.h"

namespace host {

/// UTF-8; what is not known is empty.
struct MachineIdentity {
  std::string maker;
  std::string product;
  std::string serial;  ///< what the inventory says or, without it, what the recording was given
  std::string assetTag;
  /// "chassis" or "board" where `serial` is that of this part of the machine; empty otherwise.
  std::string serialOf = {};

  bool operator==(const MachineIdentity&) const = default;
};

/// From the lines of FRUINFO; of a machine without them, from what getsmbios printed. What a maker
/// left to be filled in counts as not known.
MachineIdentity FindMachineIdentity(const Collection& collection);

/// The serial numbers of product, chassis and main board in this order, each once; of a machine
/// whose inventory names none, those that the recording was given. UTF-8.
std::vector<std::string> ListMachineSerials(const Collection& collection);

}  // namespace host
