// What a query asks: recordings, databases or this machine, as one database.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"

namespace host {

/// Several machines for one database.
struct QuerySources {
  std::vector<std::filesystem::path> recordings;
  std::vector<std::filesystem::path> databases;
  /// Other results of this program, such as reports.
  std::vector<std::filesystem::path> results;

  std::size_t Count() const { return recordings.size() + databases.size() + results.size(); }
};

/// Collects from what `options` say into `database`, which is empty. `beforeRun` is called once
/// before any tool runs. Returns the exit code, which says whether all of it came. Throws as Gather
/// and Database do.
int FillFromOne(Database& database, const SourceOptions& options, const Console& console,
                const std::function<void()>& beforeRun);

/// The same of a result that is no database. Throws UsageError.
int FillFromResult(Database& database, const std::filesystem::path& result);

/// The same with all of `sources`, each called by its file's name. What cannot be read is told, and
/// left out; throws UsageError when that is all of it. `tableTime` is for each table of a database.
int FillFromSeveral(Database& database, const QuerySources& sources, const SourceOptions& options,
                    std::chrono::seconds tableTime, const Console& console);

}  // namespace host
