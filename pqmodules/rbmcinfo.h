// The baseboard management controller: controller and firmware data, self-test, power supplies,
// LAN, LEDs, sensors, SDR, FRU and the system event log.
#pragma once

#include <cstdint>
#include <string>

#include "frame/module.h"
#include "frame/table_source.h"

namespace pq {

inline constexpr ModuleLog kBmcLog{"pqmodules/rbmcinfo"};

/// The platform families, as the detection tool's exit codes name them.
enum class BmcFamily : std::uint32_t {
  kNoBmc = 4,
  kGrantley = 5,
  kMarl = 7,
  kZk140 = 9,
  kIvyBridge = 11,
  kDetectionFailed = 255,
};

class RBMCInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  /// Where the rows of its tables come from.
  static TableSources DescribeTables();

  void EnumBMCInstances(RRepository& repo);
  void FormatInfoTable(RInstancesWrapper& table);
  void FormatSensorTable(RInstancesWrapper& table);

  /// What the detection tool says; kDetectionFailed also when it cannot be started.
  BmcFamily CheckBmc();

  // One step of a collection each. What a step returns steers nothing: 0 after its last row, 1
  // after a failure.

  /// Query `selector` of the six pipe queries: 1 controller, 2 self-test, 3 versions, 4 power
  /// supplies, 5 LAN, 6 LEDs. Any other selector runs nothing. Returns 1 also when nothing was
  /// added.
  int QueryOem(RRepository& repo, int selector);
  int CollectSensorReadings(RRepository& repo);
  /// Returns 1 also when nothing was added.
  int CollectSdr(RRepository& repo);
  int CollectFru(RRepository& repo);
  int CollectSel(RRepository& repo);
  void DumpSelHex();
  void DumpSensorIds();

 private:
  void CollectData(RRepository& repo);

  static TableSources DescribeOemTables();
  static TableSource DescribeSensors();
  static TableSource DescribeSdr();
  static TableSources DescribeFiles();

  /// Folder of the host's executable, fetched by each collection; the host's log folder, fetched by
  /// each enumeration.
  static std::string exePath;
  static std::string logDir;
};

}  // namespace pq
