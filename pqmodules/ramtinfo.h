// Intel AMT: whether the machine has it, and its event log after asking the operator for address
// and credentials.
#pragma once

#include <string>

#include "frame/module.h"
#include "frame/table_source.h"

namespace pq {

class RAMTInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  /// Where the rows of its tables come from.
  static TableSources DescribeTables();

  /// Tests for AMT at every call; the first call that finds it collects.
  void EnumAMTInstances(RRepository& repo);
  void FormatAMTLogTable(RInstancesWrapper& table);

  /// 0 when the machine has AMT, 1 when it has not or the test could not run.
  int CheckAMT();
  /// Asks the operator and records the AMT log, one instance that grows line by line. Returns 0,
  /// also when the operator declines, or 1 after a failure.
  int CollectAMTData(RRepository& repo);
};

}  // namespace pq
