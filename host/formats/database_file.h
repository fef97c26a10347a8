// A database as a file on its way to a stream.
#pragma once

#include <functional>
#include <ostream>

#include "host/database/database.h"

namespace host {

/// Has `fill` make the whole of a database, which is empty, and writes its file to `out`. It is
/// first made in the system's folder for temporary files. A DatabaseError, also of `fill`, becomes
/// std::runtime_error with that folder's name.
void WriteDatabase(std::ostream& out, const std::function<void(Database&)>& fill);

}  // namespace host
