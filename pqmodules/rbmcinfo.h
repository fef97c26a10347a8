// The baseboard management controller: controller and firmware data, self-test, power supplies,
// LAN, LEDs, sensors, SDR, FRU and the system event log.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"
#include "pqmodules/rbmcinfo/detection.h"

namespace pq {

class RBMCInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  static ModuleDescription Describe();

  void EnumBMCInstances(RRepository& repo);
  void FormatInfoTable(RInstancesWrapper& table);
  void FormatSensorTable(RInstancesWrapper& table);

  /// As DetectBmc.
  BmcFamily CheckBmc();

  // One step each, as the functions of the same name, below the host folder of the last collection
  // on this thread.
  int QueryOem(RRepository& repo, int selector);
  int CollectSensorReadings(RRepository& repo);
  int CollectSdr(RRepository& repo);
  int CollectFru(RRepository& repo);
  int CollectSel(RRepository& repo);
  void DumpSelHex();
  void DumpSensorIds();

 private:
  void CollectData(RRepository& repo);
};

}  // namespace pq
