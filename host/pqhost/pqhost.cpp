#include "host/pqhost/pqhost.h"

#include <exception>
#include <new>
#include <string>

#include "host/files/text_store.h"
#include "host/live/live.h"
#include "host/pqhost/commands/command_line.h"
#include "host/program/short_of_memory.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

int Fail(const Console& console, const std::exception& error, int exitCode) {
  Complain(console, error.what());
  return exitCode;
}

int RunAndExplain(const std::vector<std::string>& arguments, const Console& console) {
  const auto choose = [&](int usual) { return ChooseFailureExit(arguments, usual); };
  try {
    return RunCommandLine(arguments, console);
  } catch (const UsageError& error) {
    return Fail(console, error, choose(kExitMisused));
  } catch (const RecordingError& error) {
    return Fail(console, error, choose(kExitMisused));
  } catch (const LiveError& error) {
    return Fail(console, error, choose(kExitMisused));
  } catch (const std::bad_alloc&) {
    Complain(console, kShortOfMemory);
    return choose(kExitIncomplete);
  } catch (const std::exception& error) {
    return Fail(console, error, choose(kExitIncomplete));
  }
}

}  // namespace

int RunPqhost(const std::vector<std::string>& arguments, const Console& console) {
  UseTemporaryFiles();
  const int exitCode = RunAndExplain(arguments, console);
  // Nothing is lost by it; where memory was short it tells why.
  if (const std::string problem = GetTextStore().TakeProblem(); !problem.empty()) {
    Complain(console, problem);
  }
  console.out.flush();
  if (console.out) return exitCode;
  // Also when the exit code is a verdict: who reads it would take a part for the whole.
  Complain(console, "standard output could not be written");
  return ChooseFailureExit(arguments, exitCode == kExitDone ? kExitIncomplete : exitCode);
}

}  // namespace host
