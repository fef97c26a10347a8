// What all queries share whose answer is read through a pipe: the OEM queries, sensors and SDR.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "frame/tool_runner.h"

namespace pq {

struct PipeQuery {
  const char* command;       ///< behind the host's folder
  const char* announcement;  ///< logged before the start
  const char* pipeFailure;
  unsigned startFailureLevel;
  std::size_t chunkRoom;  ///< bytes, the terminator included
};

/// Starts the query's tool; logs what failed. Without a value nothing runs.
std::optional<PipedTool> StartQuery(const std::string& exePath, const PipeQuery& query);

/// All that the tool prints; each chunk is logged, its byte count first.
std::string CollectOutput(PipedTool& tool, const PipeQuery& query);

}  // namespace pq
