// storcli /cN/eall/sall show all, of both generations of the tool.
#pragma once

#include "host/answers/parts/report.h"

namespace host {

/// Adds to the drives what the report tells of each, and drives that are not known yet. Read it
/// after the controller's own report. Where the report breaks off, in words; empty when it is whole
/// as far as it tells.
std::string ReadStorcliDrives(const Report& report, Parts& parts);

}  // namespace host
