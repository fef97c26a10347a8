// LSI controllers: what storcli and sas2ircu tell of them.
#pragma once

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/parts.h"

namespace host {

/// Every controller with all that is on it, from storcli's whole reports; of the first controller
/// from the tables of its lists where there are no reports. The source is "lsi".
void ReadLsi(const CollectedRows& rows, Parts& parts);

/// The log of a SAS2 adapter. The source is "sas2".
void ReadSas2(const CollectedRows& rows, Parts& parts);

}  // namespace host
