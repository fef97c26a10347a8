#include "host/pqhost/pqhost.h"

#include <exception>

#include "host/formats/formats.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/options.h"
#include "host/program/result_output.h"
#include "host/recording/recording_file.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

int RunCommand(const Options& options, const Console& console) {
  const Format* format = FindFormat(options.format);
  if (format != nullptr && format->isBinary) {
    RefuseBytesOnTerminal(options.format, options.output, console);
  }
  switch (options.command) {
    case Command::kModules:
      return RunModulesCommand(options, console);
    case Command::kCollect:
      return options.dryRun ? RunDryRunCommand(options, console)
                            : RunCollectCommand(options, console);
    case Command::kCheck:
      return RunCheckCommand(options, console);
    case Command::kQuery:
      return RunQueryCommand(options, console);
    case Command::kShowText:
      break;
  }
  console.out << options.text;
  return kExitDone;
}

}  // namespace

int RunPqhost(const std::vector<std::string>& arguments, const Console& console) {
  int exitCode = kExitDone;
  try {
    exitCode = RunCommand(ParseOptions(arguments), console);
  } catch (const UsageError& error) {
    Complain(console, error.what());
    exitCode = kExitMisused;
  } catch (const RecordingError& error) {
    Complain(console, error.what());
    exitCode = kExitMisused;
  } catch (const LiveError& error) {
    Complain(console, error.what());
    exitCode = kExitMisused;
  } catch (const std::exception& error) {
    Complain(console, error.what());
    exitCode = kExitIncomplete;
  }
  console.out.flush();
  if (!console.out && exitCode == kExitDone) {
    Complain(console, "standard output could not be written");
    exitCode = kExitIncomplete;
  }
  return exitCode;
}

}  // namespace host
