#include "fleet/batch.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "fleet/copy_text.h"
#include "fleet/server_state.h"
#include "host/files/sha256.h"
#include "host/text/hex_text.h"

namespace fleet {
namespace {

/// As often a recording may end its process before it is parked.
constexpr std::int64_t kMostAttempts = 3;

/// A bytea, as a cell of COPY.
std::string WriteBytes(std::string_view bytes) { return "\\\\x" + host::HexText(bytes); }

/// As the table of servers has it.
std::int64_t FindSeverity(std::string_view verdict) {
  constexpr std::array<std::string_view, 4> kWorstFirst = {"critical", "warning", "unknown", "ok"};
  return std::find(kWorstFirst.begin(), kWorstFirst.end(), verdict) - kWorstFirst.begin();
}

/// Rows of a recording, ready to be compared and copied.
struct SplitTable {
  std::vector<std::string_view> rows;
  std::vector<std::uint64_t> hashes;
};

/// All that is to be changed by a transaction, gathered so that each table is told once.
struct Changes {
  struct OfTable {
    std::vector<std::int64_t> removedServers, removedRows;
    std::string added;  ///< as COPY has it
  };
  std::map<std::size_t, OfTable> tables;
  std::vector<std::int64_t> judgedServers, severities;
  std::vector<std::int64_t> stateServers;
  std::string states;
  std::vector<std::int64_t> factObjects;
  std::string results;
  std::string driveErrors;
};

class Transaction {
 public:
  Transaction(Connection& connection, const RowTables& tables, const Schema& schema,
              const std::vector<WorkedRecording>& batch, const std::string& claim)
      : connection(connection), tables(tables), schema(schema), batch(batch), claim(claim) {}

  BatchCounts Run() {
    // Rows on which workers and readers rely are found by their keys; plans made of statistics of
    // another hour read whole tables.
    connection.Run(
        "set local enable_hashjoin = off; set local enable_mergejoin = off;"
        "set local enable_seqscan = off");
    FindMine();
    for (const WorkedRecording* one : mine) {
      if (IsUsable(*one)) usable.emplace(one->object, one);
    }
    CompareFacts();
    CompareRows();
    Apply();
    UpdateGrowth();
    EndJobs();
    return counts;
  }

 private:
  static bool IsUsable(const WorkedRecording& one) {
    return one.failure.empty() && one.parsed.refusal.empty();
  }

  /// Fence: what another worker took over when the lease was over is left to it.
  void FindMine() {
    std::vector<std::int64_t> objects;
    for (const WorkedRecording& one : batch) objects.push_back(one.object);
    const Answer answer = connection.Ask(
        "select j.object from job j join parser p on p.id = j.parser "
        "where j.parser = $1 and j.object = any($2::bigint[]) and j.claim = $3 and j.state = 1 "
        "and p.state = 'current' order by j.object for update of j",
        {schema.parser, WriteNumbers(objects), claim});
    std::set<std::int64_t> locked;
    for (std::size_t row = 0; row < answer.RowCount(); ++row) {
      locked.insert(answer.NumberAt(row, 0));
    }
    for (const WorkedRecording& one : batch) {
      if (locked.count(one.object) > 0) mine.push_back(&one);
    }
    counts.taken = batch.size() - mine.size();
  }

  std::vector<std::int64_t> ListUsable() const {
    std::vector<std::int64_t> objects;
    for (const auto& [object, one] : usable) objects.push_back(object);
    return objects;
  }

  /// Splits the recording's rows. They were looked at when they came (FindMisfit).
  const std::map<std::size_t, SplitTable>& Split(const WorkedRecording& one) {
    const auto [found, isNew] = splits.try_emplace(one.object);
    if (!isNew) return found->second;
    for (const ParsedTable& table : one.parsed.tables) {
      SplitTable& split = found->second[table.table];
      split.rows = SplitCopyRows(table.rows, tables.At(table.table).columns.size());
      for (const std::string_view row : split.rows) split.hashes.push_back(HashRow(row));
    }
    return found->second;
  }

  /// What is kept of every recording, where it is another than before.
  void CompareFacts() {
    const Answer before = connection.Ask(
        "select object, encode(hash, 'hex'), parser from result "
        "where object = any($1::bigint[])",
        {WriteNumbers(ListUsable())});
    std::map<std::int64_t, std::pair<std::string, std::string>> known;
    for (std::size_t row = 0; row < before.RowCount(); ++row) {
      known[before.NumberAt(row, 0)] = {std::string(before.At(row, 1)),
                                        std::string(before.At(row, 2))};
    }
    for (const auto& [object, one] : usable) {
      std::string result;
      const std::string hash = WriteResult(*one, result);
      const auto found = known.find(object);
      if (found != known.end() && found->second == std::pair(hash, schema.parser)) continue;
      if (found != known.end()) {
        changes.factObjects.push_back(object);
        ++counts.rows;
      }
      changes.results += result;
      ++counts.rows;
      for (const std::string_view row :
           SplitCopyRows(one->parsed.driveErrors, kDriveErrorColumns.size())) {
        changes.driveErrors += fmt::format("{}\t{}\n", object, row);
        ++counts.rows;
      }
    }
  }

  /// The recording's row of `result`; returns its hash.
  std::string WriteResult(const WorkedRecording& one, std::string& result) {
    const Parsed& parsed = one.parsed;
    std::size_t rows = 0;
    std::string digested = parsed.driveErrors;
    for (const auto& [table, split] : Split(one)) {
      rows += split.rows.size();
      digested += fmt::format("{}:{}\n", tables.At(table).name, split.rows.size());
      digested.append(reinterpret_cast<const char*>(split.hashes.data()),
                      split.hashes.size() * sizeof(split.hashes[0]));
    }
    const FindingCounts& found = parsed.counts;
    std::string cells = fmt::format("{}\t{}\t", rows, parsed.problems);
    AppendCopyCell(cells, parsed.statuses);
    cells += '\t';
    AppendCopyCell(cells, parsed.verdict);
    cells += fmt::format("\t{}\t{}\t{}\t{}\t", found.critical, found.warning, found.unknown,
                         found.notice);
    AppendCopyCell(cells, WriteTexts(parsed.reasons));
    std::string hash = host::ComputeSha256(digested + cells);
    result = fmt::format("{}\t{}\t{}\t\\\\x{}\t{}\n", one.object, schema.parser, cells, hash,
                         one.cpuMicroseconds);
    return hash;
  }

  /// The servers whose newest recording, as far as any is parsed, is one of these.
  void CompareRows() {
    const std::string objects = WriteNumbers(ListUsable());
    const Answer locked = connection.Ask(
        "select id from server where id in "
        "(select server from submission where object = any($1::bigint[])) order by id for update",
        {objects});
    for (std::size_t row = 0; row < locked.RowCount(); ++row) {
      servers.push_back(locked.NumberAt(row, 0));
    }
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
        {objects});
    for (std::size_t row = 0; row < newest.RowCount(); ++row) {
      const ServerState before = UnpackState(DecodeHex(newest.At(row, 2)));
      const std::int64_t server = newest.NumberAt(row, 0);
      const WorkedRecording& one = *usable.at(newest.NumberAt(row, 1));
      changes.judgedServers.push_back(server);
      changes.severities.push_back(FindSeverity(one.parsed.verdict));
      const ServerState now = CompareServer(server, Split(one), before);
      const bool isSame = now == before && newest.NumberAt(row, 3) == one.object &&
                          newest.At(row, 4) == schema.parser;
      if (isSame) continue;
      changes.stateServers.push_back(server);
      changes.states += fmt::format("{}\t{}\t{}\t{}\n", server, one.object, schema.parser,
                                    WriteBytes(PackState(now)));
    }
  }

  ServerState CompareServer(std::int64_t server, const std::map<std::size_t, SplitTable>& rows,
                            const ServerState& before) {
    static const SplitTable kNoRows;
    ServerState now;
    for (std::size_t table = 0; table < tables.All().size(); ++table) {
      const std::uint16_t number = schema.tableNumbers[table];
      const auto old = before.find(number);
      const auto found = rows.find(table);
      if (old == before.end() && found == rows.end()) continue;
      const SplitTable& split = found == rows.end() ? kNoRows : found->second;
      const bool isLog = tables.At(table).isLog;
      const TableChange change = FindChange(
          old == before.end() ? TableState{0, isLog, {}} : old->second, split.hashes, isLog);
      if (!split.rows.empty()) now.emplace(number, DescribeRows(split.hashes, isLog));
      if (change.IsEmpty()) continue;
      Changes::OfTable& changed = changes.tables[table];
      for (const std::uint32_t row : change.removed) {
        changed.removedServers.push_back(server);
        changed.removedRows.push_back(row);
      }
      for (const std::uint32_t row : change.added) {
        changed.added += fmt::format("{}\t{}\t{}\n", server, row, split.rows[row - 1]);
      }
      counts.rows += change.removed.size() + change.added.size();
    }
    return now;
  }

  void Apply() {
    for (const auto& [table, change] : changes.tables) {
      const RowTable& described = tables.At(table);
      const std::string name = QuoteName(described.name);
      if (!change.removedRows.empty()) {
        connection.Ask(fmt::format("delete from {} t using unnest($1::int[], $2::int[]) u(s, r) "
                                   "where t._server = u.s and t._row = u.r",
                                   name),
                       {WriteNumbers(change.removedServers), WriteNumbers(change.removedRows)});
      }
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

  /// Which of the servers' drives have more errors than a month ago, where that is another answer
  /// now: by their rows, or by the facts of an older recording that has come.
  void UpdateGrowth() {
    connection.Ask(
        "with growth as materialized (select * from find_growth($1::int[])),"
        "gone as (delete from drive_growth where server = any($1::int[])"
        "  and row(server, drive) not in (select server, drive from growth)) "
        "insert into drive_growth as g (server, drive, controller, serial, model, firmware,"
        "  media_errors, media_errors_before, before) select * from growth "
        "on conflict (server, drive) do update set controller = excluded.controller,"
        "  serial = excluded.serial, model = excluded.model, firmware = excluded.firmware,"
        "  media_errors = excluded.media_errors,"
        "  media_errors_before = excluded.media_errors_before, before = excluded.before "
        "where row(g.controller, g.serial, g.model, g.firmware, g.media_errors,"
        "  g.media_errors_before, g.before) is distinct from row(excluded.controller,"
        "  excluded.serial, excluded.model, excluded.firmware, excluded.media_errors,"
        "  excluded.media_errors_before, excluded.before)",
        {WriteNumbers(servers)});
  }

  void EndJobs() {
    std::vector<std::int64_t> done;
    for (const auto& [object, one] : usable) done.push_back(object);
    counts.done = done.size();
    if (!done.empty()) {
      connection.Ask(
          "update job set state = 2, claim = null, worker = null, lease = null, reason = null, "
          "attempts = 0, lost = 0 where parser = $1 and object = any($2::bigint[])",
          {schema.parser, WriteNumbers(done)});
    }
    for (const WorkedRecording* one : mine) {
      if (IsUsable(*one)) continue;
      const bool isAgain = one->mayPass && one->attempts + 1 < kMostAttempts;
      ++(isAgain ? counts.again : counts.parked);
      connection.Ask(
          "update job set state = $3, attempts = attempts + 1, claim = null, worker = null, "
          "lease = null, reason = $4 where parser = $1 and object = $2",
          {schema.parser, std::to_string(one->object), isAgain ? "0" : "3",
           one->failure.empty() ? one->parsed.refusal : one->failure});
    }
  }

  Connection& connection;
  const RowTables& tables;
  const Schema& schema;
  const std::vector<WorkedRecording>& batch;
  const std::string& claim;

  std::vector<const WorkedRecording*> mine;
  std::map<std::int64_t, const WorkedRecording*> usable;  ///< of these, by object
  std::map<std::int64_t, std::map<std::size_t, SplitTable>> splits;
  std::vector<std::int64_t> servers;  ///< locked: those that sent one of these
  Changes changes;
  BatchCounts counts;
};

}  // namespace

BatchCounts& BatchCounts::operator+=(const BatchCounts& other) {
  done += other.done;
  parked += other.parked;
  again += other.again;
  taken += other.taken;
  rows += other.rows;
  return *this;
}

BatchCounts BatchWriter::Write(const std::vector<WorkedRecording>& batch,
                               const std::string& claim) {
  const auto write = [&](const std::vector<WorkedRecording>& some) {
    return RunTransaction(
        connection, [&] { return Transaction(connection, tables, schema, some, claim).Run(); });
  };
  try {
    return write(batch);
  } catch (const DatabaseFailure& failure) {
    if (!failure.IsOfValues()) throw;
  }
  BatchCounts counts;
  for (const WorkedRecording& one : batch) {
    try {
      counts += write({one});
    } catch (const DatabaseFailure& failure) {
      if (!failure.IsOfValues()) throw;
      WorkedRecording refused;
      refused.object = one.object;
      refused.failure = fmt::format("the database refuses its rows: {}", failure.what());
      counts += write({refused});
    }
  }
  return counts;
}

std::string FindMisfit(const Parsed& parsed, const RowTables& tables) {
  try {
    std::set<std::uint32_t> seen;
    for (const ParsedTable& table : parsed.tables) {
      if (table.table >= tables.All().size() || !seen.insert(table.table).second) {
        return "the parser's answer names tables that there are not";
      }
      SplitCopyRows(table.rows, tables.At(table.table).columns.size());
    }
    SplitCopyRows(parsed.driveErrors, kDriveErrorColumns.size());
    return {};
  } catch (const std::runtime_error& error) {
    return fmt::format("the parser's answer is not used: {}", error.what());
  }
}

}  // namespace fleet
