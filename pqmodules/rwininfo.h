// The Windows host itself: routing table, shares, network configuration files, SMBIOS dump, and the
// ARP and connection tables.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"
#include "pqmodules/rwininfo/net_table.h"

namespace pq {

class RWINInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  static ModuleDescription Describe();

  void EnumWINInstances(RRepository& repo);
  void FormatARPTable(RInstancesWrapper& table);
  void FormatNetstatTable(RInstancesWrapper& table);

 private:
  void CollectData(RRepository& repo);
};

/// As CollectNetTable.
int ParseNetTable(RRepository& repo, unsigned mode);

}  // namespace pq
