#include "host/live/windows/own_folder.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h.
#include <aclapi.h>

#include <filesystem>

#include "host/live/live.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows/changed_variable.h"

namespace test {
namespace {

namespace fs = std::filesystem;

/// How many entries of the folder's list let everyone in.
int CountEntriesForEveryone(const fs::path& folder) {
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(const_cast<wchar_t*>(folder.c_str()), SE_FILE_OBJECT,
                            DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr,
                            &descriptor) != ERROR_SUCCESS) {
    return -1;
  }
  int count = 0;
  for (DWORD i = 0; list != nullptr && i < list->AceCount; ++i) {
    void* entry = nullptr;
    GetAce(list, i, &entry);
    PSID sid = &static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart;
    if (IsWellKnownSid(sid, WinWorldSid)) ++count;
  }
  LocalFree(descriptor);
  return count;
}

TEST(OwnFolder, LetsNoOneElseIn) {
  const TemporaryFolder folder;
  const fs::path ordinary = folder.Path() / "ordinary";
  fs::create_directory(ordinary);
  EXPECT_GT(CountEntriesForEveryone(ordinary), 0);
  const fs::path own = folder.Path() / "own";
  EXPECT_EQ(host::CreateOwnFolder(own), 0U);
  EXPECT_EQ(CountEntriesForEveryone(own), 0);
  EXPECT_TRUE(host::IsOwnFolder(own));
  EXPECT_EQ(host::CreateOwnFolder(own), 0U) << "it is there already";
}

TEST(OwnFolder, IsNeitherMissingNorAFile) {
  const TemporaryFolder folder;
  folder.Write("file", "");
  EXPECT_FALSE(host::IsOwnFolder(folder.Path() / "file"));
  EXPECT_FALSE(host::IsOwnFolder(folder.Path() / "missing"));
  EXPECT_EQ(host::CreateOwnFolder(folder.Path() / "missing" / "own"),
            static_cast<std::uint32_t>(ERROR_PATH_NOT_FOUND));
}

TEST(DefaultLogFolder, IsInTheUsersOwnPlaceWhereTheCurrentFolderHasNone) {
  const TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  EXPECT_EQ(host::FindDefaultLogFolder(), fs::current_path() / "logs");
  folder.Write("logs", "a file in its place");
  const fs::path elsewhere = host::FindDefaultLogFolder();
  fs::current_path(before);
  EXPECT_EQ(elsewhere, fs::path(_wgetenv(L"LOCALAPPDATA")) / "pqhost" / "logs");
}

TEST(DefaultLogFolder, IsInTheCurrentFolderWhereTheUserHasNoOwnPlace) {
  const TemporaryFolder folder;
  folder.Write("logs", "a file in its place");
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  const ChangedVariable place(L"LOCALAPPDATA", L"");
  const fs::path logs = host::FindDefaultLogFolder();
  EXPECT_EQ(logs, fs::current_path() / "logs");
  fs::current_path(before);
}

TEST(DefaultLogFolder, IsTheCurrentFoldersWhereTheUserMadeIt) {
  const TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  EXPECT_EQ(host::CreateOwnFolder("logs"), 0U);
  const fs::path logs = host::FindDefaultLogFolder();
  EXPECT_EQ(logs, fs::current_path() / "logs");
  EXPECT_TRUE(fs::is_empty(logs));
  fs::current_path(before);
}

TEST(DefaultLogFolder, IsCreatedForTheUserAlone) {
  const TemporaryFolder folder;
  const fs::path logs = folder.Path() / "new" / "logs";
  host::PrepareLiveMachine(logs, host::FolderAccess::kOwn);
  EXPECT_EQ(CountEntriesForEveryone(logs), 0);
}

}  // namespace
}  // namespace test
