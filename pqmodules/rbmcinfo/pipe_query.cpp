#include "pqmodules/rbmcinfo/pipe_query.h"

#include <cstdint>

#include "frame/report_file.h"
#include "pqmodules/rbmcinfo.h"

namespace pq {

std::optional<PipedTool> StartQuery(const std::string& exePath, const PipeQuery& query) {
  PipedTool tool("/c \"" + exePath + query.command);
  if (!tool.OpenPipe()) {
    kBmcLog(kDetail, query.pipeFailure);
    return std::nullopt;
  }
  kBmcLog(kDetail, query.announcement);
  if (const std::uint32_t error = tool.Start(); error != 0) {
    kBmcLog(query.startFailureLevel, kStartFailure, error, ")");
    return std::nullopt;
  }
  return tool;
}

std::string CollectOutput(PipedTool& tool, const PipeQuery& query) {
  return tool.Collect(query.chunkRoom, [](const char* chunk, std::size_t count) {
    kBmcLog(kDetail, "dw:", count);
    kBmcLog(kDetail, chunk);
  });
}

}  // namespace pq
