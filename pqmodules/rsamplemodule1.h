// RAID inventory: LSI controller summary, Intel RST or VROC controller, Microchip support archive.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

class RSampleModule1 : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  static ModuleDescription Describe();

  void EnumPQ1Instances(RRepository& repo);

  /// Column layouts, named after their two numbers.
  void FormatColumns30And2(RInstancesWrapper& table);
  void FormatColumns30And1(RInstancesWrapper& table);
  void FormatColumns20And1(RInstancesWrapper& table);
  void FormatColumns10And1(RInstancesWrapper& table);
  void FormatLinkTable(RInstancesWrapper& table);

 private:
  void EnumXFirmwareInstancesCallback(RRepository& repo);
};

}  // namespace pq
