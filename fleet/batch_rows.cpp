#include "fleet/batch_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "fleet/copy_text.h"
#include "fleet/server_state.h"

namespace fleet {
namespace {

/// As the table of servers has it.
std::int64_t FindSeverity(std::string_view verdict) {
  constexpr std::array<std::string_view, 4> kWorstFirst = {"critical", "warning", "unknown", "ok"};
  return std::find(kWorstFirst.begin(), kWorstFirst.end(), verdict) - kWorstFirst.begin();
}

class ServerComparison {
 public:
  ServerComparison(const RowTables& tables, const Schema& schema, BatchChanges& changes)
      : tables(tables), schema(schema), changes(changes) {}

  /// Notes what changes of the server's rows, of which `before` is known; returns what is to be
  /// known of them from now on.
  ServerState Compare(std::int64_t server, const SplitTables& rows, const ServerState& before) {
    const SplitTable noRows;
    ServerState now;
    for (std::size_t table = 0; table < tables.All().size(); ++table) {
      const std::uint16_t number = schema.tableNumbers[table];
      const auto old = before.find(number);
      const auto found = rows.find(table);
      if (old == before.end() && found == rows.end()) continue;
      const SplitTable& split = found == rows.end() ? noRows : found->second;
      const bool isLog = tables.At(table).isLog;
      const TableChange change = FindChange(
          old == before.end() ? TableState{0, isLog, {}} : old->second, split.hashes, isLog);
      if (!split.rows.empty()) now.emplace(number, DescribeRows(split.hashes, isLog));
      if (change.IsEmpty()) continue;
      BatchChanges::OfTable& changed = changes.tables[table];
      const std::size_t known = old == before.end() ? 0 : old->second.rows;
      const auto add = tables.At(table).IsPacked() ? &AddPack : &AddRows;
      add(server, split, known, change, changed);
      changes.rows += change.removed.size() + change.added.size();
    }
    return now;
  }

 private:
  static void AddRows(std::int64_t server, const SplitTable& split, std::size_t known,
                      const TableChange& change, BatchChanges::OfTable& changed) {
    for (const std::uint32_t row : change.removed) {
      if (row <= split.rows.size()) continue;
      changed.removedServers.push_back(server);
      changed.removedRows.push_back(row);
    }
    for (const std::uint32_t row : change.added) {
      const std::string_view cells = split.rows[row - 1];
      if (row > known) {
        changed.added += fmt::format("{}\t{}\t{}\n", server, row, cells);
        continue;
      }
      changed.changedServers.push_back(server);
      changed.changedRows.push_back(row);
      std::vector<Value> values = ReadCopyCells(cells);
      changed.changedCells.resize(values.size());
      for (std::size_t i = 0; i < values.size(); ++i) {
        changed.changedCells[i].push_back(std::move(values[i]));
      }
    }
  }

  /// The new end of a log is a pack of its own, until the packs are of so many rows that a new one
  /// of all costs no more.
  static void AddPack(std::int64_t server, const SplitTable& split, std::size_t known,
                      const TableChange& change, BatchChanges::OfTable& changed) {
    constexpr std::size_t kMostApart = 256;
    const std::size_t count = split.rows.size();
    const bool isEnd =
        known > 0 && change.removed.empty() && known / kMostApart == count / kMostApart;
    if (known > 0 && !isEnd) changed.removedServers.push_back(server);
    if (count == 0) return;
    const std::size_t first = isEnd ? known : 0;
    // They lie one after the other, with line feeds between.
    const char* const begin = split.rows[first].data();
    const std::string_view last = split.rows.back();
    changed.packs.BeginRow(3)
        .Add(static_cast<std::int32_t>(server))
        .Add(static_cast<std::int32_t>(first + 1))
        .Add({begin, static_cast<std::size_t>(last.data() + last.size() - begin)});
  }

  const RowTables& tables;
  const Schema& schema;
  BatchChanges& changes;
};

}  // namespace

std::vector<std::int64_t> LockServers(const UsableRecordings& usable, Connection& connection) {
  std::vector<std::int64_t> servers;
  const Answer locked = connection.Ask(
      "select id from server where id in "
      "(select server from submission where object = any($1::bigint[])) order by id for update",
      {WriteObjects(usable)});
  for (std::size_t row = 0; row < locked.RowCount(); ++row) {
    servers.push_back(locked.NumberAt(row, 0));
  }
  return servers;
}

void CompareRows(const UsableRecordings& usable, const RowTables& tables, const Schema& schema,
                 Connection& connection, BatchChanges& changes) {
  const Answer newest = connection.Ask(
      "with candidate as ("
      "  select distinct on (s.server) s.server, s.object, s.taken, o.key"
      "  from submission s join object o on o.id = s.object"
      "  where s.object = any($1::bigint[]) order by s.server, s.taken desc, o.key desc)"
      "select c.server, c.object, encode(e.rows, 'hex'), e.object, e.parser "
      "from candidate c left join server_state e on e.server = c.server "
      "where e.server is null or e.object = c.object or row(c.taken, c.key) > ("
      "  select s.taken, o.key from submission s join object o on o.id = s.object"
      "  where s.server = c.server and s.object = e.object order by 1 desc limit 1) "
      "order by c.server",
      {WriteObjects(usable)});
  ServerComparison comparison(tables, schema, changes);
  for (std::size_t row = 0; row < newest.RowCount(); ++row) {
    const ServerState before = UnpackState(DecodeHex(newest.At(row, 2)));
    const std::int64_t server = newest.NumberAt(row, 0);
    const std::int64_t object = newest.NumberAt(row, 1);
    const UsableRecording& one = usable.at(object);
    changes.judgedServers.push_back(server);
    changes.severities.push_back(FindSeverity(one.worked->parsed.verdict));
    const ServerState now = comparison.Compare(server, one.tables, before);
    const bool isSame =
        now == before && newest.NumberAt(row, 3) == object && newest.At(row, 4) == schema.parser;
    if (isSame) continue;
    changes.stateServers.push_back(server);
    changes.states.BeginRow(4)
        .Add(static_cast<std::int32_t>(server))
        .Add(object)
        .Add(static_cast<std::int16_t>(std::stoi(schema.parser)))
        .Add(PackState(now));
  }
}

}  // namespace fleet
