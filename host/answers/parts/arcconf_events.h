// The event log of a Microchip (Adaptec) controller, as arcconf archives it.
#pragma once

#include "host/answers/parts/report.h"

namespace host {

/// Appends the controller's events. Of lines that are no events the first in a row is unread.
void ReadArcconfEvents(const Report& report, Parts& parts);

}  // namespace host
