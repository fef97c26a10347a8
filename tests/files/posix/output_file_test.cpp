// Places that are no files of their own: links, devices and pipes.

#include "host/files/output_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>

#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::HasSubstr;
using testing::ThrowsMessage;
using testing::UnorderedElementsAre;

void WriteText(const fs::path& path, const std::string& text) {
  OutputFile file(path);
  file.Stream() << text;
  file.Complete();
}

TEST(OutputFile, IsNotWrittenWhereALinkLeads) {
  const TemporaryFolder folder;
  folder.Write("real/file", "old");
  fs::create_symlink("real/file", folder / "link");
  fs::create_symlink("real/new", folder / "dangling");
  EXPECT_THROW(WriteText(folder / "link", "new"), UsageError);
  EXPECT_THROW(WriteText(folder / "dangling", "new"), UsageError);
  EXPECT_EQ(folder.Read("real/file"), "old");
  EXPECT_THAT(folder.Files(), UnorderedElementsAre("link", "real/file"));
}

TEST(OutputFile, KeepsTheModeOfAnOldFile) {
  const TemporaryFolder folder;
  folder.Write("o", "old");
  chmod((folder / "o").c_str(), 0640);
  WriteText(folder / "o", "new");
  EXPECT_EQ(fs::status(folder / "o").permissions(), fs::perms(0640));
}

TEST(OutputFile, IsNotReadByOthersWhileItReplacesAFile) {
  const TemporaryFolder folder;
  folder.Write("o", "old");
  chmod((folder / "o").c_str(), 0600);
  OutputFile file(folder / "o");
  for (const auto& entry : fs::directory_iterator(folder.Path())) {
    EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << entry.path();
  }
}

TEST(OutputFile, LeavesADeviceInItsPlace) {
  const TemporaryFolder folder;
  fs::create_symlink("/dev/null", folder / "null");
  WriteText(folder / "null", "text");
  EXPECT_EQ(fs::read_symlink(folder / "null"), "/dev/null");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(OutputFile, WritesIntoAPipe) {
  const TemporaryFolder folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::string read;
  std::thread reader([&] {
    std::ifstream in(pipe);
    read.assign(std::istreambuf_iterator<char>(in), {});
  });
  WriteText(pipe, "text");
  reader.join();
  EXPECT_EQ(read, "text");
  EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(OutputFile, SaysWhenTheDiskIsFull) {
  // What fits into the stream's buffer fails at the end, what does not before.
  for (const std::size_t size : {4U, 1U << 20}) {
    OutputFile file("/dev/full");
    file.Stream() << std::string(size, 'x') << '.';
    EXPECT_THAT([&] { file.Complete(); },
                ThrowsMessage<std::runtime_error>(HasSubstr("No space left on device")))
        << size;
  }
}

}  // namespace
}  // namespace host
