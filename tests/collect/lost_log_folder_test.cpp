// A log folder that goes away during a collection, whenever that is: every table that lacks rows
// for it says why, and nothing stays open.
#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/add_modules.h"
#include "host/collect/collect.h"
#include "host/collect/recorded_source.h"
#include "host/repository/store.h"
#include "host/text/count_text.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"

namespace host {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A recording as a machine that loses its log folder, with all that is in it.
class LosingMachine final : public pq::Platform {
 public:
  /// Loses it before step number `at`: a pipe, a start without one, a command or a file.
  LosingMachine(const Recording& recording, MachineObserver& observer, int at)
      : whole(recording, &observer), lost(RemoveLogFolder(recording), &observer), at(at) {}

  bool IsLost() const { return steps > at; }
  int CountSteps() const { return steps; }
  RecordedMachine& Now() { return IsLost() ? lost : whole; }
  int CountOpenHandles() const { return whole.OpenHandles() + lost.OpenHandles(); }

  std::string HostExecutable() override { return whole.HostExecutable(); }
  std::uint32_t SystemLanguage() override { return whole.SystemLanguage(); }
  bool PathExists(const std::string& path) override { return Now().PathExists(path); }
  pq::Acquired<pq::Pipe> CreatePipe(const std::string& commandLine) override {
    return Step().CreatePipe(commandLine);
  }
  pq::Acquired<pq::Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                             pq::Pipe* output) override {
    RecordedMachine& machine = output == nullptr ? Step() : Now();
    return machine.StartInterpreter(commandLine, inheritHandles, output);
  }
  void RunSystem(const std::string& command) override { Step().RunSystem(command); }
  std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override {
    return Step().OpenText(path);
  }
  void WriteConsole(std::string_view text) override { whole.WriteConsole(text); }
  pq::ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override {
    return whole.ReadConsoleLine(buffer, size);
  }
  [[noreturn]] void FailRangeCheck() override { whole.FailRangeCheck(); }

 private:
  static Recording RemoveLogFolder(Recording recording) {
    recording.hasLogFolder = false;
    std::erase_if(recording.files,
                  [&](const auto& file) { return file.first.starts_with(recording.logFolder); });
    return recording;
  }

  RecordedMachine& Step() {
    ++steps;
    return Now();
  }

  RecordedMachine whole;
  RecordedMachine lost;
  int at;
  int steps = 0;
};

class LosingSource final : public Source {
 public:
  LosingSource(Recording recording, int at) : recording(std::move(recording)), at(at) {}

  void Begin(CollectionListener& listener) override { machine.emplace(recording, listener, at); }
  void AddModules(ModuleList& modules) override { ::AddModules(modules); }
  pq::Platform* Machine() override { return &*machine; }
  MachineFacts Facts() override { return DescribeRecording(recording); }
  bool HasPrograms(const std::string& commandLine) override {
    return machine->Now().HasPrograms(commandLine);
  }
  std::optional<std::uint64_t> LogFileSize(const std::string& fileName) override {
    return machine->Now().FileSize(recording.logFolder + fileName);
  }

  bool HasLogFolder() override { return !machine->IsLost(); }

  const LosingMachine& Lost() const { return *machine; }

 private:
  Recording recording;
  int at;
  std::optional<LosingMachine> machine;
};

struct Result {
  Collection collection;
  int steps;
  int openHandles;
};

Result CollectLosing(const Recording& recording, int at) {
  LosingSource source(recording, at);
  CollectionListener listener;
  Collection collection = Collect(source, {}, listener);
  return {std::move(collection), source.Lost().CountSteps(), source.Lost().CountOpenHandles()};
}

/// All cells in one text.
std::string JoinCells(const CollectedTable& table) {
  std::string text;
  if (table.rows == nullptr) return text;
  for (const Row& row : table.rows->rows) {
    for (const std::string_view value : row.Values()) text.append(value).append("\n");
  }
  return text;
}

TEST(LostLogFolder, IsToldByEveryTableThatLacksSomethingForIt) {
  constexpr int kNever = 1'000'000;
  constexpr int kStep = PQ_HAS_ADDRESS_SANITIZER ? 5 : 1;
  for (const auto& [name, recording] : test::LoadSamples()) {
    const Result whole = CollectLosing(recording, kNever);
    EXPECT_THAT(whole.collection.problems, Not(Contains(HasSubstr("went away"))));
    for (int at = 0; at < whole.steps; at += kStep) {
      SCOPED_TRACE(name + " " + std::to_string(at));
      const Result result = CollectLosing(recording, at);
      EXPECT_THAT(result.collection.problems,
                  Contains("the log folder C:\\Halyard\\logs\\ went away during the collection; "
                           "what tools wrote there is missing"));
      // A tool that a module leaves open was not started, maybe.
      EXPECT_LE(result.openHandles, whole.openHandles);
      ASSERT_EQ(result.collection.tables.size(), whole.collection.tables.size());
      for (std::size_t i = 0; i < whole.collection.tables.size(); ++i) {
        const CollectedTable& before = whole.collection.tables[i];
        const CollectedTable& table = result.collection.tables[i];
        if (JoinCells(table) == JoinCells(before)) continue;
        SCOPED_TRACE(table.className);
        EXPECT_NE(table.status.outcome, "no rows in output");
        EXPECT_NE(table.status.text, FormatCount(table.RowCount(), "row"));
      }
    }
  }
}

}  // namespace
}  // namespace host
