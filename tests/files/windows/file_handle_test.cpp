#include "host/files/file_handle.h"

#include <gmock/gmock.h>
#include <io.h>
#include <windows.h>
// After windows.h.
#include <aclapi.h>
#include <sddl.h>

#include <cerrno>
#include <filesystem>

#include "host/files/partial_file.h"
#include "host/files/places.h"
#include "host/files/windows/accounts.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows/changed_variable.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// A file that is open without sharing, as long as the object lives.
class FileInUse {
 public:
  explicit FileInUse(const fs::path& path)
      : handle(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, /*dwShareMode=*/0, nullptr,
                           OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  FileInUse(const FileInUse&) = delete;
  FileInUse& operator=(const FileInUse&) = delete;
  ~FileInUse() { CloseHandle(handle); }

 private:
  HANDLE handle;
};

TEST(MoveIntoPlace, KeepsAFileThatIsInUse) {
  const test::TemporaryFolder folder;
  folder.Write("old", "old");
  folder.Write("new", "new");
  const fs::path from = folder.Path() / "new";
  const fs::path to = folder.Path() / "old";
  {
    const FileInUse used(to);
    errno = 0;
    EXPECT_FALSE(MoveIntoPlace(from, to));
    EXPECT_EQ(errno, EACCES);
  }
  EXPECT_EQ(folder.Read("old"), "old");
  EXPECT_TRUE(MoveIntoPlace(from, to));
  EXPECT_EQ(folder.Read("old"), "new");
  EXPECT_FALSE(fs::exists(from));
}

int ErrorOfNewFile(const fs::path& path) {
  errno = 0;
  EXPECT_FALSE(CreateNewFile(path, Readers::kOwner).IsOpen()) << path;
  return errno;
}

TEST(CreateNewFile, TellsWhyThereIsNone) {
  const test::TemporaryFolder folder;
  folder.Write("file", "");
  const fs::path& room = folder.Path();
  EXPECT_EQ(ErrorOfNewFile(room / "file"), EEXIST);
  EXPECT_EQ(ErrorOfNewFile(room / "missing" / "file"), ENOENT);
  EXPECT_EQ(ErrorOfNewFile(room / "a*b"), EINVAL);
}

TEST(OpenToOverwrite, LeavesAFileThatIsInUse) {
  const test::TemporaryFolder folder;
  folder.Write("file", "old");
  {
    const FileInUse used(folder.Path() / "file");
    errno = 0;
    EXPECT_FALSE(OpenToOverwrite(folder.Path() / "file").IsOpen());
    EXPECT_EQ(errno, EACCES);
  }
  EXPECT_EQ(folder.Read("file"), "old");
}

TEST(OpenToOverwrite, TakesADevice) { EXPECT_TRUE(OpenToOverwrite("NUL").IsOpen()); }

std::string RefusalToRead(const fs::path& path) {
  try {
    OpenToRead(path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "not refused";
}

TEST(OpenToRead, TellsWhatIsNoFile) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(RefusalToRead(folder.Path()), "is no plain file");
  EXPECT_EQ(RefusalToRead("NUL"), "is no plain file");
  EXPECT_EQ(RefusalToRead(folder.Path() / "missing"), "there is no such file");
  const FileInUse used(folder.Path() / "used");
  EXPECT_EQ(RefusalToRead(folder.Path() / "used"), "cannot be read");
}

/// Whether a file with such an access list is said to be open to others.
bool IsSaidToBeOpen(const std::wstring& list) {
  const test::TemporaryFolder folder;
  folder.Write("file", "");
  PSECURITY_DESCRIPTOR made = nullptr;
  EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(list.c_str(), SDDL_REVISION_1,
                                                                   &made, nullptr));
  const LocalMemory owned(made);
  EXPECT_TRUE(SetFileSecurityW((folder.Path() / "file").c_str(), DACL_SECURITY_INFORMATION, made));
  return IsOpenToOthers(OpenToRead(folder.Path() / "file"));
}

TEST(IsOpenToOthers, TellsByTheAccessList) {
  EXPECT_FALSE(IsSaidToBeOpen(L"D:P(A;;FA;;;BA)"));
  EXPECT_TRUE(IsSaidToBeOpen(L"D:P(A;;FA;;;BA)(A;;FR;;;WD)"));
}

TEST(FindRealFolder, IsEmptyOfOneThatIsNotThere) {
  const test::TemporaryFolder folder;
  EXPECT_NE(FindRealFolder(folder.Path()), fs::path());
  EXPECT_EQ(FindRealFolder(folder.Path() / "missing"), fs::path());
}

TEST(IsOurs, KnowsTheUserTheAdministratorsAndTheSystem) {
  const auto isOurs = [](const wchar_t* account) {
    PSID sid = nullptr;
    EXPECT_TRUE(ConvertStringSidToSidW(account, &sid)) << account;
    const LocalMemory owned(sid);
    return IsOurs(sid);
  };
  EXPECT_TRUE(isOurs(L"BA"));
  EXPECT_TRUE(isOurs(L"SY"));
  EXPECT_FALSE(isOurs(L"WD"));
  EXPECT_FALSE(isOurs(L"S-1-5-21-1-2-3-1001"));
  EXPECT_TRUE(IsOurs(ThisUser().Sid()));
}

TEST(SettingsFolder, IsTheUsersOwn) {
  {
    const test::ChangedVariable place(L"LOCALAPPDATA", L"C:\\own");
    EXPECT_EQ(FindSettingsFolder(), fs::path("C:\\own\\pqhost"));
  }
  const test::ChangedVariable none(L"LOCALAPPDATA", L"");
  EXPECT_EQ(FindSettingsFolder(), fs::path());
}

}  // namespace
}  // namespace host
