#include "fleet/removal.h"

#include <algorithm>

namespace fleet {
namespace {

std::vector<std::int64_t> TakeNumbers(const Answer& answer) {
  std::vector<std::int64_t> numbers;
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    numbers.push_back(answer.NumberAt(row, 0));
  }
  return numbers;
}

/// Of the recordings of submissions that went, those that are of no other. Returns how many.
std::size_t RemoveOrphans(Connection& connection, std::vector<std::int64_t> objects) {
  std::sort(objects.begin(), objects.end());
  objects.erase(std::unique(objects.begin(), objects.end()), objects.end());
  const std::string orphans = WriteNumbers(TakeNumbers(connection.Ask(
      "select o.id from object o where o.id = any($1::bigint[]) "
      "and not exists (select from submission s where s.object = o.id) "
      "and not exists (select from server_state e where e.object = o.id) order by 1 for update",
      {WriteNumbers(objects)})));
  for (const char* table : {"drive_error", "result", "job"}) {
    connection.Ask(std::string("delete from ") + table + " where object = any($1::bigint[])",
                   {orphans});
  }
  connection.Ask(
      "insert into removal select key from object where id = any($1::bigint[]) "
      "on conflict do nothing",
      {orphans});
  return connection.Ask("delete from object where id = any($1::bigint[])", {orphans}).Changed();
}

}  // namespace

RemovedCounts ForgetServers(Connection& connection, const RowTables& tables,
                            const std::vector<std::int64_t>& servers) {
  const std::string ids = WriteNumbers(servers);
  return RunTransaction(connection, [&] {
    connection.Ask("select 1 from server where id = any($1::int[]) order by id for update", {ids});
    for (const RowTable& table : tables.All()) {
      connection.Ask("delete from " + QuoteName(table.stored) + " where _server = any($1::int[])",
                     {ids});
    }
    for (const char* table : {"server_state", "drive_growth"}) {
      connection.Ask(std::string("delete from ") + table + " where server = any($1::int[])", {ids});
    }
    const Answer gone = connection.Ask(
        "delete from submission where server = any($1::int[]) returning object", {ids});
    connection.Ask("delete from server where id = any($1::int[])", {ids});
    return RemovedCounts{gone.RowCount(), RemoveOrphans(connection, TakeNumbers(gone))};
  });
}

RemovedCounts Expire(Connection& connection, unsigned days, Keep keep) {
  return RunTransaction(connection, [&] {
    connection.Ask("delete from site_day where day < now() - make_interval(days => $1)",
                   {std::to_string(days)});
    // A server's rows can be of an older recording than its newest, which is not parsed yet.
    const Answer gone = connection.Ask(
        "delete from submission s where taken < now() - make_interval(days => $1) "
        "and exists (select from submission n where n.server = s.server and n.taken > s.taken) "
        "and not exists (select from server_state e"
        "  where e.server = s.server and e.object = s.object and not exists ("
        "    select from submission n where n.server = s.server and n.object = s.object"
        "    and n.taken > s.taken)) "
        "and (not $2 or exists (select from submission m where m.server = s.server"
        "  and row(m.taken, m.object) < row(s.taken, s.object)"
        "  and m.taken >= date_trunc('month', s.taken, 'UTC'))) returning object",
        {std::to_string(days), keep == Keep::kFirstOfMonth ? "true" : "false"});
    return RemovedCounts{gone.RowCount(), RemoveOrphans(connection, TakeNumbers(gone))};
  });
}

void EmptyStore(Connection& connection, const Store& store) {
  const Answer answer = connection.Ask("select encode(key, 'hex') from removal order by key");
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    const std::string key(answer.At(row, 0));
    // It may have been submitted again since.
    const Answer known =
        connection.Ask("select 1 from object where key = decode($1, 'hex')", {key});
    if (known.RowCount() == 0) store.Remove(key);
    connection.Ask("delete from removal where key = decode($1, 'hex')", {key});
  }
}

}  // namespace fleet
