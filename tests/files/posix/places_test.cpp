// Places that links lead to.
#include "host/files/places.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;

TEST(IsInFolder, FollowsLinksAndAlsoDoesNot) {
  const test::TemporaryFolder folder;
  const fs::path& room = folder.Path();
  fs::create_directories(room / "recording");
  fs::create_directories(room / "home");
  fs::create_directory_symlink(room / "home", room / "recording" / "logs");
  fs::create_directory_symlink(room / "recording", room / "elsewhere");
  EXPECT_TRUE(IsInFolder(room / "recording" / "logs" / "x", room / "recording"));
  EXPECT_TRUE(IsInFolder(room / "elsewhere" / "x", room / "recording"));
  EXPECT_TRUE(IsInFolder(room / "recording" / "x", room / "elsewhere"));
  EXPECT_FALSE(IsInFolder(room / "home" / "x", room / "recording"));
}

TEST(AreSameFile, FollowsLinks) {
  const test::TemporaryFolder folder;
  const fs::path& room = folder.Path();
  fs::create_directories(room / "a");
  fs::create_directory_symlink(room / "a", room / "b");
  EXPECT_TRUE(AreSameFile(room / "a" / "new", room / "b" / "new"));
  folder.Write("a/old", "");
  fs::create_hard_link(room / "a" / "old", room / "hard");
  EXPECT_TRUE(AreSameFile(room / "a" / "old", room / "hard"));
}

}  // namespace
}  // namespace host
