// The tables of parts and their columns as data: all that a writer, the documentation or a
// comparison needs to know of them.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/parts.h"

namespace host {

enum class PartType { kText, kInteger, kReal };
/// "TEXT", "INTEGER", "REAL".
const char* NameSqlType(PartType type);

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
  /// Parts that were left out since they were too many.
  std::size_t (*countLeft)(const Parts& parts);
  /// Rows count from 0. The table's own part, or one that was unpacked for the caller.
  std::shared_ptr<const Part> (*at)(const Parts& parts, std::size_t row);
  /// A value of a table that is packed; null otherwise: see Get().
  PartValue (*get)(const Parts& parts, std::size_t row, std::size_t column);
  /// Null of a table whose parts have no places of single columns.
  Part* (*change)(Parts& parts, std::size_t row);
  /// Adds a part at the end, which `fill` fills.
  void (*add)(Parts& parts, const std::function<void(Part& part)>& fill);

  /// A value of a part, which need not be unpacked for it. A text stays while the parts do not
  /// change.
  PartValue Get(const Parts& parts, std::size_t row, std::size_t column) const;
};

/// All tables, in the order in which they are shown.
std::span<const PartTable> GetPartTables();

}  // namespace host
