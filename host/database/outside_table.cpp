#include "host/database/outside_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sqlite3.h>

#include <cstddef>
#include <new>
#include <string>
#include <vector>

#include "host/database/query_guard.h"
#include "host/database/sql_names.h"
#include "host/database/sql_statement.h"

namespace host {
namespace {

struct ConnectedTable : sqlite3_vtab {
  const OutsideTable* table;
};

struct RowCursor : sqlite3_vtab_cursor {
  const OutsideTable* table;
  std::size_t row;
  std::size_t count;
};

RowCursor& CursorOf(sqlite3_vtab_cursor* cursor) { return *static_cast<RowCursor*>(cursor); }

/// What `work` answers, or SQLite's word for what it throws: SQLite's own functions are of C, and
/// nothing may be thrown through them.
template <typename Work>
int KeepIn(const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return SQLITE_NOMEM;
  } catch (...) {
    return SQLITE_ERROR;
  }
}

int Connect(sqlite3* handle, void* outside, int /*count*/, const char* const* /*arguments*/,
            sqlite3_vtab** made, char** /*error*/) {
  return KeepIn([&] {
    const auto& table = *static_cast<const OutsideTable*>(outside);
    std::vector<std::string> columns;
    for (const OutsideTable::Column& column : table.columns) {
      columns.push_back(fmt::format("{} {}", QuoteName(column.name), column.type));
    }
    const std::string sql = fmt::format("CREATE TABLE t ({})", fmt::join(columns, ", "));
    const int result = sqlite3_declare_vtab(handle, sql.c_str());
    if (result == SQLITE_OK) *made = new ConnectedTable{{}, &table};
    return result;
  });
}

int Disconnect(sqlite3_vtab* table) {
  delete static_cast<ConnectedTable*>(table);
  return SQLITE_OK;
}

/// There is one way through the rows: all of them. To go through them for each row of another table
/// has to look dear.
int PlanScan(sqlite3_vtab* /*table*/, sqlite3_index_info* plan) {
  constexpr sqlite3_int64 kRows = 10'000;
  plan->estimatedRows = kRows;
  plan->estimatedCost = static_cast<double>(kRows);
  return SQLITE_OK;
}

int OpenCursor(sqlite3_vtab* table, sqlite3_vtab_cursor** made) {
  return KeepIn([&] {
    *made = new RowCursor{{}, static_cast<ConnectedTable*>(table)->table, 0, 0};
    return SQLITE_OK;
  });
}

int CloseCursor(sqlite3_vtab_cursor* cursor) {
  delete &CursorOf(cursor);
  return SQLITE_OK;
}

int BeginScan(sqlite3_vtab_cursor* cursor, int /*plan*/, const char* /*name*/, int /*count*/,
              sqlite3_value** /*values*/) {
  return KeepIn([&] {
    CursorOf(cursor).row = 0;
    CursorOf(cursor).count = CursorOf(cursor).table->countRows();
    return SQLITE_OK;
  });
}

int GoToNextRow(sqlite3_vtab_cursor* cursor) {
  ++CursorOf(cursor).row;
  return SQLITE_OK;
}

int IsAtEnd(sqlite3_vtab_cursor* cursor) {
  return CursorOf(cursor).row >= CursorOf(cursor).count ? 1 : 0;
}

int GiveColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
  return KeepIn([&] {
    const RowCursor& at = CursorOf(cursor);
    GiveResult(context, at.table->getValue(at.row, static_cast<std::size_t>(column)),
               Lifetime::kWhileQueryRuns);
    return SQLITE_OK;
  });
}

int GiveRowNumber(sqlite3_vtab_cursor* cursor, sqlite3_int64* number) {
  *number = static_cast<sqlite3_int64>(CursorOf(cursor).row) + 1;
  return SQLITE_OK;
}

/// Never called: whoever guards a query refuses it. Without it SQLite has words of its own for
/// that.
int RefuseChange(sqlite3_vtab* /*table*/, int /*count*/, sqlite3_value** /*values*/,
                 sqlite3_int64* /*row*/) {
  return SQLITE_READONLY;
}

constexpr sqlite3_module MakeModule() {
  sqlite3_module module{};
  module.xCreate = &Connect;
  module.xConnect = &Connect;
  module.xBestIndex = &PlanScan;
  module.xDisconnect = &Disconnect;
  module.xDestroy = &Disconnect;
  module.xOpen = &OpenCursor;
  module.xClose = &CloseCursor;
  module.xFilter = &BeginScan;
  module.xNext = &GoToNextRow;
  module.xEof = &IsAtEnd;
  module.xColumn = &GiveColumn;
  module.xRowid = &GiveRowNumber;
  module.xUpdate = &RefuseChange;
  return module;
}
constexpr sqlite3_module kModule = MakeModule();

}  // namespace

void AddOutsideTable(sqlite3* handle, const OutsideTable& table) {
  // SQLite only hands the table back to the functions above, which do not change it.
  auto* const outside = const_cast<OutsideTable*>(&table);
  if (sqlite3_create_module(handle, table.name.c_str(), &kModule, outside) != SQLITE_OK) {
    FailAsSqlite(handle);
  }
  const std::string name = QuoteName(table.name);
  Execute(handle, fmt::format("CREATE VIRTUAL TABLE temp.{} USING {}", name, name));
}

SqlValue TakeValue(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    default:
      break;
  }
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  if (text == nullptr) return {};
  return std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

void GiveResult(sqlite3_context* context, const SqlValue& value, Lifetime lifetime) {
  if (const auto* text = std::get_if<std::string_view>(&value)) {
    sqlite3_result_text64(context, text->data(), text->size(),
                          lifetime == Lifetime::kWhileQueryRuns ? SQLITE_STATIC : SQLITE_TRANSIENT,
                          SQLITE_UTF8);
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    sqlite3_result_int64(context, *integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    sqlite3_result_double(context, *real);
  } else {
    sqlite3_result_null(context);
  }
}

}  // namespace host
