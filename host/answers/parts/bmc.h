// What the management controller's tools tell.
#pragma once

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/parts.h"

namespace host {

/// Appends sensors, entries of the system event log, power supplies, lights and the self-test, and
/// the sources "sensors", "sel", "fru", "power supplies" and "leds".
void ReadBmc(const CollectedRows& rows, Parts& parts);

}  // namespace host
