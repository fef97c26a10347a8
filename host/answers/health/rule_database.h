// A database whose tables are the parts of a machine, and the rules that are asked of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/answers/health/health.h"
#include "host/answers/health/health_options.h"
#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"
#include "host/database/database.h"
#include "host/database/prepared_query.h"

namespace host {

class RuleDatabase {
 public:
  /// `collection`, which may be null, is for rules of the user's: they can ask its classes as well.
  /// `options` outlives this. Throws HealthFileError.
  RuleDatabase(const HealthOptions& options, const Collection* collection);
  RuleDatabase(const RuleDatabase&) = delete;
  RuleDatabase& operator=(const RuleDatabase&) = delete;
  ~RuleDatabase();

  /// The hits of all rules, in their order. `now` is the time that those of logs are compared with,
  /// in seconds as of ReadWallTime. Throws HealthFileError for a rule that cannot be asked, and
  /// DatabaseError where what rules share cannot be made of these parts.
  std::vector<HealthHit> Ask(const Parts& parts, std::optional<std::int64_t> now);

 private:
  struct Table;
  struct Question;

  void AddFunctions();
  void AddPartTables();
  void AddTable(const RuleTable& table);
  void PrepareTable(const RuleTable& table);
  void AddQuestion(const Rule& rule);

  const HealthOptions& options;
  Parts none;
  const Parts* parts = &none;  ///< of the machine at hand
  std::optional<std::int64_t> now;
  double recentDays;
  Database database;
  std::vector<Table> tables;
  std::vector<Question> questions;
};

}  // namespace host
