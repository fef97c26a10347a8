// What Intel AMT tells.
#pragma once

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/parts.h"

namespace host {

/// Appends the entries of AMT's event log, and the source "amt".
void ReadAmt(const CollectedRows& rows, Parts& parts);

}  // namespace host
