// A database with a collection in it.
#pragma once

#include "host/database/database_writer.h"

namespace test {

/// Adds `collection` to an empty database of one machine.
inline void FillDatabase(host::Database& database, const host::Collection& collection) {
  host::DatabaseWriter writer(database, host::Machines::kOne);
  writer.Add(host::CollectionView(collection));
  writer.Complete();
}

}  // namespace test
