// The sensor data repository as the utility lists it, a property per line:
//   0001 SDR Full 01 01 20 a 01 snum 01 P1 DTS Temp      = 29 OK   41.00 degrees C
// Whatever the utility prints is the table, its error texts too.
#include "pqmodules/rbmcinfo/sdr.h"

#include <string_view>

#include "frame/row_buffer.h"
#include "frame/sentences.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo/pipe_query.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

constexpr PipeQuery kSdrQuery{
    .command = "\\pq_tools\\ipmiutilnh.exe\" sensor",
    .announcement = "Start to run ipmiutilnh sensor command",
    .pipeFailure = "Create Pipe failed",
    .startFailureLevel = kProgress,
    .chunkRoom = 5120,
};
constexpr char kSdrTitle[] = "SDR Information";
constexpr Column kSdrColumn{"SDRINFO", "SDR Detailed Info",
                            "one line of the listing, such as a sensor with its reading"};

}  // namespace

int CollectSdr(const BmcCollection& collection) {
  const ModuleLog& log = collection.log;
  std::optional<PipedTool> tool = StartQuery(log, collection.hostFolder, kSdrQuery);
  if (!tool) return 1;
  const std::string output = CollectOutput(log, *tool, kSdrQuery);
  log(kProgress, "Oru Debug after sdr 1");
  log(kDetail, kWholeOutput, output.c_str());
  tool->Finish();
  log(kProgress, "Oru Debug after sdr 2");

  TokenScan lines(output, "\n\r");
  std::string_view line = lines.Next();
  if (line.empty()) return 1;
  // The instance is made between the first line's log entry and its property.
  log(kDetail, line, " ");
  RowBuffer row(collection.repo, kSdrInfo, kSdrTitle);
  row.Set(kSdrColumn, line);
  row.Commit();
  log(kProgress, "Oru Debug after sdr 3");
  for (line = lines.Next(); !line.empty(); line = lines.Next()) {
    log(kDetail, line, " ");
    row.Set(kSdrColumn, line);
    row.Commit();
  }
  log(kProgress, "Oru Debug after sdr 4");
  return 0;
}

void DescribeSdr(ModuleDescription& module) {
  TableDescription table{.className = kSdrInfo,
                         .title = "Sensor data records (SDR)",
                         .commands = {ParseToolCommand(kSdrQuery.command)}};
  table.AddColumn(kSdrColumn);
  module.tables.push_back(table);
  module.AddPipeFailure(kSdrQuery.pipeFailure, kSdrInfo);
  module.versionLines.push_back({"ipmiutil", kSdrInfo, "ipmiutil sensor version"});
}

}  // namespace pq
