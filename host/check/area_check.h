// Rates the areas of a machine by the tools that are there.
#pragma once

#include <vector>

#include "frame/description.h"
#include "host/check/dry_machine.h"
#include "host/check/machine_check.h"

namespace host {

/// The areas that `modules` look at, as far as they have tools. `commands` are all that the modules
/// would run.
std::vector<CheckedArea> CheckAreas(const CheckedMachine& machine,
                                    const std::vector<DryCommand>& commands,
                                    const std::vector<const pq::ModuleDescription*>& modules);

}  // namespace host
