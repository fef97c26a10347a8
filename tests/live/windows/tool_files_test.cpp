#include "host/live/tool_files.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>

#include "host/text/version.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows/changed_variable.h"
#include "tests/support/windows/made_key.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

fs::path FindOwnLibrary(const wchar_t* name) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(GetModuleHandleW(name), path, MAX_PATH);
  return path;
}

const std::wstring kInstalled =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\pqhost test ";

TEST(InstallFolders, AreThoseOfTheListOfProgramsAndTheSystemsOwn) {
  const MadeKey first(kInstalled + L"1");
  first.SetText(L"InstallLocation", L"C:\\Vendor/view\\cmd\\..");
  const MadeKey again(kInstalled + L"2");
  again.SetText(L"InstallLocation", L"c:\\vendor\\VIEW\\");
  const MadeKey relative(kInstalled + L"3");
  relative.SetText(L"InstallLocation", L"somewhere");
  const MadeKey drive(kInstalled + L"4");
  drive.SetText(L"InstallLocation", L"C:\\");
  const MadeKey without(kInstalled + L"5");
  const ChangedVariable programs(L"ProgramFiles", L"C:\\Own Programs");
  const std::vector<fs::path> folders = host::ListInstallFolders();
  EXPECT_EQ(std::ranges::count_if(folders,
                                  [](const fs::path& folder) {
                                    return _wcsnicmp(folder.c_str(), L"C:\\Vendor\\view", 14) == 0;
                                  }),
            1);
  EXPECT_THAT(folders, Not(Contains(fs::path("somewhere"))));
  EXPECT_THAT(folders, Not(Contains(fs::path("C:\\"))));
  EXPECT_THAT(folders, Contains(fs::path("C:\\Own Programs")));
}

TEST(PathFolders, AreAbsoluteAndListedOnce) {
  const ChangedVariable path(L"PATH", L"C:\\one;;two;C:\\three;c:\\ONE;\\four;C:\\five");
  EXPECT_THAT(host::ListPathFolders(),
              ElementsAre(fs::path("C:\\one"), fs::path("C:\\three"), fs::path("C:\\five")));
}

TEST(FileOrigin, IsTheVersionThatWindowsShows) {
  const host::FileOrigin origin = host::ReadOrigin(FindOwnLibrary(L"repository.dll"));
  EXPECT_EQ(origin.version, std::string(host::kVersion) + ".0");
  EXPECT_EQ(origin.signer, "");
}

TEST(FileOrigin, IsEmptyOfWhatTellsNone) {
  const TemporaryFolder folder;
  folder.Write("text.exe", "no program");
  for (const fs::path& file : {folder.Path() / "text.exe", folder.Path() / "missing.exe",
                               FindOwnLibrary(L"libstdc++-6.dll")}) {
    const host::FileOrigin origin = host::ReadOrigin(file);
    EXPECT_EQ(origin.version, "") << file;
    EXPECT_EQ(origin.signer, "") << file;
  }
}

/// A copy of a library whose version resource is these bytes.
void WriteWithVersion(const fs::path& file, std::string bytes) {
  fs::copy_file(FindOwnLibrary(L"repository.dll"), file);
  const HANDLE update = BeginUpdateResourceW(file.c_str(), /*bDeleteExistingResources=*/TRUE);
  ASSERT_TRUE(UpdateResourceW(update, MAKEINTRESOURCEW(16), MAKEINTRESOURCEW(1), 0, bytes.data(),
                              static_cast<DWORD>(bytes.size())));
  ASSERT_TRUE(EndUpdateResourceW(update, FALSE));
}

TEST(FileOrigin, IsNoVersionThatIsCutOffOrUnsigned) {
  const TemporaryFolder folder;
  WriteWithVersion(folder.Path() / "short.dll", "short");
  WriteWithVersion(folder.Path() / "zeros.dll", std::string(200, '\0'));
  EXPECT_EQ(host::ReadOrigin(folder.Path() / "short.dll").version, "");
  EXPECT_EQ(host::ReadOrigin(folder.Path() / "zeros.dll").version, "");
}

}  // namespace
}  // namespace test
