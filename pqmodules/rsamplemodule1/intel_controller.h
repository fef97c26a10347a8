// The controller of an Intel RST or VROC software RAID.
#pragma once

#include <optional>
#include <string_view>

#include "frame/description.h"
#include "frame/row_buffer.h"
#include "pqmodules/rsamplemodule1/collection.h"

namespace pq {

/// The fact in one line of the report.
struct IntelControllerFact {
  const Column* column = nullptr;
  std::string_view value;  ///< line end and all
  bool endsRow = false;
};

/// Tells the controller's facts by the places of their lines, counted from the report's start.
class IntelControllerScan {
 public:
  /// The fact in the next line (zero-terminated); nothing after the last one.
  std::optional<IntelControllerFact> Take(std::string_view line);

 private:
  int nextPlace = 0;
};

/// Adds the row of "CONTROLLER". A report that ends before the hardware revision adds none.
void CollectIntelController(const RaidInventoryCollection& collection);

void DescribeIntelController(ModuleDescription& module);

}  // namespace pq
