#include "host/database/own_tables.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace host {
namespace {

struct OwnTable {
  const char* name;
  std::string_view columns;  ///< names with blanks between them, those of numbers with an asterisk
};
constexpr OwnTable kOwnTables[] = {
    {kMachineTable, "name value"},
    {kModulesTable, "position* name description"},
    // SQL does not tell upper case from lower case: `tables` and `columns` say which names the
    // classes and keys were given.
    {kTablesTable, "position* class name title module rows* outcome status"},
    {kNotesTable, "class text"},
    {kDoubtsTable, "class kind text"},
    {kProblemsTable, "position* text"},
    {kColumnsTable, "class position* key name label"},
    {kAttachmentsTable, "class row* key filename text"},
    {kLogTable, "position* level* file line* text"},
};

}  // namespace

void MakeOwnTables(SqlTables& tables) {
  for (const OwnTable& own : kOwnTables) {
    std::vector<SqlColumn> columns;
    for (std::string_view rest = own.columns; !rest.empty();) {
      std::string_view column = rest.substr(0, rest.find(' '));
      rest.remove_prefix(std::min(column.size() + 1, rest.size()));
      const bool isNumber = column.ends_with('*');
      if (isNumber) column.remove_suffix(1);
      columns.push_back({.name = std::string(column), .type = isNumber ? kIntegerType : kTextType});
    }
    tables.Provide(tables.Find(own.name, /*isOfClass=*/false), columns);
  }
}

}  // namespace host
