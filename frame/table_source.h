// Where the rows of a table come from, told by the data that the collectors work with: for the
// documentation of the tables, and for a host that explains why a table is empty.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/row_buffer.h"

namespace pq {

/// A tool that a collector runs for a table.
struct ToolCommand {
  /// Behind the host's folder, such as "\pq_tools\ipmiutilnh.exe", or a command of Windows.
  std::string program;
  std::string arguments;
  std::string file;  ///< that it leaves in the log folder; empty when it is read through a pipe
  /// The operator gives the arguments; `arguments` only names them.
  bool argumentsFromOperator = false;
};

struct TableSource {
  std::string className;
  /// In the order in which they run; none for fixed rows.
  std::vector<ToolCommand> commands;
  /// Properties of a row in their order. A label is empty where the tool itself gives it.
  std::vector<Column> columns;
};

using TableSources = std::vector<TableSource>;

/// The command that a collector's text behind the host's folder stands for: the program up to its
/// closing quote, then the arguments up to a pipe or a redirection.
ToolCommand ToolCommandOf(std::string_view behindFolder, std::string file = {});

}  // namespace pq
