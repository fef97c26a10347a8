// The program, as main.cpp and the tests call it.
#pragma once

#include <string>
#include <vector>

#include "host/program/console.h"

namespace host {

/// Runs the program. `arguments` are UTF-8, without the program's name. Returns the exit code.
int RunPqhost(const std::vector<std::string>& arguments, const Console& console);

}  // namespace host
