// The sensor readings, ten fields a sensor:
//   P1 DTS Temp      |41.00 |C |OK |0.00 |0.00 |0.00 |88.00 |93.00 |98.00
// Lines mean nothing here: fields are dealt to the ten columns by count alone.
#include "pqmodules/rbmcinfo/sensors.h"

#include <algorithm>
#include <array>
#include <utility>

#include "frame/label_table.h"
#include "frame/row_buffer.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo.h"
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

// The thresholds: lower non-recoverable, critical and non-critical, then the upper ones from
// non-critical on.
const std::array<Column, 10> kSensorColumns{{
    {.key = "item1", .label = "Name"},
    {.key = "item2", .label = "Reading"},
    {.key = "item3", .label = "Units"},
    {.key = "item4", .label = "Status"},
    {.key = "item5", .label = "LNR"},
    {.key = "item6", .label = "LC"},
    {.key = "item7", .label = "LNC"},
    {.key = "item8", .label = "UNC"},
    {.key = "item9", .label = "UC"},
    {.key = "item10", .label = "UNR"},
}};

constexpr std::string_view kEndOfListing = " ";

}  // namespace

bool HasSensorErrorText(std::string_view output) {
  const std::string_view text = output.substr(0, output.find('\0'));
  return Holds(text, "Error in") || Holds(text, "Error:");
}

SensorFields SplitSensorFields(std::string_view output) {
  SensorFields result{SplitTokens(output, "|\n\r")};
  std::vector<std::string_view>& fields = result.fields;
  if (fields.empty()) return result;
  // The first field of all is a name, whatever it holds.
  const auto end = std::find(fields.begin() + 1, fields.end(), kEndOfListing);
  result.endedByBlank = end != fields.end();
  fields.erase(end, fields.end());
  return result;
}

int RBMCInfo::CollectSensorReadings(RRepository& repo) {
  std::optional<PipedTool> tool = StartQuery(exePath, kSensorQuery);
  if (!tool) return 1;
  const std::string output = CollectOutput(*tool, kSensorQuery);
  kBmcLog(kDetail, "se:", output.c_str());
  tool->Finish();
  if (HasSensorErrorText(output)) return 1;

  SensorFields listing = SplitSensorFields(output);
  for (const std::string_view field : listing.fields) kBmcLog(kDetail, field);
  if (listing.endedByBlank) {
    kBmcLog(kDetail, kEndOfListing);
    kBmcLog(kDetail, "found the blank value, break");
  }
  const DealtColumns columns(std::move(listing.fields), kSensorColumns.size());
  for (std::size_t sensor = 0; sensor < columns.RowCount(); ++sensor) {
    RowBuffer row(repo, kSensorInfo, kSensorTitle);
    for (std::size_t column = 0; column < kSensorColumns.size(); ++column) {
      row.Set(kSensorColumns[column], columns.At(sensor, column));
    }
    row.Commit();
  }
  return 0;
}

TableSource RBMCInfo::DescribeSensors() {
  return {kSensorInfo,
          {ToolCommandOf(kSensorQuery.command)},
          {kSensorColumns.begin(), kSensorColumns.end()}};
}

}  // namespace pq
