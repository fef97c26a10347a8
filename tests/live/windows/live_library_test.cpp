// The plug-in as a loaded library, watched by the host.

#include <gtest/gtest.h>
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

TEST(LiveMachine, RefusesALogFolderThatThePluginHasNoRoomFor) {
  const std::filesystem::path folder =
      BesideThisProgram("refused") / std::string(150, 'a') / std::string(100, 'b');
  EXPECT_THROW(host::PrepareLiveMachine(folder, host::FolderAccess::kInherited), host::LiveError);
  EXPECT_FALSE(std::filesystem::exists(BesideThisProgram("refused")));
}

TEST(LiveMachine, RefusesALogFolderThatTheCodePageLacks) {
  const std::filesystem::path folder = BesideThisProgram("refused") / L"\x0434\x4e2d";
  EXPECT_THROW(host::PrepareLiveMachine(folder, host::FolderAccess::kInherited), host::LiveError);
  EXPECT_FALSE(std::filesystem::exists(BesideThisProgram("refused")));
}

}  // namespace
}  // namespace test
