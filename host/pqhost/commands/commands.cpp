#include "host/pqhost/commands/commands.h"

namespace host {

const std::vector<const Command*>& GetCommands() {
  static const std::vector<const Command*> kCommands = {
      &kCollectCommand, &kHealthCommand, &kDiffCommand,  &kModulesCommand,
      &kQueryCommand,   &kShowCommand,   &kCheckCommand, &kSetupCommand,
      &kVerifyCommand,  &kRedactCommand, &kHelpCommand,  &kCompletionCommand,
  };
  return kCommands;
}

}  // namespace host
