#include "host/pqhost/query_sources.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/answers/collection_database.h"
#include "host/database/database_writer.h"
#include "host/database/sql_names.h"
#include "host/pqhost/gather.h"
#include "host/program/interruption.h"
#include "host/recording/recording_format.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

bool IsRecording(const std::filesystem::path& folder) {
  std::error_code error;
  return std::filesystem::exists(folder / kRecordingFileName, error);
}

bool IsZipFile(const std::filesystem::path& path) {
  std::error_code error;
  return IsZipName(path) && std::filesystem::is_regular_file(path, error);
}

/// The last name of the path; of a database and a ZIP file without its extension.
std::string NameSource(const std::filesystem::path& path) {
  std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  const bool isFile = whole.extension() == ".db" || IsZipFile(whole);
  return PathText(isFile ? whole.stem() : whole.filename());
}

/// Adds the sources one by one; one that fails is told and leaves the others alone.
class SourceAdder {
 public:
  SourceAdder(DatabaseWriter& writer, const Console& console) : writer(writer), console(console) {}

  void Add(const std::filesystem::path& path,
           const std::function<void(const std::string& machine)>& add) {
    if (IsInterruptionRequested()) {
      Fail(fmt::format("{}: the query was interrupted before", PathText(path)));
      return;
    }
    const std::string machine = names.Take(NameSource(path));
    try {
      add(machine);
      ++count;
    } catch (const std::runtime_error& error) {
      writer.Remove(machine);
      Fail(error.what());
    }
  }

  void AddRecording(const SourceOptions& options, const std::string& machine) {
    const Collection collection =
        Gather(options, {}, console, KeepLog::kYes, [](auto&) {}).collection;
    for (const std::string& problem : collection.problems) {
      Fail(fmt::format("{}: {}", machine, problem));
    }
    AddCollection(writer, CollectionView(collection), machine);
  }

  std::size_t Count() const { return count; }
  bool IsWhole() const { return isWhole; }

 private:
  void Fail(const std::string& reason) {
    Complain(console, reason);
    isWhole = false;
  }

  DatabaseWriter& writer;
  const Console& console;
  UniqueNames names;
  std::size_t count = 0;
  bool isWhole = true;
};

}  // namespace

std::vector<std::filesystem::path> FindRecordings(const std::vector<std::filesystem::path>& paths) {
  std::vector<std::filesystem::path> recordings;
  for (const std::filesystem::path& path : paths) {
    std::error_code error;
    if (IsRecording(path) || !std::filesystem::is_directory(path, error)) {
      recordings.push_back(path);  // If it is none, reading it will tell.
      continue;
    }
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(path, error)) {
      if (IsRecording(entry.path()) || IsZipFile(entry.path())) found.push_back(entry.path());
    }
    if (found.empty()) {
      recordings.push_back(path);
      continue;
    }
    std::ranges::sort(found);
    std::ranges::move(found, std::back_inserter(recordings));
  }
  return recordings;
}

int FillFromOne(Database& database, const SourceOptions& options, const Console& console,
                const std::function<void()>& beforeRun) {
  // The recording is let go of at once: the database holds all of it again.
  const Collection collection =
      Gather(options, {}, console, KeepLog::kYes, [&](auto&) { beforeRun(); }).collection;
  FillDatabase(database, CollectionView(collection));
  for (const std::string& problem : collection.problems) Complain(console, problem);
  return collection.problems.empty() ? kExitDone : kExitIncomplete;
}

int FillFromSeveral(Database& database, const QuerySources& sources, const SourceOptions& options,
                    std::chrono::seconds tableTime, const Console& console) {
  DatabaseWriter writer(database, Machines::kSeveral);
  SourceAdder adder(writer, console);
  for (const std::filesystem::path& file : sources.databases) {
    adder.Add(file, [&](const std::string& machine) {
      Database from(file, tableTime);
      writer.Copy(from, machine);
    });
  }
  for (const std::filesystem::path& recording : sources.recordings) {
    adder.Add(recording, [&](const std::string& machine) {
      SourceOptions one = options;
      one.replay = recording;
      adder.AddRecording(one, machine);
    });
  }
  if (adder.Count() == 0) throw UsageError("none of what there is to be asked could be read");
  writer.Complete();
  return adder.IsWhole() ? kExitDone : kExitIncomplete;
}

}  // namespace host
