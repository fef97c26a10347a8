#include "fleet/spool_watch.h"

#include <fmt/format.h>

#include <limits>
#include <utility>

#include "fleet/patience.h"
#include "host/recording/recording_reader.h"
#include "host/text/screen_text.h"

namespace fleet {
namespace {

/// Between looks at a spool in which nothing is.
constexpr std::chrono::milliseconds kSpoolIdleTime{1000};

std::chrono::nanoseconds GetAge(const SpooledFile& file) {
  return std::chrono::system_clock::now().time_since_epoch() - file.changed;
}

}  // namespace

SpoolWatch::SpoolWatch(const Spool& spool, const Store& store, IntakeRules intake, WatchRules rules,
                       Tell takenIn, Tell troubles)
    : spool(spool),
      store(store),
      intake(std::move(intake)),
      rules(rules),
      takenIn(std::move(takenIn)),
      troubles(std::move(troubles)) {}

void SpoolWatch::Watch(const ConnectionWords& database, EndRequest& endRequest) {
  WorkPatiently(
      database, "pqfleet submit",
      [&](Connection& connection) {
        while (!endRequest.IsMade()) {
          if (!TakeTurn(connection, endRequest)) endRequest.Sleep(kSpoolIdleTime);
        }
      },
      [&](std::chrono::milliseconds time) { return endRequest.Sleep(time); }, troubles);
}

bool SpoolWatch::TakeTurn(Connection& connection, EndRequest& endRequest) {
  const Answer ready = connection.Ask(
      "select count(*) from (select from job join parser p on p.id = parser "
      "where p.state = 'current' and job.state = 0 limit $1) j",
      {std::to_string(rules.mostReady)});
  const bool isFull = ready.NumberAt(0, 0) >= static_cast<std::int64_t>(rules.mostReady);
  SetClosed("", isFull, fmt::format("{} recordings wait to be parsed", rules.mostReady));
  bool hasTaken = false;
  if (isFull) return hasTaken;
  // A batch of each site in turn: one that sends much keeps no other waiting.
  spool.ForEachSite([&](const std::string& site) {
    if (!endRequest.IsMade() && TakeSite(connection, site)) hasTaken = true;
  });
  return hasTaken;
}

bool SpoolWatch::TakeSite(Connection& connection, const std::string& site) {
  std::size_t allowed = FindAllowance(connection, site);
  SetClosed(site, allowed == 0, "it has sent as much as it may today");
  intake.site = site;
  std::vector<IncomingRecording> recordings;
  std::vector<SpooledFile> files;
  spool.ForEachFile(site, [&](const SpooledFile& file) {
    if (recordings.size() >= allowed) return false;
    const auto seen = unread.find(file.path);
    const bool isUnchanged = seen != unread.end() && seen->second == file;
    if (isUnchanged && GetAge(file) < rules.patience) return true;
    try {
      recordings.push_back(ReadIncoming(file.path, intake));
      files.push_back(file);
      unread.erase(file.path);
    } catch (const host::RecordingError& error) {
      // Refused, if this is how it was a while ago already.
      unread[file.path] = file;
      if (GetAge(file) >= rules.patience) Refuse(file, site, error.what());
    }
    return !IsBatch(recordings);
  });
  const bool hasTaken = !recordings.empty();
  TakeBatch(connection, site, recordings, files);
  return hasTaken;
}

std::size_t SpoolWatch::FindAllowance(Connection& connection, const std::string& site) const {
  if (!rules.mostRecordings && !rules.mostMebibytes) return std::numeric_limits<std::size_t>::max();
  constexpr std::int64_t kMebibyte = std::int64_t{1} << 20;
  const Answer used = connection.Ask(
      "select coalesce(sum(recordings), 0), coalesce(sum(bytes), 0) "
      "from site_day d join site t on t.id = d.site "
      "where t.name = $1 and day = (now() at time zone 'UTC')::date",
      {site});
  if (rules.mostMebibytes && used.NumberAt(0, 1) >= *rules.mostMebibytes * kMebibyte) return 0;
  if (!rules.mostRecordings) return std::numeric_limits<std::size_t>::max();
  const std::int64_t left = std::int64_t{*rules.mostRecordings} - used.NumberAt(0, 0);
  return left > 0 ? static_cast<std::size_t>(left) : 0;
}

void SpoolWatch::TakeBatch(Connection& connection, const std::string& site,
                           std::vector<IncomingRecording>& recordings,
                           const std::vector<SpooledFile>& files) {
  if (recordings.empty()) return;
  try {
    const std::vector<std::string> outcomes = TakeIn(recordings, intake, store, connection);
    for (std::size_t i = 0; i < recordings.size(); ++i) {
      takenIn(DescribeIncoming(recordings[i], outcomes[i]));
      spool.Remove(files[i]);
    }
  } catch (const DatabaseFailure& failure) {
    if (!failure.IsOfValues()) throw;
    if (recordings.size() == 1) {
      Refuse(files[0], site, fmt::format("the database refuses it: {}", failure.what()));
      return;
    }
    for (std::size_t i = 0; i < recordings.size(); ++i) {
      std::vector<IncomingRecording> one;
      one.push_back(std::move(recordings[i]));
      TakeBatch(connection, site, one, {files[i]});
    }
  }
}

void SpoolWatch::Refuse(const SpooledFile& file, const std::string& site,
                        const std::string& reason) {
  takenIn(fmt::format("refused  {}", host::EscapeControls(reason)));
  spool.SetAside(file, site);
  unread.erase(file.path);
}

void SpoolWatch::SetClosed(const std::string& site, bool isClosed, const std::string& why) {
  const auto known = closed.find(site);
  if (known != closed.end() && known->second == isClosed) return;
  spool.SetClosed(site, isClosed);
  closed[site] = isClosed;
  if (isClosed) {
    troubles(
        fmt::format("closed to {}: {}", site.empty() ? "all" : host::EscapeControls(site), why));
  }
}

}  // namespace fleet
