// What the database has of a server, as far as it takes to find what changed: a hash for each row.
// Of a log there is one hash for all rows, as these only grow at their end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

struct TableState {
  std::uint32_t rows = 0;
  bool isLog = false;
  std::vector<std::uint64_t> hashes;  ///< one for each row, of a log one for all

  bool operator==(const TableState&) const = default;
};

/// By the database's number of the table; without tables that have no rows.
using ServerState = std::map<std::uint16_t, TableState>;

TableState DescribeRows(const std::vector<std::uint64_t>& rowHashes, bool isLog);

/// Bytes as PostgreSQL's encode(…, 'hex') writes them.
std::string DecodeHex(std::string_view digits);

std::string PackState(const ServerState& state);
/// Throws std::runtime_error when `bytes` are none.
ServerState UnpackState(std::string_view bytes);

/// How a table becomes what a newer recording says. Rows count from 1.
struct TableChange {
  std::vector<std::uint32_t> removed;
  std::vector<std::uint32_t> added;  ///< of the newer recording

  bool IsEmpty() const { return removed.empty() && added.empty(); }
};

/// From `before` to rows with these hashes.
TableChange FindChange(const TableState& before, const std::vector<std::uint64_t>& rowHashes,
                       bool isLog);

}  // namespace fleet
