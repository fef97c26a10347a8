// pqhost check and pqhost collect --dry-run: what a collection would find, and what it would run.

#include <fmt/format.h>

#include <algorithm>

#include "host/check/dry_machine.h"
#include "host/check/machine_check.h"
#include "host/collect/recorded_source.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"
#include "host/recorded/interpreter.h"
#include "host/recording/recording_reader.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

std::filesystem::path LogFolderOf(const Options& options) {
  return options.logFolder.value_or(kLogFolderName);
}

/// Why the library cannot be used; empty when it can.
std::string TryLibrary(const Options& options, const Console& console) {
  try {
    LoadLiveLibrary(options.plugin.value_or(console.programFolder / kPluginFileName), {});
    return {};
  } catch (const LiveError& error) {
    return error.what();
  }
}

CheckedMachine LookAtThisMachine(const Options& options, const Console& console) {
  CheckedMachine machine;
  machine.facts = DescribeThisMachine(LogFolderOf(options));
  machine.locate = &LocateProgram;
  machine.surroundings = LookAround(LogFolderOf(options));
  machine.surroundings->libraryProblem = TryLibrary(options, console);
  return machine;
}

/// A recorded machine has the tools whose answers were recorded.
CheckedMachine LookAtRecording(const std::filesystem::path& folder) {
  const Recording recording = LoadRecording(folder);
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

}  // namespace

int RunCheckCommand(const Options& options, const Console& console) {
  const CheckedMachine machine =
      options.replay ? LookAtRecording(*options.replay) : LookAtThisMachine(options, console);
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

int RunDryRunCommand(const Options& options, const Console& console) {
  const MachineFacts facts = options.replay ? DescribeRecording(LoadRecording(*options.replay))
                                            : DescribeThisMachine(LogFolderOf(options));
  const TextDecoder decode(facts.codePage);
  std::string module;
  for (const DryCommand& command :
       ListCommands({facts.hostExecutable, facts.logFolder, facts.languageId}, options.modules,
                    options.tables)) {
    if (command.module != module) {
      console.out << (module.empty() ? "" : "\n") << EscapeControls(command.module) << '\n';
    }
    module = command.module;
    console.out << "  " << EscapeControls(decode(command.commandLine)) << '\n';
  }
  return kExitDone;
}

}  // namespace host
