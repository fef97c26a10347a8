// What formats of a verdict say in the same words.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "host/answers/health/health.h"
#include "host/formats/health_formats.h"

namespace host {

inline constexpr std::array<Severity, 4> kWorstFirst{Severity::kCritical, Severity::kWarning,
                                                     Severity::kUnknown, Severity::kNotice};

/// As in "0 critical, 4 warning, 0 unknown, 3 notice".
std::string CountBySeverity(const Health& health);
/// As in "4 controllers, 32 drives"; "nothing" when it is.
std::string CountChecked(const Health& health);
/// In parentheses, after a blank; empty for a hit that alarms.
std::string DescribeSuppression(const HealthHit& hit);

/// As in "11 machines: 2 critical, 1 warning, 3 unknown, 5 OK".
std::string CountByVerdict(const std::vector<JudgedMachine>& machines);
std::size_t CountMachines(const std::vector<JudgedMachine>& machines, Severity worst);
/// The worst first, otherwise as they were named.
std::vector<const JudgedMachine*> SortByVerdict(const std::vector<JudgedMachine>& machines);

}  // namespace host
