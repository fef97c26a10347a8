// What is told of a table: how many rows it has, or why it has none, worked out from what was seen
// of the tools.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "frame/description.h"
#include "host/collect/table_status.h"
#include "host/collect/tool_history.h"

namespace host {

class StatusExplainer {
 public:
  /// `history` outlives this.
  explicit StatusExplainer(const ToolHistory& history) : history(history) {}

  /// The status of `className`, a table of `module` with `rowCount` rows.
  TableStatus FindStatus(const std::string& module, const std::string& className,
                         std::size_t rowCount) const;

  /// What is to be said of the table beside its rows.
  std::vector<std::string> FindNotes(const std::string& module, const std::string& className) const;

  /// Why `fileNames`, reports in the log folder that are attached to rows of `module`, are empty: a
  /// sentence for each reason. Names are without the extension.
  std::vector<std::string> DescribeEmptyFiles(const std::string& module,
                                              const std::vector<std::string>& fileNames) const;

 private:
  /// `table`: null of one that nobody described.
  TableStatus DescribeRows(const std::string& module, const pq::TableDescription* table,
                           std::size_t rowCount) const;

  const ToolHistory& history;
};

}  // namespace host
