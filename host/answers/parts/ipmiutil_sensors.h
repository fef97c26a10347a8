// The sensors of a management controller, from two listings of ipmiutil: readings with their
// thresholds ("sensor -s -q"), and the sensor data records with the state bits ("sensor").
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/parts.h"
#include "host/answers/parts/report_lines.h"

namespace host {

/// Which cell of a line of the readings is the sensor's status, counted from 0.
std::size_t FindStatusCell(std::string_view line);

/// Gathers sensors: first the lines of the readings, then those of the records.
class SensorReader {
 public:
  explicit SensorReader(Parts& parts) : parts(parts) {}

  /// A line of the readings; `at` is the place of its status. False for a line that looks like one
  /// and is none.
  bool TakeReading(std::string_view line, const Place& at);
  /// The same for a line of the records. What it tells is added to the sensor of its name and
  /// number, or to a new one.
  bool TakeRecord(std::string_view line, const Place& at);
  /// When the last of the readings was taken; empty where their lines do not tell.
  const std::string& LatestTime() const { return latestTime; }

 private:
  Sensor& Add(std::string name, const Place& at);
  /// That later lines may tell more of it.
  void Remember(const Sensor& sensor);
  Sensor& FindOrAdd(const std::string& name, std::int64_t number, const Place& at);

  Parts& parts;
  // Places among the parts' sensors. Those without a number wait for their record, in their order.
  std::map<std::pair<std::string, std::int64_t>, std::size_t> numbered;
  std::map<std::string, std::vector<std::size_t>> unnumbered;  ///< the first one last
  bool hasRecords = false;
  std::string latestTime;
};

}  // namespace host
