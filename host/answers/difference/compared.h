// What is compared, by which keys, and what is left out: data.
#pragma once

#include <span>
#include <string_view>

namespace host {

// --- parts ---

enum class ColumnUse {
  kValue,    ///< compared where both sides tell it
  kSign,     ///< that nothing is told is a value as well
  kCounter,  ///< as kValue, but tells nothing of a thing that took another's place
  kPlace,    ///< as kValue; another value is a move
  kLeftOut,
};

struct ComparedColumn {
  std::string_view name;
  ColumnUse use;
  std::string_view why = {};  ///< it is left out
  /// A number that says the same: where both sides tell it, this column alone is no difference.
  std::string_view unlike = {};
};

/// A table of parts, with all of its columns but for id and place. Its parts are matched by their
/// ids, those with serial numbers by these before.
struct ComparedPart {
  std::string_view table;
  bool hasSerials;
  std::string_view key;  ///< for people
  std::span<const ComparedColumn> columns;
};
std::span<const ComparedPart> ListComparedParts();
/// Null when the parts of `table` are not compared.
const ComparedPart* FindComparedPart(std::string_view table);

/// Serial numbers that tools mask, or invent, are of many things.
bool IsUsableSerial(std::string_view serial);

// --- tables ---

enum class TableForm {
  kRows,    ///< by the columns that are its key
  kLabels,  ///< a cell each, by its label
  kLines,   ///< "[device] field : value"
  kNone,
};

enum class TableTurn {
  kAlways,
  kOnRequest,  ///< parts cover it
  kAsLog,
  kAsReports,
  kNever,
};

struct ComparedTable {
  std::string_view className;
  TableTurn turn;
  TableForm form = TableForm::kNone;
  std::span<const std::string_view> keys = {};     ///< columns that name a row
  std::span<const std::string_view> leftOut = {};  ///< columns
  std::string_view why = {};                       ///< it is not compared by its cells
  bool comesAndGoes = false;                       ///< a row on one side alone is no difference
  std::string_view controller = {};                ///< that it is of; empty: of all, or of none
};
std::span<const ComparedTable> ListComparedTables();
/// Null for a class that is not known.
const ComparedTable* FindComparedTable(std::string_view className);

}  // namespace host
