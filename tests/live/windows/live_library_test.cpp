// The plug-in as a loaded library, watched by the host.

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "frame/platform.h"
#include "host/live/live.h"
#include "host/live/windows/module_image.h"
#include "host/live/windows/watched_imports.h"
#include "tests/support/windows/changed_variable.h"

namespace test {
namespace {

using Modules = std::vector<boost::shared_ptr<halyard::repository::RModule>>;

std::filesystem::path BesideThisProgram(const char* name) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return std::filesystem::path(path).parent_path() / name;
}

/// Why that file cannot be used as the library.
std::string RefusalOf(const std::filesystem::path& plugin) {
  try {
    host::LoadLiveLibrary(plugin, {});
  } catch (const host::LiveError& error) {
    return error.what();
  }
  return "not refused";
}

struct Seen final : host::CollectionListener {
  std::vector<std::string> events;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override {
    events.push_back(application + " | " + commandLine + (inheritHandles ? " | inherits" : "") +
                     (pipe ? " | pipe" : ""));
  }
  void OnProcessEnd(std::uint32_t /*exitCode*/) override { events.emplace_back("end"); }
};

TEST(LiveLibrary, AddsTheFiveModules) {
  const auto library = host::LoadLiveLibrary(BesideThisProgram(host::kPluginFileName), {});
  Modules modules;
  library->AddModules(modules);
  std::vector<std::string> names;
  for (const auto& module : modules) names.push_back(module->GetName());
  EXPECT_EQ(names, (std::vector<std::string>{"sampleModule1", "sampleModule2", "BMC_Info",
                                             "AMT_Info", "Windows_Related_Info"}));
}

TEST(LiveLibrary, ShowsTheProcessesThatItStarts) {
  Seen seen;
  const auto library = host::LoadLiveLibrary(BesideThisProgram(host::kPluginFileName), {&seen});
  Modules modules;
  library->AddModules(modules);
  const auto& bmc = modules.at(2);
  bmc->RegisterTables();
  halyard::repository::RRepository repository;
  // The detection tool is not there: the interpreter starts, says so and ends.
  bmc->Tables().at("MCINFO").enumHandler(repository);
  const std::string folder = BesideThisProgram("").parent_path().string();
  EXPECT_EQ(seen.events,
            (std::vector<std::string>{std::string(pq::kInterpreter) + " | /c \"" + folder +
                                          "\\pq_tools\\check_amt_bmc.exe\" bmc",
                                      "end"}));
}

TEST(LiveLibrary, IsRefusedWhenItIsMissing) {
  const std::string refusal = RefusalOf(BesideThisProgram("nothing_of_that_name.dll"));
  EXPECT_NE(refusal.find("nothing_of_that_name.dll"), std::string::npos) << refusal;
  EXPECT_NE(refusal.find("(system error 126)"), std::string::npos) << refusal;
}

TEST(LiveLibrary, IsRefusedWhenItExportsNoAddModules) {
  const std::string refusal = RefusalOf(BesideThisProgram("logger.dll"));
  EXPECT_NE(refusal.find("exports no function AddModules"), std::string::npos) << refusal;
}

TEST(LiveLibrary, IsToldToHaveAddedNoModulesWhenItSaysSo) {
  const auto library = host::LoadLiveLibrary(BesideThisProgram("refusing_plugin.dll"), {});
  Modules modules;
  try {
    library->AddModules(modules);
    ADD_FAILURE() << "no error";
  } catch (const host::LiveError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("refusing_plugin.dll: its AddModules answered 7"));
  }
}

/// A folder that is the current one, and goes with its files when destroyed.
class CurrentFolder {
 public:
  explicit CurrentFolder(const char* name) : folder(BesideThisProgram(name)) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
  }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before, ignored);
    std::filesystem::remove_all(folder, ignored);
  }
  const std::filesystem::path& Path() const { return folder; }

 private:
  std::filesystem::path folder;
  std::filesystem::path before = std::filesystem::current_path();
};

TEST(LiveLibrary, KeepsLibrariesOfTheCurrentFolderAndOfThePathOut) {
  const CurrentFolder current("planted libraries");
  const auto library = host::LoadLiveLibrary(BesideThisProgram(host::kPluginFileName), {});
  std::filesystem::copy_file(BesideThisProgram("logger.dll"), current.Path() / "planted.dll");
  const std::wstring before = _wgetenv(L"PATH");
  SetEnvironmentVariableW(L"PATH", current.Path().c_str());
  EXPECT_EQ(LoadLibraryW(L"planted.dll"), nullptr);
  SetEnvironmentVariableW(L"PATH", before.c_str());
  EXPECT_NE(GetEnvironmentVariableW(L"NoDefaultCurrentDirectoryInExePath", nullptr, 0), 0U);
}

TEST(LocateProgram, FollowsPathAndItsExtensionsAndLeavesTheCurrentFolderOut) {
  const CurrentFolder current("planted programs");
  std::filesystem::create_directory("first");
  for (const char* file : {"route.com", "arp.exe", "first/route.bat"}) std::ofstream(file) << "x";
  const std::wstring before = _wgetenv(L"PATH");
  const std::string first = (current.Path() / "first").string();
  SetEnvironmentVariableW(L"PATH",
                          (std::filesystem::path(first).wstring() + L";" + before).c_str());
  const std::string route = host::LocateProgram("route").value_or("");
  const std::optional<std::string> arp = host::LocateProgram("arp.exe");
  SetEnvironmentVariableW(L"PATH", before.c_str());
  EXPECT_EQ(_stricmp(route.c_str(), (first + "\\route.bat").c_str()), 0) << route;
  EXPECT_EQ(arp.value_or("").find(current.Path().string()), std::string::npos) << *arp;
}

TEST(LocateProgram, TakesTheUsualExtensionsWhereNoneAreSet) {
  const CurrentFolder current("programs without extensions");
  for (const char* file : {"route.bat", "route.wrong", "netstat.wrong"}) std::ofstream(file) << "x";
  std::filesystem::create_directory("arp.exe");
  const ChangedVariable path(L"PATH", current.Path().c_str());
  const ChangedVariable extensions(L"PATHEXT", L"");
  EXPECT_THAT(host::LocateProgram("route").value_or(""),
              testing::StrCaseEq((current.Path() / "route.bat").string()));
  EXPECT_EQ(host::LocateProgram("netstat"), std::nullopt);
  EXPECT_EQ(host::LocateProgram("arp"), std::nullopt) << "a folder";
}

TEST(WatchedImports, PutsTheAddressesBack) {
  HMODULE plugin = LoadLibraryW(BesideThisProgram(host::kPluginFileName).c_str());
  ASSERT_NE(plugin, nullptr);
  const auto addresses = [&] {
    std::vector<void*> values;
    for (const host::Import& import : host::ListImports(plugin)) values.push_back(*import.slot);
    return values;
  };
  const std::vector<void*> before = addresses();
  host::CollectionListener observer;
  {
    const host::WatchedImports watched(plugin, {&observer});
    EXPECT_NE(addresses(), before);
  }
  EXPECT_EQ(addresses(), before);
}

TEST(LiveMachine, CreatesTheLogFolder) {
  const std::filesystem::path folder = BesideThisProgram("live machine test") / "logs";
  std::filesystem::remove_all(folder.parent_path());
  const host::LiveMachine machine =
      host::PrepareLiveMachine(folder, host::FolderAccess::kInherited);
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_EQ(machine.logFolder, folder.string() + "\\");
  EXPECT_EQ(machine.facts.logFolder, folder.string() + "\\");
  EXPECT_EQ(machine.facts.languageId, GetSystemDefaultLCID());
  std::filesystem::remove_all(folder.parent_path());
}

/// Why this log folder cannot be used.
std::string RefusalOfLogFolder(const std::filesystem::path& folder, host::FolderAccess access) {
  try {
    host::PrepareLiveMachine(folder, access);
  } catch (const host::LiveError& error) {
    return error.what();
  }
  return "not refused";
}

TEST(LiveMachine, RefusesALogFolderThatCannotBeMade) {
  const CurrentFolder current("refused log folders");
  std::ofstream("file") << "x";
  for (const auto access : {host::FolderAccess::kInherited, host::FolderAccess::kOwn}) {
    EXPECT_THAT(RefusalOfLogFolder(current.Path() / "file" / "logs", access),
                testing::AllOf(
                    testing::StartsWith("cannot create the log folder " + current.Path().string()),
                    testing::HasSubstr("(system error ")));
  }
}

TEST(LiveMachine, RefusesALogFolderOfSomeoneElses) {
  const CurrentFolder current("foreign log folders");
  std::ofstream("logs") << "x";  // no folder that we made
  EXPECT_THAT(RefusalOfLogFolder(current.Path() / "logs", host::FolderAccess::kOwn),
              testing::HasSubstr("belongs to someone else; choose another with --log-folder"));
}

TEST(LiveMachine, TakesALogFolderWithOrWithoutASeparatorBehindIt) {
  const CurrentFolder current("log folders");
  const std::string folder = current.Path().string() + "\\";
  EXPECT_EQ(host::DescribeThisMachine(current.Path()).logFolder, folder);
  EXPECT_EQ(host::DescribeThisMachine(folder).logFolder, folder);
}

TEST(LiveMachine, LooksAtTheDiskOfALogFolderThatIsNotThereYet) {
  const CurrentFolder current("looked at");
  const host::Surroundings found = host::LookAround(current.Path() / "new" / "newer");
  EXPECT_TRUE(found.canWriteLogFolder);
  EXPECT_TRUE(found.hasInterpreter);
  EXPECT_GT(found.freeBytes, 0U);
  EXPECT_TRUE(std::filesystem::is_empty(current.Path()));
}

TEST(LiveMachine, HasNoDiskOfALogFolderOnADriveThatIsNotThere) {
  const host::Surroundings found = host::LookAround("Q:\\logs");
  EXPECT_FALSE(found.canWriteLogFolder);
  EXPECT_EQ(found.freeBytes, 0U);
}

TEST(LiveMachine, RefusesALogFolderThatThePluginHasNoRoomFor) {
  const CurrentFolder current("refused");
  const std::filesystem::path folder =
      current.Path() / std::string(150, 'a') / std::string(100, 'b');
  EXPECT_THROW(host::PrepareLiveMachine(folder, host::FolderAccess::kInherited), host::LiveError);
  EXPECT_TRUE(std::filesystem::is_empty(current.Path()));
}

TEST(LiveMachine, RefusesALogFolderThatTheCodePageLacks) {
  const CurrentFolder current("refused");
  const std::filesystem::path folder = current.Path() / L"\x0434\x4e2d";
  EXPECT_THROW(host::PrepareLiveMachine(folder, host::FolderAccess::kInherited), host::LiveError);
  EXPECT_TRUE(std::filesystem::is_empty(current.Path()));
}

}  // namespace
}  // namespace test
