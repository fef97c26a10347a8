// RAID logs: per-controller log links, event log, firmware term log, topology and drive lists,
// drive details, SAS2 controller log, Intel RST devices.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

class RSampleModule2 : public CollectionModule {
 public:
  ~RSampleModule2() override;
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  static ModuleDescription Describe();

  void EnumPQ2Instances(RRepository& repo);
  void FormatReadingsTable(RInstancesWrapper& table);
  void FormatFourColumnTable(RInstancesWrapper& table);
  void FormatEventLogTable(RInstancesWrapper& table);
  void FormatLinkTable(RInstancesWrapper& table);

 private:
  void CollectData(RRepository& repo);
};

}  // namespace pq
