#include "host/files/places.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;

TEST(IsInFolder, KnowsWhatIsBelow) {
  const test::TemporaryFolder folder;
  const fs::path& room = folder.Path();
  folder.Write("a/b", "");
  EXPECT_TRUE(IsInFolder(room, room));
  EXPECT_TRUE(IsInFolder(room / "", room));
  EXPECT_TRUE(IsInFolder(room / "a" / "b", room));
  EXPECT_TRUE(IsInFolder(room / "new" / "newer", room));
  EXPECT_TRUE(IsInFolder(room / "a" / ".." / "c", room / "x" / ".."));
  EXPECT_FALSE(IsInFolder(room / ".." / "c", room));
  EXPECT_FALSE(IsInFolder(room.string() + "2", room));
  EXPECT_FALSE(IsInFolder(room / "a", room / "a" / "b"));
}

TEST(AreSameFile, ComparesPlacesNotWords) {
  const test::TemporaryFolder folder;
  const fs::path& room = folder.Path();
  folder.Write("a/b", "");
  EXPECT_TRUE(AreSameFile(room / "new", room / "." / "new"));
  EXPECT_TRUE(AreSameFile(room / "a" / "b", room / "a" / ".." / "a" / "b"));
  EXPECT_FALSE(AreSameFile(room / "new", room / "newer"));
}

}  // namespace
}  // namespace host
