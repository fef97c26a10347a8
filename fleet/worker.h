// A worker: claims recordings, has each parsed in a process of its own, and writes what comes of
// them. Any number of them work on any number of machines.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "fleet/batch.h"
#include "fleet/database.h"
#include "fleet/isolation.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/store.h"

namespace fleet {

struct WorkRules {
  std::size_t batch = 64;  ///< recordings that are claimed at once
  std::chrono::seconds lease{60};
  bool once = false;  ///< end when nothing is ready
  Sandbox sandbox = Sandbox::kStrict;
  IsolationLimits limits;
};

class Worker {
 public:
  /// What there is to say to people, a line each.
  using Tell = std::function<void(const std::string& line)>;
  /// Waits, and returns whether somebody wants an end.
  using Wait = std::function<bool(std::chrono::milliseconds time)>;

  /// `parser`, which is warm, and `store` have to outlive this; `wait` is asked between recordings,
  /// for no time.
  Worker(ConnectionWords database, const Store& store, const RowTables& tables, Parser& parser,
         WorkRules rules, Wait wait, Tell tell)
      : database(std::move(database)),
        store(store),
        tables(tables),
        parser(parser),
        rules(rules),
        wait(std::move(wait)),
        tell(std::move(tell)) {}

  /// Works until it is asked to end, or, once, until nothing is ready. While the database cannot be
  /// reached or its disk is full, it waits and tries again. Throws UsageError when the database is
  /// not for this program, StoreFailure when the store is not there; what was claimed is ready for
  /// others then; DatabaseFailure when it refuses for another reason.
  BatchCounts Work();
  /// So far.
  const BatchCounts& Counts() const { return counts; }

 private:
  struct Claim;

  void WorkWith(Connection& connection);
  Claim TakeClaim(Connection& connection, const Schema& schema);
  void KeepLease(Connection& connection, const Schema& schema, const Claim& claim);
  void Release(Connection& connection, const Schema& schema, const Claim& claim);
  /// The same, if the database can be told.
  void TryRelease(Connection& connection, const Schema& schema, const Claim& claim) noexcept;
  bool WantsEnd() const { return wait(std::chrono::milliseconds(0)); }

  ConnectionWords database;
  const Store& store;
  const RowTables& tables;
  Parser& parser;
  WorkRules rules;
  Wait wait;
  Tell tell;
  BatchCounts counts;
};

}  // namespace fleet
