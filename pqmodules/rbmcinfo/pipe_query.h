// Queries whose answer is read through a pipe: the OEM queries, sensors and SDR.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "frame/module.h"
#include "frame/tool_runner.h"

namespace pq {

/// Begins the utility's error texts.
inline constexpr char kUtilityError[] = "Error";

struct PipeQuery {
  const char* command;    ///< after the host's folder
  Sentence announcement;  ///< logged before the start
  Sentence pipeFailure;
  unsigned startFailureLevel = kDetail;
  std::size_t chunkRoom = 1024;  ///< bytes, the terminator included
};

/// Starts the query's tool below `hostFolder`. A failure is logged, and there is no value.
std::optional<PipedTool> StartQuery(CallerLog log, const std::string& hostFolder,
                                    const PipeQuery& query);

/// All that the tool prints; each chunk is logged, its byte count first.
std::string CollectOutput(CallerLog log, PipedTool& tool, const PipeQuery& query);

}  // namespace pq
