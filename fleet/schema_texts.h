// schema.sql, its steps and views.sql as texts of the program.
#pragma once

#include <string_view>

namespace host {

extern const std::string_view kSchemaSql;
extern const std::string_view kSchema2Sql;
extern const std::string_view kSchema3Sql;
extern const std::string_view kViewsSql;

}  // namespace host
