// A collection with all that is concluded from it, in a database (docs/sql.md).
#pragma once

#include <string_view>

#include "host/answers/assessment.h"
#include "host/answers/parts/parts.h"
#include "host/database/database_writer.h"

namespace host {

/// Adds the parts of the machine added last, a table for each kind.
void AddParts(DatabaseWriter& writer, const Parts& parts);

/// Adds the collection's tables, its parts, what is wrong, and what is known of its machine. Throws
/// DatabaseError.
void AddCollection(DatabaseWriter& writer, const CollectionView& view,
                   std::string_view machine = {});
/// The same of a known machine that was assessed already.
void AddCollection(DatabaseWriter& writer, const CollectionView& view, const Assessment& assessment,
                   std::string_view machine = {});
/// Adds one of several machines of which nothing is known but the verdict.
void AddVerdict(DatabaseWriter& writer, const Health& health, std::string_view machine);

/// Makes the whole of a database, which is empty, from one collection. Throws DatabaseError.
void FillDatabase(Database& database, const CollectionView& view);
/// The same of a known machine's, which nobody else needs: of what its tools printed, nothing is
/// kept longer than it takes to read it.
void FillDatabase(Database& database, Collection collection);
/// The same of a known machine that was assessed already.
void FillDatabase(Database& database, const CollectionView& view, const Assessment& assessment);

}  // namespace host
