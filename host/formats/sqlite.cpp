// The collection as an SQLite file.

#include "host/formats/database.h"
#include "host/formats/formats.h"

namespace host {

void WriteSqlite(const Collection& collection, const Screen& /*screen*/, std::ostream& out) {
  Database database;
  database.Fill(collection);
  out << database.Serialize();
}

}  // namespace host
