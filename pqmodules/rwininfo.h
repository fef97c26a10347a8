// The Windows host itself: routing table, shares, network configuration files, SMBIOS dump, and the
// ARP and connection tables.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

class RWINInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;

  void EnumWINInstances(RRepository& repo);
  void FormatARPTable(RInstancesWrapper& table);
  void FormatNetstatTable(RInstancesWrapper& table);

 private:
  void CollectData(RRepository& repo);
};

}  // namespace pq
