// Each object of a module collects once, whatever other objects do.

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/logger/logger.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "host/repository/store.h"
#include "tests/support/collected.h"

namespace {

using halyard::repository::RModule;
using halyard::repository::RRepository;

struct CollectingModule {
  std::string name;
  std::string table;
  std::string lastLine;  ///< that its collection logs
  std::string sample = "two-socket-server";
};

/// How a module shows in a failed test.
void PrintTo(const CollectingModule& module, std::ostream* out) { *out << module.name; }

const CollectingModule kCollectingModules[] = {
    {"sampleModule1", "RAIDINFO", "Exit EnumXFirmwareInstancesCallback"},
    {"sampleModule2", "TINFO", "Exit CollectData"},
    {"BMC_Info", "MCINFO", "Exit CollectData-BMC related info"},
    {"AMT_Info", "AMTLOG", "Exit CollectData-AMT related info", "amt-desktop"},
    {"Windows_Related_Info", "ARPINFO", "Exit CollectData-Windows related info"},
};

/// An object of the module, on a machine and with a repository of its own.
struct Collecting {
  explicit Collecting(const CollectingModule& kind)
      : kind(kind),
        recording(host::LoadRecording(test::SamplesFolder() + "/" + kind.sample)),
        machine(recording),
        module(test::FindModule(kind.name)) {
    module->RegisterTables();
  }
  void EnumerateInto(RRepository& given) {
    const pq::MachineInUse machineInUse(machine);
    const host::LogFolderInUse logFolder(recording.logFolder);
    module->Tables().at(kind.table).enumHandler(given);
  }
  void Enumerate() { EnumerateInto(repository); }

  const CollectingModule& kind;
  host::Recording recording;
  host::RecordedMachine machine;
  boost::shared_ptr<RModule> module;
  RRepository repository;
};

/// The values of all rows, table by table.
std::vector<std::string> ListValues(const RRepository& repository) {
  std::vector<std::string> values;
  for (const auto& [name, table] : host::TablesOf(repository)) {
    for (const host::Row& row : table.rows) {
      values.push_back(name);
      for (const std::string_view value : row.Values()) values.emplace_back(value);
    }
  }
  return values;
}

class ModuleObjects : public testing::TestWithParam<CollectingModule> {};

TEST_P(ModuleObjects, FillTheirOwnRepositoriesAlike) {
  Collecting one(GetParam());
  Collecting other(GetParam());
  one.Enumerate();
  other.Enumerate();
  EXPECT_THAT(ListValues(one.repository), testing::Not(testing::IsEmpty()));
  EXPECT_EQ(ListValues(one.repository), ListValues(other.repository));
}

TEST_P(ModuleObjects, AddNothingToASecondRepository) {
  Collecting once(GetParam());
  once.Enumerate();
  RRepository second;
  once.EnumerateInto(second);
  EXPECT_THAT(ListValues(second), testing::IsEmpty());
}

// A host that enumerates while a collection is at its last line starts another one.
TEST_P(ModuleObjects, HaveCollectedOnlyWhenTheCollectionHasEnded) {
  Collecting collecting(GetParam());
  int collections = 0;
  const host::LogSinkInUse sink([&](const host::LogLine& line) {
    if (line.text.ends_with(GetParam().lastLine) && ++collections == 1) collecting.Enumerate();
  });
  collecting.Enumerate();
  EXPECT_EQ(collections, 2);
}

INSTANTIATE_TEST_SUITE_P(All, ModuleObjects, testing::ValuesIn(kCollectingModules),
                         [](const testing::TestParamInfo<CollectingModule>& info) {
                           return info.param.name;
                         });

}  // namespace
