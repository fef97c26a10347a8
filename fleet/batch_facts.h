// What is kept of every recording, whether or not it is its server's newest: its result, and the
// errors of its drives.
#pragma once

#include "fleet/batch_changes.h"
#include "fleet/batch_recordings.h"
#include "fleet/database.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"

namespace fleet {

/// Adds to `changes` the facts that are others than the database has.
void CompareFacts(const UsableRecordings& usable, const RowTables& tables, const Schema& schema,
                  Connection& connection, BatchChanges& changes);

}  // namespace fleet
