// The rows that the database has of each server's newest recording.
#pragma once

#include <cstdint>
#include <vector>

#include "fleet/batch_changes.h"
#include "fleet/batch_recordings.h"
#include "fleet/database.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"

namespace fleet {

/// The servers that sent one of the recordings, locked until the transaction ends.
std::vector<std::int64_t> LockServers(const UsableRecordings& usable, Connection& connection);

/// Adds to `changes` what becomes of the servers whose newest recording, as far as any is parsed,
/// is one of these. They have to be locked.
void CompareRows(const UsableRecordings& usable, const RowTables& tables, const Schema& schema,
                 Connection& connection, BatchChanges& changes);

}  // namespace fleet
