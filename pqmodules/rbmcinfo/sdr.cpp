// The sensor data repository as the utility lists it, a property per line:
//   0001 SDR Full 01 01 20 a 01 snum 01 P1 DTS Temp      = 29 OK   41.00 degrees C
// Whatever the utility prints is the table, its error texts too.
#include <vector>

#include "frame/tokens.h"
#include "pqmodules/rbmcinfo.h"
#include "pqmodules/rbmcinfo/line_table.h"
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
constexpr LineProperty kSdrProperty{"SDRINFO", "SDR Detailed Info"};

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
  const auto logLine = [](std::string_view line) { kBmcLog(kDetail, line, " "); };
  logLine(lines.front());
  RInstance instance(kSdrInfo, kSdrTitle, kInstanceNumber);
  AddLine(instance, repo, kSdrProperty, std::string(lines.front()));
  kBmcLog(kProgress, "Oru Debug after sdr 3");
  for (std::size_t at = 1; at < lines.size(); ++at) {
    logLine(lines[at]);
    AddLine(instance, repo, kSdrProperty, std::string(lines[at]));
  }
  kBmcLog(kProgress, "Oru Debug after sdr 4");
  return 0;
}

}  // namespace pq
