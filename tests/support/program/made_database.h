// A database that somebody else made.
#pragma once

#include <string>

namespace test {

/// Makes the file `path` (UTF-8) with plain SQLite, which obeys all statements of `sql`.
void MakeDatabase(const std::string& path, const std::string& sql);

}  // namespace test
