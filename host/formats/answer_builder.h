// The answer to a query as a collection of one table, which every format can show.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/collect/collection.h"
#include "host/database/database.h"

namespace host {

class AnswerBuilder {
 public:
  /// `question` is told as what was asked.
  explicit AnswerBuilder(const std::string& question);

  /// Names may repeat. To be called once, before the rows.
  void NameColumns(const Database::Names& names);
  /// One value for each column; each is kept as what it is.
  void AddRow(const Database::Values& values);

  /// The collection, once.
  Collection Take();

 private:
  Collection answer;
  CollectedTable table;
  std::vector<Column> columns;
};

}  // namespace host
