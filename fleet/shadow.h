// What this program's readers would make of the servers' newest recordings, beside what the
// database has of them. Nothing is written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/store.h"

namespace fleet {

/// Of one table, or of the verdicts, or of recordings that would be parked.
struct ShadowChanges {
  std::size_t rows = 0;  ///< changed, new or gone
  std::size_t servers = 0;
  std::vector<std::string> examples;  ///< the first ones, a line each
};

struct ShadowResult {
  std::size_t servers = 0;  ///< that were looked at
  std::map<std::string, ShadowChanges> changes;
};

class Shadow {
 public:
  /// All of them have to outlive this. `connection` is in a transaction that reads.
  Shadow(Connection& connection, const Store& store, const RowTables& tables, Parser& parser);

  /// Of these servers; of all when there is none. Throws DatabaseFailure and StoreFailure.
  ShadowResult Look(const std::vector<std::string>& servers, const std::function<bool()>& wantsEnd);

 private:
  struct Server;

  std::vector<Server> FindNext(const std::vector<std::string>& names, std::int64_t after);
  void LookAt(const Server& server);
  void CompareTable(const Server& server, std::size_t table, const std::string& rows);
  std::string DescribeRow(const Server& server, const RowTable& table, std::uint32_t row,
                          std::string_view now);
  ShadowChanges& Count(const std::string& what, std::size_t rows);

  Connection& connection;
  const Store& store;
  const RowTables& tables;
  Parser& parser;
  std::map<std::string, std::uint16_t> numbers;             ///< of tables in the database
  std::map<std::string, std::vector<std::string>> columns;  ///< that it has of them
  ShadowResult result;
};

}  // namespace fleet
