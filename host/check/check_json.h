// A machine's check for programs.
#pragma once

#include <string>

#include "host/check/machine_check.h"

namespace host {

/// One JSON object (docs/json.md), with a line feed at its end.
std::string WriteCheckJson(const MachineCheck& check);

/// The words of JSON, which people are shown too.
const char* NameRating(CheckedArea::Rating rating);

}  // namespace host
