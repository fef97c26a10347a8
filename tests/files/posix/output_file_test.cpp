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

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;
using testing::ElementsAre;

void WriteText(const fs::path& path, const std::string& text) {
  OutputFile file(path);
  file.Stream() << text;
  file.Complete();
}

TEST(OutputFile, IsWrittenWhereALinkLeads) {
  const TemporaryFolder folder;
  folder.Write("real/file", "old");
  fs::create_symlink("real/file", folder / "link");
  WriteText(folder / "link", "new");
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(folder.Read("real/file"), "new");
  EXPECT_THAT(folder.Files(), ElementsAre("link", "real/file"));
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
  OutputFile file("/dev/full");
  file.Stream() << "text";
  EXPECT_THROW(file.Complete(), std::runtime_error);
}

}  // namespace
}  // namespace host
