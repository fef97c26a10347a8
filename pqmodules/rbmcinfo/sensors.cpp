// The sensor readings, ten fields a sensor:
//   P1 DTS Temp      |41.00 |C |OK |0.00 |0.00 |0.00 |88.00 |93.00 |98.00
// Lines mean nothing here: fields are dealt to the ten columns by count alone.
#include "pqmodules/rbmcinfo/sensors.h"

#include <array>
#include <cstddef>

#include "frame/label_table.h"
#include "frame/row_buffer.h"
#include "frame/sentences.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo/pipe_query.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

constexpr PipeQuery kSensorQuery{
    .command = "\\pq_tools\\ipmiutilnh.exe\" sensor -s -q",
    .announcement = "Start to run ipmiutilnh.exe sensor -s -q command",
    .pipeFailure = "Failed to create pipe for sensor info",
    .startFailureLevel = kProgress,
    .chunkRoom = 30720,
};
constexpr char kSensorTitle[] = "Sensor Status";

constexpr std::array<Column, 10> kSensorColumns{{
    {"item1", "Name", "name of the sensor"},
    {"item2", "Reading", "present value", ValueKind::kNumber},
    {"item3", "Units", "unit of the values, such as C or RPM"},
    {"item4", "Status", "OK, or which threshold was passed"},
    {"item5", "LNR", "lower non-recoverable threshold, in the sensor's unit", ValueKind::kNumber},
    {"item6", "LC", "lower critical threshold, in the sensor's unit", ValueKind::kNumber},
    {"item7", "LNC", "lower non-critical threshold, in the sensor's unit", ValueKind::kNumber},
    {"item8", "UNC", "upper non-critical threshold, in the sensor's unit", ValueKind::kNumber},
    {"item9", "UC", "upper critical threshold, in the sensor's unit", ValueKind::kNumber},
    {"item10", "UNR", "upper non-recoverable threshold, in the sensor's unit", ValueKind::kNumber},
}};

constexpr std::string_view kEndOfListing = " ";

}  // namespace

bool HasSensorErrorText(std::string_view output) {
  const std::string_view text = output.substr(0, output.find('\0'));
  return Contains(text, "Error in") || Contains(text, "Error:");
}

SensorListing FindSensorListing(std::string_view output) {
  SensorListing listing{output};
  TokenScan fields = listing.Fields();
  fields.Next();  // The first field of all is a name, whatever it holds.
  for (std::string_view field = fields.Next(); !field.empty(); field = fields.Next()) {
    if (field != kEndOfListing) continue;
    listing = {output.substr(0, static_cast<std::size_t>(field.data() - output.data())), true};
    break;
  }
  return listing;
}

int CollectSensorReadings(const BmcCollection& collection) {
  const ModuleLog& log = collection.log;
  std::optional<PipedTool> tool = StartQuery(log, collection.hostFolder, kSensorQuery);
  if (!tool) return 1;
  const std::string output = CollectOutput(log, *tool, kSensorQuery);
  log(kDetail, kWholeOutput, output.c_str());
  tool->Finish();
  if (HasSensorErrorText(output)) return 1;

  const SensorListing listing = FindSensorListing(output);
  TokenScan logged = listing.Fields();
  for (std::string_view field = logged.Next(); !field.empty(); field = logged.Next()) {
    log(kDetail, field);
  }
  if (listing.endedByBlank) {
    log(kDetail, kEndOfListing);
    log(kDetail, "found the blank value, break");
  }
  TokenScan dealt = listing.Fields();
  std::array<std::string_view, kSensorColumns.size()> sensor;
  while (DealRow(dealt, sensor)) {
    RowBuffer row(collection.repo, kSensorInfo, kSensorTitle);
    for (std::size_t i = 0; i < sensor.size(); ++i) row.Set(kSensorColumns[i], sensor[i]);
    row.Commit();
  }
  return 0;
}

void DescribeSensorReadings(ModuleDescription& module) {
  TableDescription table{.className = kSensorInfo,
                         .title = "Sensors",
                         .commands = {ParseToolCommand(kSensorQuery.command)}};
  table.AddColumns(kSensorColumns);
  module.tables.push_back(table);
  module.AddPipeFailure(kSensorQuery.pipeFailure, kSensorInfo);
}

}  // namespace pq
