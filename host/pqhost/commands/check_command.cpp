// pqhost check: everything that a collection would find, without running a tool.

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/check/machine_check.h"
#include "host/collect/recorded_source.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/source.h"
#include "host/recorded/interpreter.h"
#include "host/recording/recording_reader.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr char kFooter[] = R"(Examples:
  pqhost check
  pqhost check --module BMC_Info --log-folder D:\logs
  pqhost check --replay RECORDING

Exit codes: 0 everything is there; 1 something is missing; 2 wrong use or
unreadable input.
)";

struct CheckOptions {
  std::vector<std::string> modules;  ///< empty: all
  SourceOptions source;
};

/// Why the library cannot be used; empty when it can.
std::string TryLibrary(const SourceOptions& options, const Console& console) {
  try {
    LoadLiveLibrary(ChoosePlugin(options, console), {});
    return {};
  } catch (const LiveError& error) {
    return error.what();
  }
}

CheckedMachine LookAtThisMachine(const SourceOptions& options, const Console& console) {
  CheckedMachine machine;
  machine.facts = DescribeThisMachine(ChooseLogFolder(options));
  machine.locate = &LocateProgram;
  machine.surroundings = LookAround(ChooseLogFolder(options));
  machine.allowsUnsafeFolders = options.allowsUnsafeFolders;
  machine.surroundings->libraryProblem = TryLibrary(options, console);
  return machine;
}

/// A recorded machine has the tools whose answers were recorded.
CheckedMachine LookAtRecording(const SourceOptions& options) {
  const Recording recording = LoadRecording(*options.replay, options.rules);
  const auto locate =
      [commands = recording.commands](const std::string& program) -> std::optional<std::string> {
    const bool isThere =
        std::any_of(commands.begin(), commands.end(), [&](const RecordedCommand& command) {
          return ToolName(command.tool) == ToolName(program);
        });
    return isThere ? std::optional(program) : std::nullopt;
  };
  return {DescribeRecording(recording), locate, std::nullopt};
}

/// How a finding of each kind begins.
struct Look {
  const char* word;
  const char* color;
};

Look LookOf(Finding::Kind kind) {
  constexpr Look kLooks[] = {{"ok", "\x1b[32m"}, {"note", "\x1b[33m"}, {"missing", "\x1b[31m"}};
  return kLooks[static_cast<std::size_t>(kind)];
}

int RunCheck(const CheckOptions& options, const Console& console) {
  const SourceOptions& source = options.source;
  RefuseMisuseOfReplay(source);
  const CheckedMachine machine =
      source.replay ? LookAtRecording(source) : LookAtThisMachine(source, console);
  const std::vector<Finding> findings = CheckMachine(machine, options.modules);
  std::size_t width = 0;
  for (const Finding& finding : findings) {
    width = std::max(width, MeasureWidth(EscapeControls(finding.subject)));
  }
  bool isComplete = true;
  for (const Finding& finding : findings) {
    if (finding.kind == Finding::Kind::kMissing) isComplete = false;
    const Look look = LookOf(finding.kind);
    console.out << (console.colors ? look.color : "") << fmt::format("{:<7}", look.word)
                << (console.colors ? "\x1b[0m" : "") << "  "
                << PadText(EscapeControls(finding.subject), width) << "  "
                << EscapeControls(finding.text) << '\n';
  }
  return isComplete ? kExitDone : kExitIncomplete;
}

CommandRun Define(OptionSet& set) {
  const auto options = std::make_shared<CheckOptions>();
  AddModules(set, options->modules, "Look at this module's tools; may be repeated");
  AddReplay(set, options->source);
  AddLogFolder(set, options->source);
  AddPlugin(set, options->source);
  AddUnsafeFolder(set, options->source);
  return [options](const Console& console) { return RunCheck(*options, console); };
}

}  // namespace

const Command kCheckCommand = {"check", "Tell what a collection would find, running nothing",
                               kFooter, &Define};

}  // namespace host
