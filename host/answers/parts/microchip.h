// What arcconf tells of Microchip (Adaptec) controllers.
#pragma once

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/parts.h"

namespace host {

/// Appends the controllers with all that belongs to them, their events, and the source "microchip".
void ReadMicrochip(const CollectedRows& rows, Parts& parts);

}  // namespace host
