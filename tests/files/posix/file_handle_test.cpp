// Files that other programs try to exchange, and what those programs inherit.
#include "host/files/file_handle.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using testing::ThrowsMessage;

class FileHandleTest : public testing::Test {
 protected:
  fs::path MakeLink(const std::string& name, const std::string& target) {
    fs::create_symlink(target, folder.Path() / name);
    return folder.Path() / name;
  }
  test::TemporaryFolder folder;
};

TEST_F(FileHandleTest, OfANewFileIsNeverAnothersFileOrLink) {
  folder.Write("old", "text");
  EXPECT_FALSE(CreateNewFile(folder.Path() / "old", Readers::kOwner).IsOpen());
  EXPECT_FALSE(CreateNewFile(MakeLink("link", "old"), Readers::kOwner).IsOpen());
  EXPECT_FALSE(CreateNewFile(MakeLink("nowhere", "new"), Readers::kOwner).IsOpen());
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(folder.Read("old"), "text");
  EXPECT_FALSE(fs::exists(folder.Path() / "new"));
}

TEST_F(FileHandleTest, OfANewFileCanBeTheOwnersAlone) {
  ASSERT_TRUE(CreateNewFile(folder.Path() / "a", Readers::kOwner).IsOpen());
  EXPECT_EQ(fs::status(folder.Path() / "a").permissions(), fs::perms(0600));
}

TEST_F(FileHandleTest, OverwritesNothingThroughALink) {
  folder.Write("old", "text");
  EXPECT_FALSE(OpenToOverwrite(MakeLink("link", "old")).IsOpen());
  EXPECT_EQ(folder.Read("old"), "text");
  EXPECT_TRUE(OpenToOverwrite(MakeLink("device", "/dev/null")).IsOpen());
}

TEST_F(FileHandleTest, IsNotInherited) {
  folder.Write("old", "text");
  const FileHandle made = CreateNewFile(folder.Path() / "a", Readers::kOwner);
  const FileHandle overwritten = OpenToOverwrite(folder.Path() / "b");
  const FileHandle read = OpenToRead(folder.Path() / "old");
  for (const FileHandle* file : {&made, &overwritten, &read}) {
    EXPECT_EQ(fcntl(file->Descriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  }
}

TEST_F(FileHandleTest, ReadsPlainFilesOnly) {
  const fs::path pipe = folder.Path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const fs::path& path : {pipe, folder.Path(), fs::path("/dev/zero")}) {
    EXPECT_THAT([&] { OpenToRead(path); }, ThrowsMessage<std::runtime_error>("is no plain file"))
        << path;
  }
}

TEST_F(FileHandleTest, IsOpenToOthersByItsMode) {
  folder.Write("a", "one");
  const fs::path path = folder.Path() / "a";
  for (const auto& [mode, isOpen] : {std::pair(0600, false),
                                     {0400, false},
                                     {0640, true},
                                     {0604, true},
                                     {0620, true},
                                     {0601, true}}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    EXPECT_EQ(IsOpenToOthers(OpenToRead(path)), isOpen) << mode;
  }
  EXPECT_TRUE(IsOpenToOthers(FileHandle()));
}

TEST_F(FileHandleTest, IsWhereLinksLead) {
  folder.Write("real/old", "text");
  MakeLink("folder", "real");
  const fs::path path = folder.Path() / "folder" / "old";
  EXPECT_EQ(FindRealPath(OpenToRead(path), path), fs::canonical(folder.Path()) / "real" / "old");
  EXPECT_EQ(FindRealFolder(folder.Path() / "folder"), fs::canonical(folder.Path()) / "real");
}

TEST_F(FileHandleTest, IsInTheFolderThatItWasMovedWith) {
  folder.Write("old/file", "text");
  const fs::path path = folder.Path() / "old" / "file";
  const FileHandle file = OpenToRead(path);
  fs::rename(folder.Path() / "old", folder.Path() / "new");
  EXPECT_EQ(FindRealPath(file, path), fs::canonical(folder.Path()) / "new" / "file");
}

TEST_F(FileHandleTest, IsNowhereOnceAnotherFileHasItsName) {
  folder.Write("a", "one");
  folder.Write("b", "two");
  const FileHandle file = OpenToRead(folder.Path() / "a");
  fs::rename(folder.Path() / "b", folder.Path() / "a");
  EXPECT_EQ(FindRealPath(file, folder.Path() / "a"), fs::path());
}

}  // namespace
}  // namespace host
