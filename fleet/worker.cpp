#include "fleet/worker.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <utility>
#include <vector>

#include "fleet/isolated_parse.h"
#include "fleet/patience.h"

namespace fleet {
namespace {

using Clock = std::chrono::steady_clock;

/// After so many workers ended with it, a recording is claimed alone, and then no more.
constexpr int kLostTogether = 3;
constexpr int kMostLost = 10;
/// Rows of a batch in memory: then it is written, and the rest of the claim follows.
constexpr std::size_t kMostBatchBytes = std::size_t{64} << 20;
/// When nothing is ready.
constexpr std::chrono::milliseconds kQueueIdleTime{1000};

std::string NameWorker() {
  std::array<char, 256> host{};
  gethostname(host.data(), host.size() - 1);
  return fmt::format("{}:{}", host.data(), getpid());
}

std::size_t CountBytes(const Parsed& parsed) {
  std::size_t bytes = 0;
  for (const ParsedTable& table : parsed.tables) bytes += table.rows.size();
  return bytes;
}

}  // namespace

struct Worker::Claim {
  struct One {
    std::int64_t object;
    std::string key;
    std::int64_t attempts;
    std::optional<host::LocalTime> taken;  ///< none: no server told it
  };
  std::string id;
  std::vector<One> recordings;
  Clock::time_point leaseEnd;
};

Worker::Claim Worker::TakeClaim(Connection& connection, const Schema& schema) {
  Claim claim;
  claim.leaseEnd = Clock::now() + rules.lease;
  claim.id = connection.Ask("select nextval('claim')").At(0, 0);
  // The first part of the condition is that of the index; the order makes claims of several workers
  // wait for nothing. The earliest submission is the time that the content is judged by.
  const auto take = [&](const char* lost, std::size_t most) {
    return connection.Ask(
        fmt::format("with c as ("
                    "  select object from job where parser = $1 and state < 2"
                    "  and (state = 0 or lease < now()) and lost {} order by object limit $2"
                    "  for update skip locked)"
                    "update job j set state = 1, claim = $3, worker = $4,"
                    "  lost = lost + (j.state = 1)::int,"
                    "  lease = now() + make_interval(secs => $5) "
                    "from c join object o on o.id = c.object "
                    "left join lateral (select taken, taken_offset from submission"
                    "  where object = c.object and note is null order by taken limit 1) s on true "
                    "where j.parser = $1 and j.object = c.object "
                    "returning j.object, encode(o.key, 'hex'), j.attempts,"
                    "  extract(epoch from s.taken)::bigint, s.taken_offset",
                    lost),
        {schema.parser, std::to_string(most), claim.id, NameWorker(),
         std::to_string(rules.lease.count())});
  };
  Answer answer = take(fmt::format("< {}", kLostTogether).c_str(), rules.batch);
  if (answer.RowCount() == 0) {
    connection.Ask(
        "update job set state = 3, claim = null, worker = null, lease = null,"
        "  reason = 'its workers end before it does' "
        "where parser = $1 and state < 2 and (state = 0 or lease < now()) and lost >= $2",
        {schema.parser, std::to_string(kMostLost)});
    answer = take(fmt::format(">= {}", kLostTogether).c_str(), 1);
  }
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    std::optional<host::LocalTime> taken;
    if (!answer.IsNull(row, 3)) {
      const std::chrono::seconds time(answer.NumberAt(row, 3));
      taken = {std::chrono::system_clock::time_point(time),
               std::chrono::minutes(answer.NumberAt(row, 4))};
    }
    claim.recordings.push_back(
        {answer.NumberAt(row, 0), std::string(answer.At(row, 1)), answer.NumberAt(row, 2), taken});
  }
  return claim;
}

void Worker::KeepLease(Connection& connection, const Schema& schema, const Claim& claim) {
  connection.Ask(
      "update job set lease = now() + make_interval(secs => $3) "
      "where parser = $1 and claim = $2 and state = 1",
      {schema.parser, claim.id, std::to_string(rules.lease.count())});
}

void Worker::Release(Connection& connection, const Schema& schema, const Claim& claim) {
  connection.Ask(
      "update job set state = 0, claim = null, worker = null, lease = null "
      "where parser = $1 and claim = $2 and state = 1",
      {schema.parser, claim.id});
}

void Worker::TryRelease(Connection& connection, const Schema& schema, const Claim& claim) noexcept {
  try {
    if (connection.IsAlive()) Release(connection, schema, claim);
  } catch (const DatabaseFailure&) {
    // The lease ends by itself.
  }
}

void Worker::WorkWith(Connection& connection) {
  connection.KeepPlans();
  // What this process had when the connection was lost need not wait for the end of its lease.
  connection.Ask(
      "update job set state = 0, claim = null, worker = null, lease = null "
      "where state = 1 and worker = $1",
      {NameWorker()});
  while (!WantsEnd()) {
    // Each time, so that a worker of former readers ends with an upgrade.
    const Schema schema = OpenSchema(connection, tables);
    Claim claim = TakeClaim(connection, schema);
    if (claim.recordings.empty()) {
      const Answer open = connection.Ask(
          "select 1 from job where parser = $1 and state < 2 limit 1", {schema.parser});
      // What others have claimed may become ready again.
      if (rules.once && open.RowCount() == 0) return;
      wait(kQueueIdleTime);
      continue;
    }
    BatchWriter writer(connection, tables, schema);
    std::vector<WorkedRecording> batch;
    std::size_t bytes = 0;
    const auto write = [&] {
      if (!batch.empty()) counts += writer.Write(batch, claim.id);
      batch.clear();
      bytes = 0;
    };
    try {
      for (const Claim::One& one : claim.recordings) {
        if (WantsEnd()) break;
        batch.push_back(
            ParseIsolated(store, parser, tables, one.key, one.taken, rules.limits, rules.sandbox));
        batch.back().object = one.object;
        batch.back().attempts = one.attempts;
        bytes += CountBytes(batch.back().parsed);
        if (bytes > kMostBatchBytes) write();
        if (claim.leaseEnd - Clock::now() < rules.lease / 2) {
          KeepLease(connection, schema, claim);
          claim.leaseEnd = Clock::now() + rules.lease;
        }
      }
      write();
    } catch (const DatabaseFailure&) {
      TryRelease(connection, schema, claim);
      throw;
    } catch (...) {
      Release(connection, schema, claim);
      throw;
    }
    if (WantsEnd()) Release(connection, schema, claim);
  }
}

BatchCounts Worker::Work() {
  WorkPatiently(
      database, "pqfleet work", [&](Connection& connection) { WorkWith(connection); }, wait, tell);
  return counts;
}

}  // namespace fleet
