// The sensor readings, ten fields a sensor:
//   P1 DTS Temp      |41.00 |C |OK |0.00 |0.00 |0.00 |88.00 |93.00 |98.00
// Lines mean nothing here: fields are dealt to the ten columns by count alone.
#include "pqmodules/rbmcinfo/sensors.h"

#include <algorithm>
#include <array>
#include <utility>

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

struct SensorColumn {
  const char* name;
  const char* key;
};

constexpr std::array<SensorColumn, 10> kSensorColumns{{
    {.name = "Name", .key = "item1"},
    {.name = "Reading", .key = "item2"},
    {.name = "Units", .key = "item3"},
    {.name = "Status", .key = "item4"},
    {.name = "LNR", .key = "item5"},  // lower thresholds: non-recoverable, critical, non-critical
    {.name = "LC", .key = "item6"},
    {.name = "LNC", .key = "item7"},
    {.name = "UNC", .key = "item8"},  // upper thresholds: non-critical, critical, non-recoverable
    {.name = "UC", .key = "item9"},
    {.name = "UNR", .key = "item10"},
}};

constexpr std::string_view kEndOfListing = " ";

}  // namespace

bool HasSensorErrorText(std::string_view output) {
  const std::string_view text = output.substr(0, output.find('\0'));
  return text.find("Error in") != text.npos || text.find("Error:") != text.npos;
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
  for (std::size_t row = 0; row < columns.RowCount(); ++row) {
    RInstance instance(kSensorInfo, kSensorTitle, kInstanceNumber);
    for (std::size_t column = 0; column < kSensorColumns.size(); ++column) {
      instance.AddProperty(kSensorColumns[column].key, kSensorColumns[column].name,
                           std::string(columns.At(row, column)), kPropertyFlag);
    }
    instance.AddToRepository(repo);
  }
  return 0;
}

}  // namespace pq
