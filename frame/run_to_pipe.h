// A tool's output read through a pipe, as the modules log it.
#pragma once

#include <optional>
#include <string>

#include "frame/module.h"

namespace pq {

/// The words of a step whose tool cannot be run.
struct PipeFailures {
  Sentence pipe;   ///< the pipe cannot be created
  Sentence start;  ///< before the system error and ")"
};

/// Runs the tool and returns all that it writes to standard output and standard error, up to the
/// first NUL. Each chunk and the whole are logged. Nothing after a failure, which is logged.
std::optional<std::string> RunToPipe(CallerLog log, const std::string& commandLine,
                                     const PipeFailures& failures);

}  // namespace pq
