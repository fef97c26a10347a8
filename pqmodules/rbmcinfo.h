// The baseboard management controller: controller and firmware data, self-test, power supplies,
// LAN, LEDs, sensors, SDR, FRU and the system event log.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

class RBMCInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;

  void EnumBMCInstances(RRepository& repo);
  void FormatInfoTable(RInstancesWrapper& table);
  void FormatSensorTable(RInstancesWrapper& table);

 private:
  void CollectData(RRepository& repo);
};

}  // namespace pq
