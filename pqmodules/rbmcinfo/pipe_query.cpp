#include "pqmodules/rbmcinfo/pipe_query.h"

#include <cstdint>

#include "frame/sentences.h"

namespace pq {

std::optional<PipedTool> StartQuery(CallerLog log, const std::string& hostFolder,
                                    const PipeQuery& query) {
  PipedTool tool("/c \"" + hostFolder + query.command);
  if (!tool.OpenPipe()) {
    log(kDetail, query.pipeFailure);
    return std::nullopt;
  }
  log(kDetail, query.announcement);
  if (const std::uint32_t error = tool.Start(); error != 0) {
    log(query.startFailureLevel, kStartFailure, error, ")");
    return std::nullopt;
  }
  return tool;
}

std::string CollectOutput(CallerLog log, PipedTool& tool, const PipeQuery& query) {
  return tool.Collect(query.chunkRoom, [&](const char* chunk, std::size_t count) {
    log(kDetail, kChunkSize, count);
    log(kDetail, chunk);
  });
}

}  // namespace pq
