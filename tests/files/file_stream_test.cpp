#include "host/files/file_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

TEST(FileStream, WritesBytesAsTheyAre) {
  const test::TemporaryFolder folder;
  FileStream stream(CreateNewFile(folder.Path() / "file", Readers::kOwner));
  stream << "a\nb\r\n" << 'c' << std::string_view("\0\x1a", 2);
  EXPECT_TRUE(stream.Close());
  EXPECT_EQ(folder.Read("file"), std::string("a\nb\r\nc\0\x1a", 8));
}

TEST(FileStream, KeepsTheOrderOfSmallAndLargeTexts) {
  const test::TemporaryFolder folder;
  FileStream stream(CreateNewFile(folder.Path() / "file", Readers::kOwner));
  std::string written;
  for (const std::size_t size : {1U, 65535U, 65536U, 3U, 200000U, 65534U, 2U, 1U}) {
    const std::string text(size, static_cast<char>('a' + written.size() % 26));
    stream << text;
    stream.put('.');
    written += text + ".";
  }
  EXPECT_TRUE(stream.Close());
  EXPECT_TRUE(folder.Read("file") == written);
}

TEST(FileStream, EmptiesAFileThatIsThere) {
  const test::TemporaryFolder folder;
  for (const char* text : {"longer", "short"}) {
    FileStream stream(OpenToOverwrite(folder.Path() / "file"));
    stream << text;
  }
  EXPECT_EQ(folder.Read("file"), "short");
}

TEST(FileStream, TellsThatItLeadsNowhere) {
  FileStream stream;
  stream << "lost";
  EXPECT_FALSE(stream.Close());
}

}  // namespace
}  // namespace host
