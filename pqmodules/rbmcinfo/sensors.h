// Text pieces of the sensor listing: its fields, up to the one that ends it, and the error screen.
#pragma once

#include <string_view>
#include <vector>

namespace pq {

/// Whether the utility reports an error anywhere in its listing, which ends at its first NUL.
bool HasSensorErrorText(std::string_view output);

struct SensorFields {
  std::vector<std::string_view> fields;  ///< in the order in which they are dealt to the columns
  bool endedByBlank = false;             ///< a field of exactly one blank ended the listing
};

/// Splits a listing at bars and line ends; empty fields vanish, blanks stay.
SensorFields SplitSensorFields(std::string_view output);

}  // namespace pq
