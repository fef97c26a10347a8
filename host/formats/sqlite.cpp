// The collection as an SQLite file.

#include <filesystem>
#include <stdexcept>
#include <vector>

#include "host/answers/collection_database.h"
#include "host/files/partial_file.h"
#include "host/formats/database_file.h"
#include "host/formats/formats.h"
#include "host/text/path_text.h"

namespace host {
namespace {

void CopyFile(const std::filesystem::path& path, std::ostream& out) {
  constexpr std::size_t kChunk = std::size_t{1} << 20;
  const FileHandle file = OpenToRead(path);
  std::vector<char> bytes(kChunk);
  while (const std::size_t count = file.Read(bytes.data(), bytes.size())) {
    out.write(bytes.data(), static_cast<std::streamsize>(count));
  }
}

}  // namespace

// A database can be many times the size of the collection, so it is never in memory as a whole.
void WriteDatabase(std::ostream& out, const std::function<void(Database&)>& fill) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  try {
    PartialFile file(folder / "pqhost.db", Readers::kOwner);
    file.TakeHandle().Close();
    {
      Database database(Database::NewFile{file.Path()});
      fill(database);
    }
    CopyFile(file.Path(), out);
  } catch (const DatabaseError& error) {
    throw std::runtime_error("the database, which is first made in " + PathText(folder) +
                             ", cannot be written: " + error.what());
  }
}

void WriteSqliteLast(Collection& collection, const Screen& screen, std::ostream& out) {
  WriteDatabase(out, [&](Database& database) {
    FillDatabase(database, collection, Assess(collection), ChooseAttachments(screen));
  });
}

void WriteSqlite(const Collection& collection, const Screen& screen, std::ostream& out) {
  WriteDatabase(out, [&](Database& database) {
    FillDatabase(database, CollectionView(collection, ChooseAttachments(screen)));
  });
}

}  // namespace host
