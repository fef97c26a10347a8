// The Windows host itself: routing table, shares, network configuration files, SMBIOS dump, and the
// ARP and connection tables.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/table_source.h"

namespace pq {

class RWINInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  /// Where the rows of its tables come from.
  static TableSources DescribeTables();

  void EnumWINInstances(RRepository& repo);
  void FormatARPTable(RInstancesWrapper& table);
  void FormatNetstatTable(RInstancesWrapper& table);

 private:
  void CollectData(RRepository& repo);
};

inline constexpr unsigned kArpMode = 1;
inline constexpr unsigned kConnectionMode = 2;

/// Runs `arp -a` (kArpMode) or `netstat` (kConnectionMode) on a US English system and adds one
/// instance per printed row. Returns 1 when the tool could not be run, otherwise 0, also without
/// any row.
int ParseNetTable(RRepository& repo, unsigned mode);

}  // namespace pq
