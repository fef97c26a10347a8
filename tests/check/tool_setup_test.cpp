#include "host/check/tool_setup.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

using host::CheckedMachine;
using host::FindTools;
using host::IsFileOf;
using host::ListToolPlaces;
using host::ToolPlace;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// What a machine has a place for that lacks StorCLI alone.
std::vector<ToolPlace> ListPlacesWithoutStorcli() {
  CheckedMachine machine;
  machine.facts.hostExecutable = "C:\\Halyard\\pqhost.exe";
  machine.facts.logFolder = "C:\\Halyard\\logs\\";
  machine.locate = [](const std::string& program) -> std::optional<std::string> {
    if (program.ends_with("storcli.exe")) return std::nullopt;
    return program.find('\\') == std::string::npos ? "C:\\Windows\\System32\\" + program : program;
  };
  return ListToolPlaces(host::CheckMachine(machine, {}), "c:\\halyard");
}

ToolPlace& FindPlace(std::vector<ToolPlace>& places, const std::string& program) {
  const auto found = std::ranges::find_if(
      places, [&](const ToolPlace& place) { return place.tool.program == program; });
  if (found == places.end()) throw std::runtime_error("no place for " + program);
  return *found;
}

std::vector<fs::path> FindStorcli(const fs::path& folder, const host::SearchLimits& limits = {}) {
  std::vector<ToolPlace> places = ListPlacesWithoutStorcli();
  FindTools({folder}, limits, places);
  return FindPlace(places, "storcli.exe").found;
}

TEST(ToolSetup, HasAPlaceForEachToolOfTheHostsFolder) {
  std::vector<ToolPlace> places = ListPlacesWithoutStorcli();
  std::vector<std::string> paths;
  for (const ToolPlace& place : places) paths.push_back(place.tool.path);
  std::ranges::sort(paths);
  EXPECT_EQ(std::ranges::adjacent_find(paths), paths.end()) << "two modules share check_amt_bmc";
  EXPECT_THAT(paths, testing::Each(testing::StartsWith("C:\\Halyard\\")));
  EXPECT_THAT(paths, testing::Contains("C:\\Halyard\\pq_tools\\check_amt_bmc.exe"));
  EXPECT_THAT(paths, testing::Contains("C:\\Halyard\\utilities\\arcconf\\arcconf.exe"));
}

TEST(ToolSetup, KnowsWhatIsThereAndWhatAMissingToolWouldBring) {
  std::vector<ToolPlace> places = ListPlacesWithoutStorcli();
  EXPECT_TRUE(FindPlace(places, "arcconf.exe").isThere);
  const ToolPlace& storcli = FindPlace(places, "storcli.exe");
  EXPECT_FALSE(storcli.isThere);
  EXPECT_THAT(storcli.tool.text, testing::HasSubstr("PDLIST"));
}

TEST(ToolSetup, KnowsWhatVendorsCallTheirFiles) {
  EXPECT_TRUE(IsFileOf("storcli.exe", "StorCLI64.EXE"));
  EXPECT_TRUE(IsFileOf("SAS2IR_windows_x64.exe", "sas2ir_windows_x64.exe"));
  EXPECT_FALSE(IsFileOf("storcli.exe", "storcli64.exe.txt"));
  EXPECT_FALSE(IsFileOf("arcconf.exe", "storcli64.exe"));
}

TEST(ToolSetup, FindsFilesInFoldersWithinFolders) {
  const test::TemporaryFolder folder;
  folder.Write("vendor/tools/storcli64.exe", "tool");
  folder.Write("vendor/readme.txt", "text");
  EXPECT_THAT(FindStorcli(folder.Path()),
              ElementsAre(folder.Path() / "vendor" / "tools" / "storcli64.exe"));
}

TEST(ToolSetup, FindsAFileOnceInTheOrderOfTheFolders) {
  const test::TemporaryFolder folder;
  folder.Write("a/storcli.exe", "tool");
  folder.Write("b/storcli.exe", "tool");
  const fs::path a = folder.Path() / "a";
  const fs::path b = folder.Path() / "b";
  std::vector<ToolPlace> places = ListPlacesWithoutStorcli();
  FindTools({b, a, b}, {}, places);
  EXPECT_THAT(FindPlace(places, "storcli.exe").found,
              ElementsAre(b / "storcli.exe", a / "storcli.exe"));
}

TEST(ToolSetup, OffersNothingForAPlaceThatIsTaken) {
  const test::TemporaryFolder folder;
  folder.Write("arcconf.exe", "tool");
  std::vector<ToolPlace> places = ListPlacesWithoutStorcli();
  FindTools({folder.Path()}, {}, places);
  EXPECT_THAT(FindPlace(places, "arcconf.exe").found, IsEmpty());
}

TEST(ToolSetup, SearchesNoDeeperThanAsked) {
  const test::TemporaryFolder folder;
  folder.Write("storcli.exe", "tool");
  folder.Write("a/storcli.exe", "tool");
  folder.Write("a/b/storcli.exe", "tool");
  EXPECT_THAT(FindStorcli(folder.Path(), {.depth = 0}), SizeIs(1));
  EXPECT_THAT(FindStorcli(folder.Path(), {.depth = 1}), SizeIs(2));
}

TEST(ToolSetup, EndsInAnEndlessFolder) {
  const test::TemporaryFolder folder;
  for (int i = 0; i < 20; ++i) folder.Write("file" + std::to_string(i), "text");
  folder.Write("z/storcli.exe", "tool");
  EXPECT_THAT(FindStorcli(folder.Path(), {.depth = 5, .entries = 1}), IsEmpty());
}

TEST(ToolSetup, TakesNeitherFoldersNorWhatIsNotThere) {
  const test::TemporaryFolder folder;
  fs::create_directories(folder.Path() / "storcli.exe");
  EXPECT_THAT(FindStorcli(folder.Path()), IsEmpty());
  EXPECT_THAT(FindStorcli(folder.Path() / "none"), IsEmpty());
}

}  // namespace
