#include "host/files/whole_file.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ThrowsMessage;

TEST(WholeFile, IsReadAsItWasWritten) {
  const test::TemporaryFolder folder;
  const std::string bytes("a\r\n\0\x1A\xFF\n", 7);
  WriteWholeFile(folder.Path() / "a/b/c", bytes);
  EXPECT_EQ(ReadWholeFile(folder.Path() / "a/b/c"), bytes);
}

TEST(WholeFile, LeavesNothingOfALongerOne) {
  const test::TemporaryFolder folder;
  folder.Write("a", "long");
  WriteWholeFile(folder.Path() / "a", "");
  EXPECT_EQ(ReadWholeFile(folder.Path() / "a"), "");
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
  EXPECT_THAT([&] { WriteWholeFile(folder.Path(), "x"); },
              ThrowsMessage<std::runtime_error>("cannot write " + folder.Path().string() +
                                                ": it is a folder"));
  EXPECT_THAT(
      [&] { WriteWholeFile(folder.Path() / "a/b/c", "x"); },
      ThrowsMessage<std::runtime_error>("cannot write " + folder / "a/b/c" + ": the folder " +
                                        folder / "a/b" + " does not exist"));
}

}  // namespace
}  // namespace host
