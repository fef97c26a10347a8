// The view of a class's table: columns are called by their labels, and numbers are numbers.
#pragma once

#include <string>
#include <string_view>

#include "host/database/sql_tables.h"

namespace host {

/// The statement that makes it as `view`.
std::string MakeClassView(const SqlTable& table, std::string_view view);

}  // namespace host
