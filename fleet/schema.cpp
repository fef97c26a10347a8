#include "fleet/schema.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <vector>

#include "fleet/parser.h"
#include "fleet/schema_texts.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

/// Any number that no other program of this database uses: one installation at a time.
constexpr char kSchemaLock[] = "select pg_advisory_xact_lock(7065669)";

/// What brings the tables from each version to the next; the first one's are made from schema.sql.
constexpr std::string_view const* kSteps[] = {&host::kSchema2Sql, &host::kSchema3Sql};
constexpr std::int64_t kVersion = 1 + std::size(kSteps);

constexpr char kDoor[] = "fleet_door";
constexpr char kWorker[] = "fleet_worker";
constexpr char kReader[] = "fleet_reader";

void MakeRoles(Connection& connection) {
  for (const char* role : {kDoor, kWorker, kReader}) {
    const bool isThere =
        connection.Ask("select 1 from pg_roles where rolname = $1", {role}).RowCount() > 0;
    if (!isThere) connection.Run(fmt::format("create role {} nologin", role));
    // Who installs it may act as each of them.
    const bool isMember =
        connection.Ask("select 1 where pg_has_role(current_user, $1, 'member')", {role})
            .RowCount() > 0;
    if (!isMember) connection.Run(fmt::format("grant {} to current_user", role));
  }
}

void GrantRights(Connection& connection, const RowTables& tables) {
  std::string rowTables;
  for (const RowTable& table : tables.All()) rowTables += ", " + table.stored;
  connection.Run(fmt::format(
      "grant usage on schema fleet to {0}, {1}, {2};"
      "grant select, insert on site, site_day, server, object, submission, job to {0};"
      "grant update on site_day, server, job to {0};"
      "grant select on parser, server_state to {0};"
      "grant select on parser to {2};"
      "grant select on schema_version to {0}, {2};"
      "grant select on all tables in schema fleet to {1};"
      "grant update on job, server to {1};"
      "grant insert, update, delete on result, drive_error, drive_growth, server_state{3} to {1};"
      "grant usage on sequence claim to {1};",
      kDoor, kWorker, kReader, rowTables));
  // Those of packs are for the views of them.
  const Answer views = connection.Ask(
      "select table_name from information_schema.views where table_schema = 'fleet' "
      "and table_name not in (select name from row_table)");
  for (std::size_t row = 0; row < views.RowCount(); ++row) {
    connection.Run(fmt::format("grant select on {} to {}", QuoteName(views.At(row, 0)), kReader));
  }
}

void DropViews(Connection& connection) {
  const Answer views = connection.Ask(
      "select table_name from information_schema.views where table_schema = 'fleet'");
  for (std::size_t row = 0; row < views.RowCount(); ++row) {
    connection.Run("drop view if exists " + QuoteName(views.At(row, 0)) + " cascade");
  }
}

/// The server's names, then what pqhost shows of a part.
void MakeView(Connection& connection, const RowTable& table) {
  std::string columns;
  for (const RowColumn& column : table.columns) columns += ", r." + QuoteName(column.name);
  connection.Run(
      fmt::format("create view {} as select v.name as server, t.name as site{} from {} r "
                  "join server v on v.id = r._server left join site t on t.id = v.site",
                  QuoteName(table.view), columns, QuoteName(table.name)));
  connection.Run(fmt::format("comment on view {} is {}", QuoteName(table.view),
                             QuoteLiteral(table.description)));
  for (const RowColumn& column : table.columns) {
    connection.Run(fmt::format("comment on column {}.{} is {}", QuoteName(table.view),
                               QuoteName(column.name), QuoteLiteral(column.description)));
  }
}

/// Column names and types of a table; none when it is not there.
std::map<std::string, std::string> FindColumns(Connection& connection, const std::string& table) {
  const Answer answer = connection.Ask(
      "select column_name, data_type from information_schema.columns "
      "where table_schema = 'fleet' and table_name = $1",
      {table});
  std::map<std::string, std::string> columns;
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    columns.emplace(answer.At(row, 0), answer.At(row, 1));
  }
  return columns;
}

/// Rows that are updated each night need room for the next ones beside them: then no index is told
/// of these, and the page is used again the night after.
void FillPages(Connection& connection, const RowTable& table) {
  connection.Run(fmt::format("alter table {} set (fillfactor = {})", QuoteName(table.name),
                             table.changesNightly ? 50 : 90));
}

void MakeSingleRows(Connection& connection, const RowTable& table, SchemaChanges& changes) {
  const std::map<std::string, std::string> there = FindColumns(connection, table.name);
  if (there.empty()) {
    std::string columns;
    for (const RowColumn& column : table.columns) {
      columns += fmt::format(", {} {}", QuoteName(column.name), column.type);
    }
    connection.Run(
        fmt::format("create table {} (_server int not null, _row int not null{}, "
                    "primary key (_server, _row))",
                    QuoteName(table.name), columns));
    connection.Ask("insert into row_table (name) values ($1) on conflict do nothing", {table.name});
    changes.push_back("new table " + table.name);
    FillPages(connection, table);
    return;
  }
  FillPages(connection, table);
  for (const RowColumn& column : table.columns) {
    const auto found = there.find(column.name);
    if (found != there.end() && found->second == column.type) continue;
    if (found != there.end()) {
      connection.Run(fmt::format("alter table {} drop column {}", QuoteName(table.name),
                                 QuoteName(column.name)));
    }
    connection.Run(fmt::format("alter table {} add column {} {}", QuoteName(table.name),
                               QuoteName(column.name), column.type));
    changes.push_back(fmt::format("new column {} of {}", column.name, table.name));
  }
}

// --- packs: rows as COPY writes them, of a server one after the other ---

std::string NameCell(const RowColumn& column) { return column.name + ' ' + column.type; }

/// How a pack is made of lines' cells.
std::string JoinCells(const std::string& cells, std::string_view order) {
  return fmt::format(
      R"(string_agg(array_to_string(array[{}]::text[], E'\t', '\N'), E'\n' order by {}))", cells,
      order);
}

/// The lines n of a pack, and their cells c.
std::string SplitPack(std::string_view rows) {
  return fmt::format(R"((select n::int, string_to_array(line, E'\t', '\N') as c)"
                     R"( from string_to_table({}, E'\n') with ordinality l(line, n) offset 0) u)",
                     rows);
}

/// Packs the rows that a former version had one by one.
void PackRows(Connection& connection, const RowTable& table,
              const std::map<std::string, std::string>& former) {
  std::string cells;
  for (const RowColumn& column : table.columns) {
    const auto found = former.find(column.name);
    const bool isThere = found != former.end() && found->second == column.type;
    cells += cells.empty() ? "" : ", ";
    cells += isThere ? fmt::format(R"(replace(replace(replace(replace({}::text, '\', '\\'),)"
                                   R"( E'\t', '\t'), E'\n', '\n'), E'\r', '\r'))",
                                   QuoteName(column.name))
                     : "null";
  }
  connection.Run(
      fmt::format("insert into {} select _server, 1, {} from {} group by 1; drop table {}",
                  QuoteName(table.stored), JoinCells(cells, "_row"), QuoteName(table.name),
                  QuoteName(table.name)));
}

/// Deals the cells of packs, which are `there`, over this build's columns.
void DealCells(Connection& connection, const RowTable& table, const std::vector<std::string>& there,
               SchemaChanges& changes) {
  std::string cells;
  for (const RowColumn& column : table.columns) {
    const auto found = std::find(there.begin(), there.end(), NameCell(column));
    cells += cells.empty() ? "" : ", ";
    cells += found == there.end() ? "null" : fmt::format("c[{}]", found - there.begin() + 1);
    if (found == there.end()) {
      changes.push_back(fmt::format("new column {} of {}", column.name, table.name));
    }
  }
  connection.Run(fmt::format("update {} set rows = (select {} from {})", QuoteName(table.stored),
                             JoinCells(cells, "n"), SplitPack("rows")));
}

/// What shows packed rows as rows.
void UnpackRows(Connection& connection, const RowTable& table) {
  std::string columns;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const RowColumn& column = table.columns[i];
    const std::string cell = fmt::format("u.c[{}]", i + 1);
    const bool isNumber = column.type != "text" && column.type != "jsonb";
    columns += ", (" +
               (isNumber ? cell
                         : fmt::format(R"(case when strpos({0}, '\') = 0 then {0})"
                                       R"( else read_escaped({0}) end)",
                                       cell)) +
               fmt::format(")::{} as {}", column.type, QuoteName(column.name));
  }
  connection.Run(
      fmt::format("create view {} as select p._server, p._row + u.n - 1 as _row{} from {} p "
                  "cross join lateral {}",
                  QuoteName(table.name), columns, QuoteName(table.stored), SplitPack("p.rows")));
}

void MakePacks(Connection& connection, const RowTable& table, SchemaChanges& changes) {
  std::vector<std::string> cells;
  for (const RowColumn& column : table.columns) cells.push_back(NameCell(column));
  std::vector<std::string> there;
  const Answer known = connection.Ask(
      "select c from row_table, unnest(columns) with ordinality u(c, n) where name = $1 order by n",
      {table.name});
  for (std::size_t row = 0; row < known.RowCount(); ++row) there.emplace_back(known.At(row, 0));
  if (there.empty()) {
    // Where this PostgreSQL has it, a fifth of the other's time.
    const bool hasLz4 = connection
                            .Ask(
                                "select 1 from pg_settings where name = 'default_toast_compression'"
                                " and 'lz4' = any(enumvals)")
                            .RowCount() > 0;
    connection.Run(
        fmt::format("create table {} (_server int not null, _row int not null, "
                    "rows text{} not null, primary key (_server, _row))",
                    QuoteName(table.stored), hasLz4 ? " compression lz4" : ""));
    const std::map<std::string, std::string> former = FindColumns(connection, table.name);
    if (former.empty()) {
      changes.push_back("new table " + table.name);
    } else {
      PackRows(connection, table, former);
    }
  } else if (there != cells) {
    DealCells(connection, table, there, changes);
  }
  connection.Ask(
      "insert into row_table (name, columns) values ($1, $2) "
      "on conflict (name) do update set columns = excluded.columns",
      {table.name, WriteTexts(cells)});
  UnpackRows(connection, table);
}

/// Makes this build the one whose workers write.
void MakeParser(Connection& connection, SchemaChanges& changes) {
  const std::string version = DescribeParser();
  const Answer current = connection.Ask(
      "select id, version, (select string_agg(coalesce(a.key, b.key), ', '"
      "  order by coalesce(a.key, b.key)) from jsonb_each(readers) a full join jsonb_each($1) b on "
      "b.key = a.key"
      "  where a.value is distinct from b.value and readers <> '{}') "
      "from parser where state = 'current'",
      {DescribeReaders()});
  connection.Run("update parser set state = 'old' where state = 'current'");
  const Answer answer = connection.Ask(
      "insert into parser (version, state, readers) values ($1, 'current', $2) "
      "on conflict (version) do update set state = 'current', readers = excluded.readers returning "
      "id",
      {version, DescribeReaders()});
  if (current.RowCount() > 0 && current.At(0, 1) == version) return;
  const std::string id(answer.At(0, 0));
  connection.Run(
      fmt::format("create table if not exists job_{0} partition of job for values in ({0}) "
                  "with (fillfactor = 70);"
                  // Ready or claimed ones alone: a claim costs the same however many are done.
                  "create index if not exists job_{0}_open on job_{0} (object) where state < 2;"
                  "create index if not exists job_{0}_parked on job_{0} (object) where state = 3",
                  id));
  std::string changed;
  if (current.RowCount() > 0 && !current.IsNull(0, 2)) {
    changed = fmt::format(", of which others: {}", current.At(0, 2));
  }
  changes.push_back(fmt::format("readers {}{}", version, changed));
  if (current.RowCount() == 0) return;
  const std::string before(current.At(0, 0));
  connection.Ask(
      "insert into job (parser, object) select $1, object from job "
      "where parser = $2 and state <> 2 on conflict (parser, object) "
      "do update set state = 0, attempts = 0, lost = 0, reason = null",
      {id, before});
  connection.Ask("delete from job where parser = $1 and state <> 2", {before});
  // So that a submission of what the former readers did is no new job.
  connection.Ask(
      "insert into job (parser, object, state) select $1, object, 2 from job "
      "where parser = $2 on conflict do nothing",
      {id, before});
  connection.Ask("delete from job where parser = $1", {before});
}

std::int64_t FindVersion(Connection& connection) {
  const Answer there = connection.Ask("select to_regclass('fleet.schema_version') is not null");
  if (there.At(0, 0) != "t") return 1;
  return connection.Ask("select version from fleet.schema_version").NumberAt(0, 0);
}

[[noreturn]] void RefuseNewer(Connection& connection) {
  throw host::UsageError(
      fmt::format("the tables are of version {}, and this program knows them up to {}: use the "
                  "pqfleet that made them, or a newer one",
                  FindVersion(connection), kVersion));
}

/// Brings tables of `version` to this build's.
void TakeSteps(Connection& connection, std::int64_t version) {
  for (; version < kVersion; ++version) {
    connection.Run(std::string(*kSteps[version - 1]));
  }
}

}  // namespace

SchemaState FindSchema(Connection& connection) {
  const Answer there = connection.Ask("select to_regclass('fleet.parser') is not null");
  if (there.At(0, 0) != "t") return SchemaState::kNone;
  const std::int64_t version = FindVersion(connection);
  if (version != kVersion) return version < kVersion ? SchemaState::kOlder : SchemaState::kNewer;
  const Answer current = connection.Ask(
      "select 1 from fleet.parser where state = 'current' and version = $1", {DescribeParser()});
  return current.RowCount() > 0 ? SchemaState::kCurrent : SchemaState::kOther;
}

SchemaChanges InstallSchema(Connection& connection, const RowTables& tables) {
  return RunTransaction(connection, [&] {
    SchemaChanges changes;
    connection.Ask(kSchemaLock);
    MakeRoles(connection);
    const SchemaState before = FindSchema(connection);
    if (before == SchemaState::kNewer) RefuseNewer(connection);
    if (before == SchemaState::kNone) {
      connection.Run("create schema if not exists fleet");
      connection.Run(std::string(host::kSchemaSql));
      TakeSteps(connection, 1);
    }
    DropViews(connection);
    if (before == SchemaState::kOlder) {
      const std::int64_t version = FindVersion(connection);
      TakeSteps(connection, version);
      changes.push_back(fmt::format("tables of version {} brought to {}", version, kVersion));
    }
    for (const RowTable& table : tables.All()) {
      table.IsPacked() ? MakePacks(connection, table, changes)
                       : MakeSingleRows(connection, table, changes);
    }
    MakeParser(connection, changes);
    for (const RowTable& table : tables.All()) {
      if (!table.view.empty()) MakeView(connection, table);
    }
    connection.Run(std::string(host::kViewsSql));
    if (before == SchemaState::kOlder) {
      connection.Run(
          "truncate drive_growth; insert into drive_growth (server, drive, controller, serial,"
          "  model, firmware, media_errors, media_errors_before, before) "
          "select * from find_growth(array(select id from server))");
    }
    GrantRights(connection, tables);
    return changes;
  });
}

void RequireSchema(Connection& connection, Older older) {
  switch (FindSchema(connection)) {
    case SchemaState::kNone:
      throw host::UsageError("there is no fleet in this database yet: make one with pqfleet init");
    case SchemaState::kOlder:
      if (older == Older::kAccepted) return;
      throw host::UsageError(
          fmt::format("the tables are of version {}, and this program's are {}: bring them to it "
                      "with pqfleet init --upgrade",
                      FindVersion(connection), kVersion));
    case SchemaState::kNewer:
      RefuseNewer(connection);
    case SchemaState::kOther:
    case SchemaState::kCurrent:
      return;
  }
}

Schema OpenSchema(Connection& connection, const RowTables& tables) {
  RequireSchema(connection);
  const std::string version = DescribeParser();
  const Answer parser =
      connection.Ask("select id from parser where state = 'current' and version = $1", {version});
  if (parser.RowCount() == 0) {
    throw host::UsageError(
        fmt::format("the database is made for other readers than those of this program ({}): use "
                    "the program that it was made with, or pqfleet init --upgrade",
                    version));
  }
  Schema schema{std::string(parser.At(0, 0)), {}};
  const Answer answer = connection.Ask("select name, id from row_table");
  std::map<std::string, std::uint16_t, std::less<>> numbers;
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    numbers.emplace(answer.At(row, 0), static_cast<std::uint16_t>(answer.NumberAt(row, 1)));
  }
  for (const RowTable& table : tables.All()) schema.tableNumbers.push_back(numbers.at(table.name));
  return schema;
}

}  // namespace fleet
