// RAID controller inventory: LSI controller summary, Intel RST or VROC controller, Microchip
// support archive.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/table_source.h"

namespace pq {

class RSampleModule1 : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  /// Where the rows of its tables come from.
  static TableSources DescribeTables();

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
