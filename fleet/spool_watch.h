// Takes in what comes into a spool, as long as nobody asks for an end.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/end_request.h"
#include "fleet/intake.h"
#include "fleet/spool.h"
#include "fleet/store.h"

namespace fleet {

struct WatchRules {
  /// What cannot be read may be half of a recording until it has not changed for so long.
  std::chrono::seconds patience{60};
  /// When so many recordings wait to be parsed, no more are taken in, and the door is closed.
  std::size_t mostReady = 100'000;
  /// Of a site and day; it is closed for the rest of the day.
  std::optional<unsigned> mostRecordings;
  std::optional<unsigned> mostMebibytes;
};

class SpoolWatch {
 public:
  using Tell = std::function<void(const std::string& line)>;

  /// `spool` and `store` have to outlive this. `takenIn` is told of each recording, `troubles` of
  /// what stands in the way.
  SpoolWatch(const Spool& spool, const Store& store, IntakeRules intake, WatchRules rules,
             Tell takenIn, Tell troubles);

  /// Throws UsageError and StoreFailure when spool or store are not there any more, and
  /// DatabaseFailure unless it may pass by itself: it waits for that.
  void Watch(const ConnectionWords& database, EndRequest& endRequest);

 private:
  /// Whether there was anything to do.
  bool TakeTurn(Connection& connection, EndRequest& endRequest);
  bool TakeSite(Connection& connection, const std::string& site);
  /// How many more recordings may come of `site` today.
  std::size_t FindAllowance(Connection& connection, const std::string& site) const;
  void TakeBatch(Connection& connection, const std::string& site,
                 std::vector<IncomingRecording>& recordings, const std::vector<SpooledFile>& files);
  void Refuse(const SpooledFile& file, const std::string& site, const std::string& reason);
  void SetClosed(const std::string& site, bool isClosed, const std::string& why);

  const Spool& spool;
  const Store& store;
  IntakeRules intake;
  WatchRules rules;
  Tell takenIn;
  Tell troubles;
  std::map<std::filesystem::path, SpooledFile> unread;  ///< not to be read again until they change
  std::map<std::string, bool> closed;
};

}  // namespace fleet
