// The sensor data repository as the utility lists it, a property per line:
//   0001 SDR Full 01 01 20 a 01 snum 01 P1 DTS Temp      = 29 OK   41.00 degrees C
// Whatever the utility prints is the table, its error texts too.
#include <vector>

#include "frame/row_buffer.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo.h"
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
const Column kSdrColumn{"SDRINFO", "SDR Detailed Info"};

}  // namespace

int RBMCInfo::CollectSdr(RRepository& repo) {
  std::optional<PipedTool> tool = StartQuery(exePath, kSdrQuery);
  if (!tool) return 1;
  const std::string output = CollectOutput(*tool, kSdrQuery);
  kBmcLog(kProgress, "Oru Debug after sdr 1");
  kBmcLog(kDetail, "se:", output.c_str());
  tool->Finish();
  kBmcLog(kProgress, "Oru Debug after sdr 2");

  const std::vector<std::string_view> lines = SplitTokens(output, "\n\r");
  if (lines.empty()) return 1;
  // The instance is made between the first line's log entry and its property.
  kBmcLog(kDetail, lines.front(), " ");
  RowBuffer row(repo, kSdrInfo, kSdrTitle);
  row.Set(kSdrColumn, lines.front());
  row.Commit();
  kBmcLog(kProgress, "Oru Debug after sdr 3");
  for (std::size_t at = 1; at < lines.size(); ++at) {
    kBmcLog(kDetail, lines[at], " ");
    row.Set(kSdrColumn, lines[at]);
    row.Commit();
  }
  kBmcLog(kProgress, "Oru Debug after sdr 4");
  return 0;
}

TableSource RBMCInfo::DescribeSdr() {
  return {kSdrInfo, {ToolCommandOf(kSdrQuery.command)}, {kSdrColumn}};
}

}  // namespace pq
