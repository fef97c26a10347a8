// Where the command interpreter looks for a program. Pure: text in, text out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The paths that `program`, without quotes, may be at, in the order in which the interpreter takes
/// the first that is a file. `folders` and `extensions` are PATH and PATHEXT, separated by
/// semicolons. A program that is given with a folder is in no other. The current folder is not
/// looked into: the host's environment forbids it.
std::vector<std::string> ListProgramPaths(std::string_view program, std::string_view folders,
                                          std::string_view extensions);

/// Whether a path, or a program on a command line, names its folder.
bool NamesFolder(std::string_view path);

}  // namespace host
