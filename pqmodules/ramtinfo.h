// Intel AMT: whether the machine has it, and its event log after asking the operator for address
// and credentials.
#pragma once

#include <string>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

class RAMTInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;
  static ModuleDescription Describe();

  /// Tests for AMT at every call; the first call that finds it collects.
  void EnumAMTInstances(RRepository& repo);
  void FormatAMTLogTable(RInstancesWrapper& table);

  /// 0 when the machine has AMT, 1 when it has not or the test could not run.
  int CheckAMT();
  /// As CollectAmtLog.
  int CollectAMTData(RRepository& repo);
};

}  // namespace pq
