// A recording of the store, parsed in a process of its own.
#pragma once

#include <optional>
#include <string>

#include "fleet/batch.h"
#include "fleet/isolation.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/store.h"
#include "host/text/time_text.h"

namespace fleet {

/// What came of the recording with this key; what it answers fits `tables`. Without its number, and
/// the attempts before. Throws StoreFailure.
WorkedRecording ParseIsolated(const Store& store, Parser& parser, const RowTables& tables,
                              const std::string& key, const std::optional<host::LocalTime>& taken,
                              const IsolationLimits& limits, Sandbox sandbox);

}  // namespace fleet
