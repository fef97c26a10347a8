#include "host/pqhost/submission.h"

#include "host/answers/machine_identity.h"
#include "host/answers/tool_versions.h"
#include "host/text/decoder.h"
#include "host/text/version.h"

namespace host {

Submission DescribeSubmission(const Collection& collection) {
  const MachineFacts& machine = collection.machine;
  const TextDecoder decode(machine.codePage);
  Submission submission{.name = machine.name,
                        .recordedAt = machine.recordedAt,
                        .system = machine.system,
                        .serials = ListMachineSerials(collection),
                        .program = std::string("pqhost ") + kVersion};
  for (const ToolVersion& tool : FindToolVersions(collection)) {
    submission.tools[tool.tool] = decode(tool.version);
  }
  return submission;
}

}  // namespace host
