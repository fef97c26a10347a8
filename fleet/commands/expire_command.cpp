// pqfleet expire: removes old recordings.

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/removal.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/text/count_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kExpireFooter[] = R"(Examples:
  pqfleet expire --older-than 400
  pqfleet expire --older-than 60 --keep-monthly

Submissions that were taken more days ago go with their facts and recordings.
Each server's newest one stays, and what its rows are of.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database or the
store is not there.
)";

constexpr unsigned kMostDays = 36'500;

struct ExpireOptions {
  GivenSettings settings;
  std::optional<unsigned> days;
  bool keepsMonthly = false;
};

int RunExpire(const ExpireOptions& options, const host::Console& console) {
  if (!options.days) throw host::UsageError("say how old: pqfleet expire --older-than 400");
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  Connection connection(settings.database, "pqfleet expire");
  RequireSchema(connection);
  const RemovedCounts removed =
      Expire(connection, *options.days, options.keepsMonthly ? Keep::kFirstOfMonth : Keep::kNone);
  EmptyStore(connection, *store);
  console.out << fmt::format("removed {}, {}\n",
                             host::FormatCount(removed.submissions, "submission"),
                             host::FormatCount(removed.recordings, "recording"));
  return host::kExitDone;
}

host::CommandRun DefineExpire(host::OptionSet& set) {
  const auto options = std::make_shared<ExpireOptions>();
  set.AddCount("--older-than", "DAYS", options->days, kMostDays,
               "Remove what was taken more days ago");
  set.AddFlag("--keep-monthly", options->keepsMonthly,
              "Keep the first recording of each server and month (UTC)");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunExpire(*options, console); };
}

}  // namespace

const host::Command kExpireCommand = {"expire", "Remove old recordings", kExpireFooter,
                                      &DefineExpire};

}  // namespace fleet
