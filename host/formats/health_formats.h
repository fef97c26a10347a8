// A verdict for people, programs and Nagios, and the rules as a document.
#pragma once

#include <ostream>
#include <string>

#include "host/answers/health/health.h"
#include "host/text/screen.h"

namespace host {

/// The verdict in a line, then each finding with its evidence, reason and next step; `isBrief`:
/// each finding in a line.
void WriteHealthTable(const Health& health, bool isBrief, const Screen& screen, std::ostream& out);
/// One JSON object (docs/health.md).
void WriteHealthJson(const Health& health, std::ostream& out);
/// A line with performance data, then a line for each finding, as Nagios reads them.
void WriteHealthNagios(const Health& health, std::ostream& out);

/// docs/health.md: how machines are judged, and every rule of the program's own.
std::string WriteHealthDocument();

}  // namespace host
