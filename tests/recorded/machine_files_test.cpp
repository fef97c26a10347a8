#include "host/recorded/machine_files.h"

#include <gmock/gmock.h>

#include "host/recorded/own_commands.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::Pair;

MachineFiles FilesOf(std::map<std::string, Bytes> files) {
  Recording recording;
  recording.files = std::move(files);
  return MachineFiles(recording);
}

TEST(MachineFiles, SpellsAPathAsItWasFirstWritten) {
  MachineFiles files = FilesOf({{"C:\\\\Logs\\\\A.txt", "a"}});
  files.Store("c:\\logs\\a.TXT", "b");
  EXPECT_THAT(files.All(), ElementsAre(Pair("C:\\Logs\\A.txt", "b")));
}

TEST(MachineFiles, GivesAPathInFull) {
  const MachineFiles files = FilesOf({});
  EXPECT_EQ(files.FullPath("a.txt"), "C:\\Halyard\\work\\a.txt");
  EXPECT_EQ(files.FullPath("D:\\\\x\\.\\y\\..\\z\\"), "D:\\x\\z");
  EXPECT_EQ(files.FullPath("\\\\\\\\server\\\\share\\\\z"), "\\\\server\\share\\z");
  EXPECT_EQ(files.FullPath("\\a"), "C:\\a");
}

TEST(MachineFiles, NeverLeavesTheDriveUpwards) {
  EXPECT_EQ(FilesOf({}).FullPath("C:\\..\\..\\a"), "C:\\a");
}

TEST(MachineFiles, SharesTheBytesOfACopy) {
  MachineFiles files = FilesOf({{"C:\\a", "long report"}});
  const Stage stage{"copy", "C:\\a C:\\Halyard\\logs\\b", {}};
  EXPECT_EQ(RunOwnCommand(stage, {}, files).exitCode, 0u);
  EXPECT_TRUE(files.Find("C:\\a")->SharesWith(*files.Find("C:\\Halyard\\logs\\b")));
}

TEST(MachineFiles, AreFromBeforeUntilTheyAreWritten) {
  MachineFiles files = FilesOf({{"C:\\F\\a.txt", "a"}});
  EXPECT_TRUE(files.IsFromBefore("c:\\\\f\\\\A.txt"));
  EXPECT_FALSE(files.IsFromBefore("C:\\F\\b.txt"));
  files.Create("C:\\F\\a.txt");
  EXPECT_FALSE(files.IsFromBefore("C:\\F\\a.txt"));
}

TEST(MachineFiles, ListsOnlyTheFilesRightInAFolder) {
  const MachineFiles files = FilesOf({{"C:\\f\\a", ""}, {"C:\\f\\g\\b", ""}, {"C:\\fa", ""}});
  const auto inside = files.ListFiles("c:\\F\\");
  ASSERT_EQ(inside.size(), 1u);
  EXPECT_EQ(inside.begin()->first, "a");
}

TEST(MachineFiles, TellsAFolderFromAPathThatBeginsAlike) {
  EXPECT_FALSE(FilesOf({{"C:\\folder\\a", ""}}).FolderExists("C:\\fold"));
}

}  // namespace
}  // namespace host
