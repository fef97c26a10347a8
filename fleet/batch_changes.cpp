#include "fleet/batch_changes.h"

#include <fmt/format.h>

#include "fleet/parsed.h"

namespace fleet {
namespace {

/// In their places, where an index needs to be told of none unless its columns are others.
void UpdateRows(const BatchChanges::OfTable& change, const RowTable& described,
                Connection& connection) {
  std::string sets;
  std::string arrays = "$1::int[], $2::int[]";
  std::string names = "s, r";
  std::vector<Value> values = {WriteNumbers(change.changedServers),
                               WriteNumbers(change.changedRows)};
  for (std::size_t i = 0; i < described.columns.size(); ++i) {
    values.push_back(WriteValues(change.changedCells[i]));
    sets += fmt::format("{}{} = c{}", i == 0 ? "" : ", ", QuoteName(described.columns[i].name), i);
    arrays += fmt::format(", ${}::{}[]", values.size(), described.columns[i].type);
    names += fmt::format(", c{}", i);
  }
  connection.Ask(fmt::format("update {} t set {} from unnest({}) u({}) "
                             "where t._server = u.s and t._row = u.r",
                             QuoteName(described.stored), sets, arrays, names),
                 values);
}

/// The rows of servers, and what is kept of each server.
void ApplyRows(BatchChanges& changes, const RowTables& tables, Connection& connection) {
  for (auto& [table, change] : changes.tables) {
    const RowTable& described = tables.At(table);
    const std::string name = QuoteName(described.stored);
    if (described.IsPacked() && !change.removedServers.empty()) {
      connection.Ask(fmt::format("delete from {} where _server = any($1::int[])", name),
                     {WriteNumbers(change.removedServers)});
    } else if (!change.removedRows.empty()) {
      connection.Ask(fmt::format("delete from {} t using unnest($1::int[], $2::int[]) u(s, r) "
                                 "where t._server = u.s and t._row = u.r",
                                 name),
                     {WriteNumbers(change.removedServers), WriteNumbers(change.removedRows)});
    }
    if (!change.changedRows.empty()) UpdateRows(change, described, connection);
    if (!change.packs.IsEmpty()) connection.Copy(name + " (_server, _row, rows)", change.packs);
    if (change.added.empty()) continue;
    std::string columns = "_server, _row";
    for (const RowColumn& column : described.columns) columns += ", " + QuoteName(column.name);
    connection.Copy(fmt::format("{} ({})", name, columns), change.added);
  }
  if (!changes.judgedServers.empty()) {
    connection.Ask(
        "update server v set severity = u.s from unnest($1::int[], $2::smallint[]) "
        "u(v, s) where v.id = u.v and v.severity <> u.s",
        {WriteNumbers(changes.judgedServers), WriteNumbers(changes.severities)});
  }
  if (!changes.stateServers.empty()) {
    connection.Ask("delete from server_state where server = any($1::int[])",
                   {WriteNumbers(changes.stateServers)});
    connection.Copy("server_state (server, object, parser, rows)", changes.states);
  }
}

/// What is kept of each recording.
void ApplyFacts(const BatchChanges& changes, Connection& connection) {
  if (!changes.factObjects.empty()) {
    for (const char* table : {"result", "drive_error"}) {
      connection.Ask(fmt::format("delete from {} where object = any($1::bigint[])", table),
                     {WriteNumbers(changes.factObjects)});
    }
  }
  if (!changes.results.empty()) {
    connection.Copy(
        "result (object, parser, row_count, problems, statuses, verdict, critical, warning, "
        "unknown, notice, reasons, hash, cpu_us)",
        changes.results);
  }
  if (!changes.driveErrors.empty()) {
    std::string columns = "object";
    for (const char* column : kDriveErrorColumns) columns += fmt::format(", {}", column);
    connection.Copy(fmt::format("drive_error ({})", columns), changes.driveErrors);
  }
}

}  // namespace

void ApplyChanges(BatchChanges& changes, const RowTables& tables, Connection& connection) {
  ApplyRows(changes, tables, connection);
  ApplyFacts(changes, connection);
}

}  // namespace fleet
