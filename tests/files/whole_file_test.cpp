#include "host/files/whole_file.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ThrowsMessage;

TEST(WholeFile, IsReadAsItWasWritten) {
  const test::TemporaryFolder folder;
  const std::string bytes("a\r\n\0\x1A\xFF\n", 7);
  CreateWholeFile(folder.Path() / "a/b/c", bytes);
  EXPECT_EQ(ReadWholeFile(folder.Path() / "a/b/c"), bytes);
}

TEST(WholeFile, SaysWhyItCannotBeRead) {
  const test::TemporaryFolder folder;
  EXPECT_THAT([&] { ReadWholeFile(folder.Path() / "a"); },
              ThrowsMessage<std::runtime_error>("there is no such file"));
  EXPECT_THAT([&] { ReadWholeFile(folder.Path()); },
              ThrowsMessage<std::runtime_error>("is no plain file"));
}

TEST(WholeFile, SaysWhyItCannotBeWritten) {
  const test::TemporaryFolder folder;
  folder.Write("a", "");
  EXPECT_THAT([&] { CreateWholeFile(folder.Path(), "x"); },
              ThrowsMessage<std::runtime_error>("cannot write " + folder.Path().string() +
                                                ": it is a folder"));
  EXPECT_THAT(
      [&] { CreateWholeFile(folder.Path() / "a/b/c", "x"); },
      ThrowsMessage<std::runtime_error>("cannot write " + folder / "a/b/c" + ": the folder " +
                                        folder / "a/b" + " does not exist"));
}

TEST(WholeFile, IsNeverWrittenOverAnother) {
  const test::TemporaryFolder folder;
  folder.Write("a", "old");
  EXPECT_THROW(CreateWholeFile(folder.Path() / "a", "new"), std::runtime_error);
  EXPECT_EQ(folder.Read("a"), "old");
}

TEST(CreateEmptyFolder, MakesTheFoldersAboveToo) {
  const test::TemporaryFolder folder;
  CreateEmptyFolder(folder.Path() / "a" / "b", "--record");
  CreateEmptyFolder(folder.Path() / "a" / "b", "--record");
  EXPECT_TRUE(std::filesystem::is_directory(folder.Path() / "a" / "b"));
}

TEST(CreateEmptyFolder, RefusesTheNameOfAFile) {
  const test::TemporaryFolder folder;
  folder.Write("a", "");
  EXPECT_THROW(CreateEmptyFolder(folder.Path() / "a", "--record"), UsageError);
}

TEST(CreateEmptyFolder, RefusesAFolderThatContainsSomething) {
  const test::TemporaryFolder folder;
  folder.Write("a", "");
  EXPECT_THAT([&] { CreateEmptyFolder(folder.Path(), "--log-folder"); },
              ThrowsMessage<UsageError>(folder.Path().string() +
                                        " is not empty: give --log-folder a folder that is new or "
                                        "empty"));
  EXPECT_THAT(folder.Files(), testing::ElementsAre("a"));
}

}  // namespace
}  // namespace host
