// The program, as main.cpp calls it.
#pragma once

#include <string>
#include <vector>

#include "host/program/console.h"

namespace fleet {

/// Runs the program. `arguments` are UTF-8, without the program's name. Returns the exit code.
int RunPqfleet(const std::vector<std::string>& arguments, const host::Console& console);

}  // namespace fleet
