#include "host/pqhost/commands/commands.h"

namespace host {

const std::vector<const Command*>& GetCommands() {
  static const std::vector<const Command*> kCommands = {
      &kCollectCommand, &kHealthCommand, &kModulesCommand, &kQueryCommand,
      &kCheckCommand,   &kVerifyCommand, &kHelpCommand,    &kCompletionCommand,
  };
  return kCommands;
}

}  // namespace host
