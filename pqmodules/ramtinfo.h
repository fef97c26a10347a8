// Intel AMT: whether the machine has it, and its event log after asking the operator for address
// and credentials.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

class RAMTInfo : public CollectionModule {
 public:
  std::string GetName() override;
  std::string GetDescription() override;
  void RegisterTables() override;

  /// Tests for AMT at every call until it is found.
  void EnumAMTInstances(RRepository& repo);
  void FormatAMTLogTable(RInstancesWrapper& table);
};

}  // namespace pq
