// The contents of a repository: one table per class, one row per AddToRepository. A row costs what
// its own texts cost; all that rows have in common is kept once.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "frame/halyard/repository.h"

namespace host {

/// One column of a row: a property without its value.
struct Column {
  std::string key;
  std::string label;
  bool isInteger = false;
  bool flag = false;
  auto operator<=>(const Column&) const = default;
};

/// An attribute record of a row.
struct Attribute {
  std::string propertyKey;
  std::string name;
  std::string value;
  auto operator<=>(const Attribute&) const = default;
};

/// The part that many rows share.
struct RowShape {
  std::string className;
  std::string instanceKey;
  int number = -1;
  std::vector<Column> columns;  ///< in the order in which the keys were first set
  std::vector<Attribute> attributes;
  auto operator<=>(const RowShape&) const = default;
};

/// One instance as it was when it was added. Texts are bytes in the machine's code page.
struct Row {
  const RowShape* shape = nullptr;
  /// Shared with the instance until that changes again.
  std::shared_ptr<const std::vector<std::string>> values;

  /// One text per column of the shape; integers as decimal numbers.
  const std::vector<std::string>& Values() const { return *values; }
};

struct Table {
  std::vector<Column> columns;  ///< every key of any row, in the order in which they first came
  std::deque<Row> rows;
};

/// The tables by class name; only classes that have rows. Valid as long as the repository lives; an
/// AddToRepository leaves references to tables and rows valid.
REPOSITORY_API const std::map<std::string, Table>& TablesOf(
    const halyard::repository::RRepository& repository);

}  // namespace host
