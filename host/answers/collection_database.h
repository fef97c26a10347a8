// A collection with all that is concluded from it, in a database (docs/sql.md).
#pragma once

#include <string_view>

#include "host/answers/parts/parts.h"
#include "host/database/database_writer.h"

namespace host {

/// Adds the parts of the machine added last, a table for each kind.
void AddParts(DatabaseWriter& writer, const Parts& parts);

/// Adds the collection's tables, its parts, and what is known of its machine. Throws DatabaseError.
void AddCollection(DatabaseWriter& writer, const CollectionView& view,
                   std::string_view machine = {});

/// Makes the whole of a database, which is empty, from one collection. Throws DatabaseError.
void FillDatabase(Database& database, const CollectionView& view);

}  // namespace host
