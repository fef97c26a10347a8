#include "host/files/file_stream.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

TEST(FileStream, WritesBytesAsTheyAre) {
  const test::TemporaryFolder folder;
  FileStream stream;
  ASSERT_TRUE(stream.Open(folder / "file"));
  stream << "a\nb\r\n" << 'c' << std::string_view("\0\x1a", 2);
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ(folder.Read("file"), std::string("a\nb\r\nc\0\x1a", 8));
}

TEST(FileStream, EmptiesAFileThatIsThere) {
  const test::TemporaryFolder folder;
  for (const char* text : {"longer", "short"}) {
    FileStream stream;
    ASSERT_TRUE(stream.Open(folder / "file"));
    stream << text;
  }
  EXPECT_EQ(folder.Read("file"), "short");
}

TEST(FileStream, TellsAFileThatCannotBeCreated) {
  const test::TemporaryFolder folder;
  FileStream stream;
  errno = 0;
  EXPECT_FALSE(stream.Open(folder / "nowhere/file"));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_FALSE(stream.IsOpen());
  stream << "lost";
  EXPECT_FALSE(stream.Close());
}

}  // namespace
}  // namespace host
