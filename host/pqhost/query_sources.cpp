#include "host/pqhost/query_sources.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/answers/collection_database.h"
#include "host/database/database_writer.h"
#include "host/pqhost/gather.h"
#include "host/pqhost/kept_files.h"
#include "host/pqhost/recordings.h"
#include "host/program/interruption.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

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
    const std::string machine = names.Take(path);
    try {
      add(machine);
      ++count;
    } catch (const std::runtime_error& error) {
      writer.Remove(machine);
      Fail(error.what());
    }
  }

  void AddRecording(const SourceOptions& options, const std::string& machine) {
    Collection collection = Gather(options, {}, console, KeepLog::kYes, [](auto&) {}).collection;
    for (const std::string& problem : collection.problems) {
      Fail(fmt::format("{}: {}", machine, problem));
    }
    AddCollection(writer, collection, Assess(collection), machine);
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
  SourceNames names;
  std::size_t count = 0;
  bool isWhole = true;
};

}  // namespace

int FillFromOne(Database& database, const SourceOptions& options, const Console& console,
                const std::function<void()>& beforeRun) {
  // The recording is let go of at once: the database holds all of it again.
  Collection collection =
      Gather(options, {}, console, KeepLog::kYes, [&](auto&) { beforeRun(); }).collection;
  FillDatabase(database, collection, Assess(collection));
  for (const std::string& problem : collection.problems) Complain(console, problem);
  return collection.problems.empty() ? kExitDone : kExitIncomplete;
}

int FillFromResult(Database& database, const std::filesystem::path& result) {
  const Collection collection = ReadResult(result, RecogniseFile(result));
  FillDatabase(database, CollectionView(collection));
  return kExitDone;
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
  for (const std::filesystem::path& result : sources.results) {
    adder.Add(result, [&](const std::string& machine) {
      const Collection collection = ReadResult(result, RecogniseFile(result));
      AddCollection(writer, CollectionView(collection), machine);
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
