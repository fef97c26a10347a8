// The program's commands. Each returns the exit code and throws UsageError, RecordingError or
// LiveError when it cannot begin.
#pragma once

#include "host/pqhost/options.h"
#include "host/pqhost/pqhost.h"
#include "host/program/console.h"

namespace host {

int RunModulesCommand(const Options& options, const Console& console);
int RunCollectCommand(const Options& options, const Console& console);
int RunQueryCommand(const Options& options, const Console& console);
int RunCheckCommand(const Options& options, const Console& console);
/// Shows what a collection would run.
int RunDryRunCommand(const Options& options, const Console& console);

}  // namespace host
