// Recordings that go: those of a server, and old ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/row_tables.h"
#include "fleet/store.h"

namespace fleet {

struct RemovedCounts {
  std::size_t submissions = 0;
  std::size_t recordings = 0;  ///< that nobody else had submitted
};

/// Removes all that is known of these servers from the database. Throws DatabaseFailure; nothing
/// was removed then.
RemovedCounts ForgetServers(Connection& connection, const RowTables& tables,
                            const std::vector<std::int64_t>& servers);

/// Which of a server's old recordings stay, beside its newest.
enum class Keep { kNone, kFirstOfMonth };

/// Removes submissions that are older, but for those to be kept, and with them the recordings that
/// are of no other one. Throws DatabaseFailure; nothing was removed then.
RemovedCounts Expire(Connection& connection, unsigned days, Keep keep);

/// Takes out of the store what was removed from the database, also by a run that did not come to
/// that. Throws DatabaseFailure and StoreFailure; to do it again does no harm.
void EmptyStore(Connection& connection, const Store& store);

}  // namespace fleet
