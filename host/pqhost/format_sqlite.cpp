// The collection as an SQLite file.

#include "host/pqhost/database.h"
#include "host/pqhost/formats.h"

namespace host {

void WriteSqlite(const Collection& collection, const Screen& /*screen*/, std::ostream& out) {
  Database database;
  database.Fill(collection);
  out << database.Serialize();
}

}  // namespace host
