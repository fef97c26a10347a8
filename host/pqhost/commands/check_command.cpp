// pqhost check: everything that a collection would find, without running a tool of this machine.

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/check/check_json.h"
#include "host/check/devices.h"
#include "host/check/machine_check.h"
#include "host/collect/collect.h"
#include "host/collect/recorded_source.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/source.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/program_search.h"
#include "host/recording/recording_reader.h"
#include "host/text/json_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr char kCheckFooter[] = R"(Examples:
  pqhost check
  pqhost check --module BMC_Info --log-folder D:\logs
  pqhost check --replay RECORDING --format json

Exit codes: 0 all is there that this machine needs; 1 something is missing;
2 wrong use or unreadable input.
)";

struct CheckOptions {
  std::vector<std::string> modules;  ///< empty: all
  SourceOptions source;
  std::string format = "table";
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
  machine.devices = FindDevices(machine.surroundings->hardware);
  return machine;
}

/// A recorded machine has the tools whose answers were recorded, and these tell of its devices.
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
  const auto isThere = [&](const std::string& program) { return locate(program).has_value(); };
  const Collection collection = Collect(recording);
  return {.facts = DescribeRecording(recording),
          .locate = locate,
          .surroundings = std::nullopt,
          .devices = FindDevices(collection, isThere),
          .neverAsked = FindNeverAsked(collection)};
}

/// How a line begins.
struct Look {
  const char* word;
  const char* color;
};

constexpr char kGreen[] = "\x1b[32m";
constexpr char kYellow[] = "\x1b[33m";
constexpr char kRed[] = "\x1b[31m";

Look LookOf(Finding::Kind kind) {
  constexpr Look kLooks[] = {{"ok", kGreen}, {"note", kYellow}, {"missing", kRed}};
  return kLooks[static_cast<std::size_t>(kind)];
}

Look LookOf(CheckedTool::State state) {
  constexpr Look kLooks[] = {
      {"ok", kGreen}, {"missing", kRed}, {"note", kYellow}, {"planted", kRed}};
  return kLooks[static_cast<std::size_t>(state)];
}

const char* ColorOf(CheckedArea::Rating rating) {
  constexpr const char* kColors[] = {kGreen, kYellow, kRed, kGreen};
  return kColors[static_cast<std::size_t>(rating)];
}

/// The check for people: each area with its rating and its tools, then the machine.
class CheckWriter {
 public:
  explicit CheckWriter(const Console& console) : console(console) {}

  void Write(const MachineCheck& check) {
    for (const CheckedArea& area : check.areas) WriteArea(area);
    std::size_t width = 0;
    for (const Finding& finding : check.findings) {
      width = std::max(width, MeasureWidth(EscapeControls(finding.subject)));
    }
    console.out << "machine\n";
    for (const Finding& finding : check.findings) {
      WriteLine(LookOf(finding.kind),
                PadText(EscapeControls(finding.subject), width) + "  " + finding.text);
    }
  }

 private:
  void WriteArea(const CheckedArea& area) {
    console.out << EscapeControls(area.area) << ": ";
    WriteColored(ColorOf(area.rating), NameRating(area.rating));
    if (!area.text.empty()) console.out << ": " << EscapeControls(area.text);
    console.out << '\n';
    for (const CheckedTool& tool : area.tools) {
      const std::string origin = tool.vendor.empty()
                                     ? std::string()
                                     : fmt::format(" ({}, from {})", tool.product, tool.vendor);
      WriteLine(LookOf(tool.state), tool.text.empty() ? tool.path + origin : tool.text);
    }
  }

  void WriteLine(const Look& look, const std::string& text) {
    console.out << "  ";
    WriteColored(look.color, fmt::format("{:<7}", look.word));
    console.out << "  " << EscapeControls(text) << '\n';
  }

  void WriteColored(const char* color, const std::string& text) {
    console.out << (console.colors ? color : "") << text << (console.colors ? "\x1b[0m" : "");
  }

  const Console& console;
};

/// The stream escapes what a terminal would obey.
void WriteJson(const MachineCheck& check, const Console& console) {
  const std::string json = WriteCheckJson(check);
  if (console.outIsTerminal) {
    WriteJsonForTerminal(json, console.out);
  } else {
    console.out << json;
  }
}

/// Whether a tool is missing that has a place below the host's folder.
bool LacksTool(const MachineCheck& check) {
  return std::ranges::any_of(check.areas, [](const CheckedArea& area) {
    return std::ranges::any_of(area.tools, [](const CheckedTool& tool) {
      return tool.state == CheckedTool::State::kMissing && NamesFolder(tool.path);
    });
  });
}

int RunCheck(const CheckOptions& options, const Console& console) {
  const SourceOptions& source = options.source;
  RefuseMisuseOfReplay(source);
  const MachineCheck check =
      CheckMachine(source.replay ? LookAtRecording(source) : LookAtThisMachine(source, console),
                   options.modules);
  if (options.format == "json") {
    WriteJson(check, console);
  } else {
    CheckWriter(console).Write(check);
    if (!source.replay && LacksTool(check)) {
      console.out << "\"pqhost setup\" looks for missing tools on this machine.\n";
    }
  }
  return check.isComplete ? kExitDone : kExitIncomplete;
}

CommandRun DefineCheck(OptionSet& set) {
  const auto options = std::make_shared<CheckOptions>();
  AddModuleOption(set, options->modules, "Look at this module's tools; may be repeated");
  AddReplay(set, options->source);
  AddLogFolder(set, options->source);
  AddPlugin(set, options->source);
  AddUnsafeFolder(set, options->source);
  set.AddChoice("--format", {"table", "json"}, options->format, "Format: table or json");
  return [options](const Console& console) { return RunCheck(*options, console); };
}

}  // namespace

const Command kCheckCommand = {"check", "Tell what a collection would find, running nothing",
                               kCheckFooter, &DefineCheck};

}  // namespace host
