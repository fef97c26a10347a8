// Folders whose paths the command interpreter does not read as they are on the modules' lines.
// Other programs than the machine's tools may be started then, or other files written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// The character of the host's folder at which the interpreter ends the program's name on lines
/// with no quotes but those around it, or a % anywhere. The interpreter keeps such quotes when
/// there is a blank between them and none of &<>()@^|; it takes all others away. No quotes protect
/// a %.
std::optional<char> FindSplit(std::string_view folder);

/// Why no collection is to run from the host's folder, and what to do; nothing when it may. UTF-8.
std::optional<std::string> ObjectToHostFolder(const std::string& folder);

/// The same for the log folder, whose path is always in quotes of its own.
std::optional<std::string> ObjectToLogFolder(const std::string& folder);

}  // namespace host
