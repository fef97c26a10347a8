// The sensors of the BMC with their readings, and the text pieces of the listing: its fields, up to
// the one that ends it, and the error screen.
#pragma once

#include <string_view>

#include "frame/description.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo/collection.h"

namespace pq {

/// Whether the utility reports an error anywhere in its listing, which ends at its first NUL.
bool HasSensorErrorText(std::string_view output);

struct SensorListing {
  std::string_view text;      ///< up to the field that ends it
  bool endedByBlank = false;  ///< that is one of exactly one blank

  /// Between bars and line ends, in the order in which they are dealt to the columns; empty ones
  /// vanish, blanks stay.
  TokenScan Fields() const { return {text, "|\n\r"}; }
};

/// What of `output` tells of sensors.
SensorListing FindSensorListing(std::string_view output);

/// Adds the rows of "SENSORINFO". Returns 0 after the last one, 1 after a failure.
int CollectSensorReadings(const BmcCollection& collection);

void DescribeSensorReadings(ModuleDescription& module);

}  // namespace pq
