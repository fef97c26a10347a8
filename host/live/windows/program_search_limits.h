// Keeps this process and its tools from running or loading what lies about in folders that others
// may write to.
#pragma once

namespace host {

/// From now on, and for good: the interpreter does not look for programs in the current folder, and
/// libraries are only looked for in the system's folder, in the program's and beside the library
/// that needs them. A system that lacks one of these is left without it.
void LimitProgramSearch();

}  // namespace host
