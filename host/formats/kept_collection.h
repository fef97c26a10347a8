// Collections that were written as a result, read back.
#pragma once

#include <string_view>

#include "host/collect/collection.h"
#include "host/database/database.h"

namespace host {

// Texts of these collections are UTF-8. They have all rows, statuses, problems and parts, but not
// the tools' answers, nor the files of the machine. Both throw std::runtime_error with the reason
// alone, which follows the file's name: "is JSON, but no collection".

/// From the document of the format json (docs/json.md). It has no log, and of a column that rows
/// label otherwise only the first label.
Collection ReadJsonCollection(std::string_view json);

/// From a database of the format sqlite (docs/sql.md). How a table wants to be shown and the names
/// of its instances are not in it, of a property's attributes only the file name. Throws
/// DatabaseError as well.
Collection ReadDatabaseCollection(Database& database);

}  // namespace host
