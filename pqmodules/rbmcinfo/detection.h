// Which BMC the machine has.
#pragma once

#include <cstdint>
#include <string>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

/// The platform families, as the detection tool's exit codes name them.
enum class BmcFamily : std::uint32_t {
  kNoBmc = 4,
  kGrantley = 5,
  kMarl = 7,
  kZk140 = 9,
  kIvyBridge = 11,
  kDetectionFailed = 255,
};

/// Asks the detection tool below `hostFolder`; kDetectionFailed also when it cannot be started.
BmcFamily DetectBmc(const ModuleLog& log, const std::string& hostFolder);

/// The log's words for a machine of `family`.
const char* GetDetectionMessage(BmcFamily family);

void DescribeDetection(ModuleDescription& module);

}  // namespace pq
