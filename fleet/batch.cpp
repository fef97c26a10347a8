#include "fleet/batch.h"

#include <fmt/format.h>

#include <set>
#include <stdexcept>

#include "fleet/batch_changes.h"
#include "fleet/batch_facts.h"
#include "fleet/batch_recordings.h"
#include "fleet/batch_rows.h"
#include "fleet/copy_text.h"

namespace fleet {
namespace {

/// As often a recording may end its process before it is parked.
constexpr std::int64_t kMostAttempts = 3;

class Transaction {
 public:
  Transaction(Connection& connection, const RowTables& tables, const Schema& schema,
              const std::vector<WorkedRecording>& batch, const std::string& claim)
      : connection(connection), tables(tables), schema(schema), batch(batch), claim(claim) {}

  BatchCounts Run() {
    FindMine();
    for (const WorkedRecording* one : mine) {
      if (!IsUsable(*one)) continue;
      usable.emplace(one->object, UsableRecording{one, SplitRows(one->parsed)});
    }
    BatchChanges changes;
    CompareFacts(usable, tables, schema, connection, changes);
    const std::vector<std::int64_t> servers = LockServers(usable, connection);
    CompareRows(usable, tables, schema, connection, changes);
    ApplyChanges(changes, tables, connection);
    counts.rows = changes.rows;
    UpdateGrowth(servers);
    EndJobs();
    return counts;
  }

 private:
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

  /// Which of the servers' drives have more errors than a month ago, where that is another answer
  /// now: by their rows, or by the facts of an older recording that has come.
  void UpdateGrowth(const std::vector<std::int64_t>& servers) {
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
    counts.done = usable.size();
    if (!usable.empty()) {
      connection.Ask(
          "update job set state = 2, claim = null, worker = null, lease = null, reason = null, "
          "attempts = 0, lost = 0 where parser = $1 and object = any($2::bigint[])",
          {schema.parser, WriteObjects(usable)});
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
  UsableRecordings usable;  ///< of these
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
