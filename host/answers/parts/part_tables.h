// The tables of parts and their columns as data: all that a writer, the documentation or a
// comparison needs to know of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/answers/parts/parts.h"

namespace host {

enum class PartType { kText, kInteger, kReal };
/// "TEXT", "INTEGER", "REAL".
const char* NameSqlType(PartType type);

/// Nothing, or a value of the column's type. A text is a view of the part's own.
using PartValue = std::variant<std::monostate, std::int64_t, double, std::string_view>;

/// A number as JSON and CSV have it, a text as it is, nothing as `none`.
std::string FormatPartValue(const PartValue& value, std::string_view none);

struct PartColumn {
  std::string_view name;  ///< in snake case
  PartType type;
  std::string_view description;  ///< for people, with the unit
  PartValue (*get)(const Part& part);
  /// A value of another type leaves the part as it is.
  void (*set)(Part& part, const PartValue& value);
};

struct PartTable {
  std::string_view name;  ///< in snake case, plural
  std::string_view description;
  std::vector<PartColumn> columns;  ///< "id" first, the place last
  std::size_t (*count)(const Parts& parts);
  const Part& (*at)(const Parts& parts, std::size_t row);  ///< rows count from 0
  Part& (*change)(Parts& parts, std::size_t row);
  Part& (*add)(Parts& parts);  ///< an empty one at the end
};

/// All tables, in the order in which they are shown.
std::span<const PartTable> GetPartTables();

}  // namespace host
