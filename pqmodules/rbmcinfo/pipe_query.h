// Queries whose answer is read through a pipe: the OEM queries, sensors and SDR.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "frame/tool_runner.h"
#include "pqmodules/rbmcinfo/collection.h"

namespace pq {

/// Begins the utility's error texts.
inline constexpr char kUtilityError[] = "Error";

struct PipeQuery {
  const char* command;       ///< after the host's folder
  const char* announcement;  ///< logged before the start
  const char* pipeFailure;
  unsigned startFailureLevel;
  std::size_t chunkRoom;  ///< bytes, the terminator included
};

/// Starts the query's tool. A failure is logged, and there is no value.
std::optional<PipedTool> StartQuery(const BmcCollection& collection, const PipeQuery& query);

/// All that the tool prints; each chunk is logged, its byte count first.
std::string CollectOutput(const ModuleLog& log, PipedTool& tool, const PipeQuery& query);

}  // namespace pq
