#include "host/live/live.h"

namespace host {
namespace {

constexpr char kNeedsWindows[] =
    "collecting from this machine itself, and recording it, needs Windows; here, give a recording "
    "with --replay RECORDING";

}  // namespace

std::unique_ptr<LiveLibrary> LoadLiveLibrary(const std::filesystem::path& /*plugin*/,
                                             const LiveWatch& /*watch*/) {
  throw LiveError(kNeedsWindows);
}

std::unique_ptr<MachineView> ViewLiveMachine() { return nullptr; }

Recording DescribeLiveMachine(const LiveMachine& /*machine*/) { throw LiveError(kNeedsWindows); }

std::optional<std::string> LocateProgram(const std::string& /*program*/) { return std::nullopt; }

std::filesystem::path FindDefaultLogFolder() { return "logs"; }

MachineFacts DescribeThisMachine(const std::filesystem::path& /*logFolder*/) {
  throw LiveError(kNeedsWindows);
}

LiveMachine PrepareLiveMachine(const std::filesystem::path& /*logFolder*/,
                               FolderAccess /*access*/) {
  throw LiveError(kNeedsWindows);
}

bool IsElevated() { return false; }

Surroundings LookAround(const std::filesystem::path& /*logFolder*/) {
  throw LiveError(kNeedsWindows);
}

}  // namespace host
