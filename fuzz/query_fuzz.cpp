// A query of a stranger's database. The input's first line is the statement, the rest is the file;
// a file that is empty stands for a database with a collection of one table in it.
//
// Either there is an answer, whose rows all have its columns, or one line says why not. The file is
// left as it was, and nothing else is in its folder.
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "host/database/database.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/temporary_folder.h"

namespace {

using fuzz::Require;

std::string MakeDatabase() {
  test::MadeCollection made;
  made.Table("SENSORINFO");
  made.Row({{"Name", "CPU0 Temp"}, {"Reading", "47.00"}});
  made.Row({{"Name", "CPU1 Temp"}, {"Reading", "51.00"}});
  return made.As("sqlite");
}

/// Asks, and returns what went wrong.
std::string Ask(const std::filesystem::path& file, const std::string& sql) {
  try {
    host::Database database(file, std::chrono::seconds(1));
    std::size_t columns = 0;
    database.Query(
        sql, [&](const host::Database::Names& names) { columns = names.size(); },
        [&](const host::Database::Values& values) { Require(values.size() == columns); });
    return "";
  } catch (const host::DatabaseError& error) {
    Require(error.what() != std::string());
    return error.what();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string kMade = MakeDatabase();
  static const test::TemporaryFolder kFolder;
  std::string_view rest = fuzz::InputText(data, size);
  const std::string sql(fuzz::TakeUpTo(rest, '\n'));
  const std::string_view bytes = rest.empty() ? kMade : rest;
  kFolder.Write("x.db", bytes);
  const std::string complaint = Ask(kFolder.Path() / "x.db", sql);
  Require(complaint.find('\n') == std::string::npos);
  Require(kFolder.Read("x.db") == bytes);
  Require(kFolder.Files() == std::vector<std::string>{"x.db"});
  return 0;
}
