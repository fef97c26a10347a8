// Names of files that every system takes for the same file.
#pragma once

#include <string_view>

namespace host {

/// Whether `name`, without folders, means the same on every file system, and nothing outside the
/// folder that it is in: no "..", "a:b", "NUL.txt", nor "a.", which Windows takes for "a".
bool IsPlainName(std::string_view name);

}  // namespace host
