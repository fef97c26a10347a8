// Reading a command line of the modules for people.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The file name of the program that an interpreter's command line ("/c ...") runs; arguments,
/// which may hold a password, are left out. Empty when there is none.
std::string FindTool(std::string_view commandLine);

}  // namespace host
