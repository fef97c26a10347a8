#include "host/pqhost/commands/commands.h"

namespace host {

const std::vector<const Command*>& GetCommands() {
  static const std::vector<const Command*> commands = {
      &kCollectCommand, &kModulesCommand, &kQueryCommand, &kCheckCommand, &kCompletionCommand,
  };
  return commands;
}

}  // namespace host
