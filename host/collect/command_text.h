// Reading a command line of the modules for people.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The program that an interpreter's command line ("/c ...") runs, with its folder as written
/// there, without quotes. Empty when there is none.
std::string FindProgram(std::string_view commandLine);

/// The text after that program, up to a pipe or a redirection, without blanks at its ends.
std::string FindArguments(std::string_view commandLine);

/// The path that the output of the last program of a command line is written to, as it is written
/// there, without quotes; empty when it is not redirected.
std::string FindTarget(std::string_view commandLine);

/// The file name of that program; arguments, which may hold a password, are left out.
std::string FindTool(std::string_view commandLine);

}  // namespace host
