// What workers found out, written into the database as one transaction.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/parsed.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"

namespace fleet {

/// A recording that this worker has claimed, and what came of it.
struct WorkedRecording {
  std::int64_t object = 0;
  std::int64_t attempts = 0;  ///< before this one
  Parsed parsed;
  std::string failure;  ///< why nothing was parsed; empty when it was, or the recording was refused
  bool mayPass = false;  ///< another attempt may end otherwise
  std::int64_t cpuMicroseconds = 0;
};

struct BatchCounts {
  std::size_t done = 0;
  std::size_t parked = 0;
  std::size_t again = 0;  ///< ready for another attempt
  std::size_t taken = 0;  ///< by another worker meanwhile: nothing was written for them
  std::size_t rows = 0;   ///< written or removed, apart from those about jobs

  BatchCounts& operator+=(const BatchCounts& other);
};

class BatchWriter {
 public:
  /// All of them have to outlive this.
  BatchWriter(Connection& connection, const RowTables& tables, const Schema& schema)
      : connection(connection), tables(tables), schema(schema) {}

  /// Writes all of `batch`, claimed as `claim`. When PostgreSQL refuses values, each is written by
  /// itself, and the one that they are of is parked. Throws DatabaseFailure when nothing was
  /// written; the same batch can be tried again.
  BatchCounts Write(const std::vector<WorkedRecording>& batch, const std::string& claim);

 private:
  Connection& connection;
  const RowTables& tables;
  const Schema& schema;
};

/// Looks at what another process says it parsed, and refuses what does not fit the tables: the
/// reason, or nothing.
std::string FindMisfit(const Parsed& parsed, const RowTables& tables);

}  // namespace fleet
