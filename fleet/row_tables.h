// The tables of rows that the database has of each server's newest recording: one per class that
// modules describe, one per kind of part, and the findings. Made from what these describe, so that
// a new column needs no other place.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

struct RowColumn {
  std::string name;
  std::string type;  ///< PostgreSQL's
  std::string description;
};

struct RowTable {
  std::string name;  ///< in the schema: "class_pdlist", "part_drives"
  std::string
      stored;        ///< what has the rows: `name`, or a table of packs, of which `name` is a view
  std::string view;  ///< that shows it with its servers; none for classes: a view is never of these
  std::string description;
  bool isLog = false;              ///< its rows are a log, the newest last
  bool changesNightly = false;     ///< most of its rows are others each night
  std::vector<RowColumn> columns;  ///< without the server and the row's number

  /// Rows that nobody asks many servers for are kept as one text, which PostgreSQL compresses:
  /// singly, each would take as much for being a row as for its cells.
  bool IsPacked() const { return stored != name; }
};

/// For classes: what a row has beyond the described columns, and integers, as a JSON object.
inline constexpr char kMoreColumn[] = "_more";

class RowTables {
 public:
  /// Classes, then parts, then findings.
  RowTables();

  const std::vector<RowTable>& All() const { return tables; }
  const RowTable& At(std::size_t table) const { return tables[table]; }
  /// Its place in All().
  std::optional<std::size_t> Find(std::string_view name) const;

 private:
  std::vector<RowTable> tables;
};

/// The table of a class, and of a kind of part or finding.
std::string NameClassTable(std::string_view className);
std::string NamePartTable(std::string_view part);

}  // namespace fleet
