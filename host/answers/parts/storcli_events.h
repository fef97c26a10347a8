// The logs of an LSI controller: its events, and the term log of its firmware, which repeats some.
#pragma once

#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/report.h"

namespace host {

/// storcli /cN show events: appends its events. Read it after the controller's drives and volumes,
/// which events are about. Returns where the dump breaks off, in words; empty when it does not.
std::string ReadStorcliEvents(const Report& report, Parts& parts);
/// The same from rows of a table of events; `report` has controller and tool, and no text.
void ReadStorcliEventRows(const CollectedRowList& rows, const Report& report, Parts& parts);

/// storcli /cN show termlog: appends the events in it that are not known yet.
void ReadStorcliTermLog(const Report& report, Parts& parts);

}  // namespace host
