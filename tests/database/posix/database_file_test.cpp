// Files that are no files: to open one may wait for ever.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/database/database.h"
#include "tests/support/program/filled_database.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

/// Why `path` cannot be asked.
std::string FindRefusal(const std::filesystem::path& path) {
  try {
    const Database database(path);
  } catch (const DatabaseError& error) {
    return error.what();
  }
  return "opened";
}

TEST(DatabaseFile, IsNoPipeAndNoDevice) {
  const test::TemporaryFolder folder;
  const std::string pipe = folder / "pipe.db";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::filesystem::create_symlink(pipe, folder / "link.db");
  EXPECT_EQ(FindRefusal(pipe), pipe + ": is no plain file");
  EXPECT_EQ(FindRefusal(folder / "link.db"), folder / "link.db" + ": is no plain file");
  EXPECT_EQ(FindRefusal("/dev/zero"), "/dev/zero: is no plain file");
}

TEST(DatabaseFile, MayHaveANameWithAQuestionMark) {
  const test::TemporaryFolder folder;
  folder.Write("a?mode=rwc&b#c.db", "");
  {
    Database database(Database::NewFile{folder / "a?mode=rwc&b#c.db"});
    test::FillDatabase(database, {});
  }
  Database database(folder / "a?mode=rwc&b#c.db");
  EXPECT_NO_THROW(database.Query(
      "SELECT * FROM tables", [](auto&) {}, [](auto&) {}));
  EXPECT_EQ(folder.Files(), std::vector<std::string>{"a?mode=rwc&b#c.db"});
}

}  // namespace
}  // namespace host
