// pqhost setup: finds the vendors' tools on this machine and puts them into their places.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/check/machine_check.h"
#include "host/check/tool_setup.h"
#include "host/files/whole_file.h"
#include "host/live/live.h"
#include "host/live/tool_files.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/source.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr char kSetupFooter[] = R"(Examples:
  pqhost setup
  pqhost setup --from D:\downloads
  pqhost setup --from D:\downloads --copy

Exit codes: 0 every tool that this machine needs is in its place; 1 one is not;
2 wrong use.
)";

struct SetupOptions {
  std::vector<fs::path> from;
  bool copies = false;
};

/// PATH is a list of folders with programs, not of folders that contain others.
constexpr SearchLimits kFlat{.depth = 0};

std::vector<ToolPlace> FindPlaces(const SetupOptions& options, const Console& console) {
  if (ViewLiveMachine() == nullptr) {
    throw UsageError("setup looks for programs on this very machine and needs Windows");
  }
  CheckedMachine machine;
  machine.facts = DescribeThisMachine(ChooseLogFolder({}));
  machine.locate = &LocateProgram;
  machine.devices = FindDevices(LookAround(ChooseLogFolder({})).hardware);
  std::vector<ToolPlace> places = ListToolPlaces(CheckMachine(machine, {}), console.programFolder);
  FindTools(options.from, {}, places);
  FindTools(ListPathFolders(), kFlat, places);
  FindTools(ListInstallFolders(), {}, places);
  return places;
}

/// "C:\tools\storcli64.exe, version 7.2.0.0, signed by Example Inc."
std::string DescribeFile(const fs::path& file) {
  const FileOrigin origin = ReadOrigin(file);
  return fmt::format("{}, {}, {}", PathText(file),
                     origin.version.empty() ? "no version" : "version " + origin.version,
                     origin.signer.empty() ? "not signed" : "signed by " + origin.signer);
}

class Setup {
 public:
  Setup(const SetupOptions& options, const Console& console) : options(options), console(console) {}

  int Run() {
    for (ToolPlace& place : FindPlaces(options, console)) Treat(place);
    if (offered > 0) {
      console.out << fmt::format(
          "{} can be put into {} with --copy; look at version and signer first\n",
          offered == 1 ? "1 tool" : fmt::format("{} tools", offered),
          offered == 1 ? "its place" : "their places");
    }
    return lacking == 0 ? kExitDone : kExitIncomplete;
  }

 private:
  void Treat(const ToolPlace& place) {
    if (place.isThere) {
      Tell("ok", DescribeFile(place.place));
      return;
    }
    const bool isNeeded = place.tool.state == CheckedTool::State::kMissing;
    if (place.found.empty()) {
      Tell(isNeeded ? "missing" : "note", place.tool.text);
    } else if (options.copies) {
      Copy(place);
      return;
    } else {
      Offer(place);
    }
    if (isNeeded) ++lacking;
  }

  void Offer(const ToolPlace& place) {
    ++offered;
    Tell("found", fmt::format("for {}: {}", PathText(place.place), DescribeFile(place.found[0])));
    for (std::size_t i = 1; i < place.found.size(); ++i) {
      Tell("", "or " + DescribeFile(place.found[i]));
    }
  }

  void Copy(const ToolPlace& place) {
    const std::string what = DescribeFile(place.found[0]);
    try {
      CreateWholeFile(place.place, ReadWholeFile(place.found[0]), Readers::kAsUsual);
      Tell("copied", fmt::format("to {}: {}", PathText(place.place), what));
    } catch (const std::runtime_error& error) {
      Tell("missing", fmt::format("{}: {}", what, error.what()));
      ++lacking;
    }
  }

  void Tell(const char* word, const std::string& text) {
    console.out << fmt::format("{:<7}  {}\n", word, EscapeControls(text));
  }

  const SetupOptions& options;
  const Console& console;
  int offered = 0;
  int lacking = 0;
};

int RunSetup(const SetupOptions& options, const Console& console) {
  for (const fs::path& folder : options.from) {
    std::error_code ignored;
    if (!fs::is_directory(folder, ignored)) {
      throw UsageError(fmt::format("there is no folder {}", PathText(folder)));
    }
  }
  return Setup(options, console).Run();
}

CommandRun DefineSetup(OptionSet& set) {
  const auto options = std::make_shared<SetupOptions>();
  set.AddPaths("--from", OptionValue::kFolder, options->from,
               "Look in this folder, too, before all others; may be repeated");
  set.AddFlag("--copy", options->copies,
              "Put what is found into its place; what is there already stays");
  return [options](const Console& console) { return RunSetup(*options, console); };
}

}  // namespace

const Command kSetupCommand = {"setup", "Find the vendors' tools on this machine (Windows)",
                               kSetupFooter, &DefineSetup};

}  // namespace host
