#include "host/pqhost/live.h"

namespace host {
namespace {

constexpr char kNeedsWindows[] =
    "collecting from this machine itself needs Windows; here, give a recording with --replay "
    "FOLDER";

}  // namespace

std::unique_ptr<LiveLibrary> LoadLiveLibrary(const std::filesystem::path& /*plugin*/,
                                             MachineObserver* /*observer*/) {
  throw LiveError(kNeedsWindows);
}

bool HasProgram(const std::string& /*program*/) { return false; }

MachineFacts PrepareLiveMachine(const std::filesystem::path& /*folder*/) {
  throw LiveError(kNeedsWindows);
}

}  // namespace host
