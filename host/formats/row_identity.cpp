#include "host/formats/row_identity.h"

#include <fmt/format.h>

#include <random>

#include "host/answers/machine_identity.h"
#include "host/formats/machine_summary.h"
#include "host/text/time_text.h"

namespace host {

RowIdentity MakeRowIdentity(const Collection& collection) {
  const MachineFacts& machine = collection.machine;
  RowIdentity identity{NameMachine(collection), FindMachineIdentity(collection).serial, {}, {}};
  if (machine.recordedAt) {
    identity.recordedAt = FormatIsoTime(*machine.recordedAt);
  } else if (!machine.recorded) {
    identity.recordedAt = FormatIsoTime(collection.collected);
  }
  identity.collection = machine.contentKey.empty() ? MakeRandomText() : machine.contentKey;
  return identity;
}

std::string MakeRandomText() {
  constexpr int kNumbers = 4;
  std::random_device random;
  std::string text;
  for (int i = 0; i < kNumbers; ++i) text += fmt::format("{:08x}", random());
  return text;
}

}  // namespace host
