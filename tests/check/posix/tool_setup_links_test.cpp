#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "host/check/tool_setup.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(ToolSetup, FollowsNoLinks) {
  const test::TemporaryFolder folder;
  folder.Write("elsewhere/storcli.exe", "tool");
  fs::create_directories(folder.Path() / "searched");
  fs::create_directory_symlink(folder.Path() / "elsewhere", folder.Path() / "searched" / "folder");
  fs::create_symlink(folder.Path() / "elsewhere" / "storcli.exe",
                     folder.Path() / "searched" / "storcli.exe");
  std::vector<host::ToolPlace> places(1);
  places[0].tool.program = "storcli.exe";
  host::FindTools({folder.Path() / "searched"}, {}, places);
  EXPECT_TRUE(places[0].found.empty());
  host::FindTools({folder.Path() / "elsewhere"}, {}, places);
  EXPECT_EQ(places[0].found.size(), 1U);
}

}  // namespace
