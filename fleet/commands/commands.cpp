#include "fleet/commands/commands.h"

namespace fleet {

const std::vector<const host::Command*>& GetCommands() {
  static const std::vector<const host::Command*> kCommands = {
      &kInitCommand,    &kSubmitCommand,  &kWorkCommand,   &kStatusCommand,  &kParkedCommand,
      &kReparseCommand, &kRebuildCommand, &kQueryCommand,  &kShowCommand,    &kHistoryCommand,
      &kExportCommand,  &kForgetCommand,  &kExpireCommand, &kMetricsCommand, &kServeCommand,
  };
  return kCommands;
}

}  // namespace fleet
