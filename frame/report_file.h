// A tool's report in a file of the log folder: run the tool with its output redirected there, then
// read the file back.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "frame/module.h"
#include "frame/platform.h"
#include "frame/sentences.h"

namespace pq {

/// How a step starts its tool and reports a failed start: `failure` + system error + ")".
struct StartRule {
  bool inheritHandles = false;
  unsigned failureLevel = kDetail;
  Sentence failure{kStartFailure, kCallersLine};
};

/// `/c ""PROGRAM" ARGUMENTS > "REPORT""`: the command line of a tool whose output the interpreter
/// writes into the file `reportPath`.
std::string BuildReportCommand(const std::string& program, const std::string& arguments,
                               const std::string& reportPath);

/// Runs the tool and waits for its end. A failed start is logged; false then.
bool RunLogged(CallerLog log, const std::string& commandLine, const StartRule& rule = {});

/// Opens `path`, its backslashes doubled. A failure is logged at level 4 as `failure`; null then.
/// The step that reads it closes it before it lets go of its rows.
std::unique_ptr<TextFile> OpenReport(CallerLog log, const std::string& path,
                                     const Sentence& failure);

}  // namespace pq
