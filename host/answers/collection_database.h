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
/// The same of a known machine that was assessed already. Lets go of what its tools printed, as the
/// database has none of that but the rows.
void AddCollection(DatabaseWriter& writer, Collection& collection, const Assessment& assessment,
                   std::string_view machine = {}, Attachments attachments = Attachments::kShown);
/// Adds one of several machines of which nothing is known but the verdict.
void AddVerdict(DatabaseWriter& writer, const Health& health, std::string_view machine);

/// Makes the whole of a database, which is empty, from one collection. Throws DatabaseError.
void FillDatabase(Database& database, const CollectionView& view);
/// The same of a known machine that was assessed already, letting go as AddCollection() does.
void FillDatabase(Database& database, Collection& collection, const Assessment& assessment,
                  Attachments attachments = Attachments::kShown);

}  // namespace host
