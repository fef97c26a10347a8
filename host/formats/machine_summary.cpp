#include "host/formats/machine_summary.h"

#include <string_view>

#include "host/answers/machine_identity.h"
#include "host/text/time_text.h"

namespace host {
namespace {

/// When the machine's tools gave their answers.
std::string FormatTime(const Collection& collection) {
  const MachineFacts& machine = collection.machine;
  if (machine.recordedAt) return FormatTimeForPeople(*machine.recordedAt);
  // A replay's own time would make old values look new.
  return machine.recorded ? "at an unknown time" : FormatTimeForPeople(collection.collected);
}

}  // namespace

std::string NameMachine(const Collection& collection) {
  const MachineFacts& machine = collection.machine;
  if (!collection.machineIsKnown) return "Answer";
  if (!machine.name.empty()) return machine.name;
  return machine.description.empty() ? "unnamed machine" : machine.description;
}

std::vector<std::pair<std::string, std::string>> ListMachineFacts(const Collection& collection) {
  const MachineFacts& machine = collection.machine;
  const MachineIdentity identity = FindMachineIdentity(collection);
  std::vector<std::pair<std::string, std::string>> facts;
  const auto add = [&](std::string_view name, std::string_view value) {
    if (!value.empty()) facts.emplace_back(name, value);
  };
  if (!collection.machineIsKnown) {
    add("Asked", FormatTimeForPeople(collection.collected));
    return facts;
  }
  if (machine.recorded && !machine.name.empty()) add("Description", machine.description);
  add("System", machine.system);
  add("Maker", identity.maker);
  add("Product", identity.product);
  add(identity.serialOf.empty() ? "Serial number" : "Serial number of the " + identity.serialOf,
      identity.serial);
  add("Asset tag", identity.assetTag);
  add(machine.recorded ? "Recorded" : "Collected", FormatTime(collection));
  return facts;
}

}  // namespace host
