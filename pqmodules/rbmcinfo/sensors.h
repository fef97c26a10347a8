// The sensors of the BMC with their readings, and the text pieces of the listing: its fields, up to
// the one that ends it, and the error screen.
#pragma once

#include <string_view>
#include <vector>

#include "frame/description.h"
#include "pqmodules/rbmcinfo/collection.h"

namespace pq {

/// Whether the utility reports an error anywhere in its listing, which ends at its first NUL.
bool HasSensorErrorText(std::string_view output);

struct SensorFields {
  std::vector<std::string_view> fields;  ///< in the order in which they are dealt to the columns
  bool endedByBlank = false;             ///< a field of exactly one blank ended the listing
};

/// Splits a listing at bars and line ends; empty fields vanish, blanks stay.
SensorFields SplitSensorFields(std::string_view output);

/// Adds the rows of "SENSORINFO". Returns 0 after the last one, 1 after a failure.
int CollectSensorReadings(const BmcCollection& collection);

void DescribeSensorReadings(ModuleDescription& module);

}  // namespace pq
