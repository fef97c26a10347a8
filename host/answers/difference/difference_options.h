// What of two collections is compared.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

struct IgnoredColumn {
  std::string table;   ///< of parts, or a class
  std::string column;  ///< by name, or label; of tables with one row their cells; * is any text
};

struct DifferenceOptions {
  std::vector<IgnoredColumn> ignored = {};
  std::vector<std::string> tables = {};  ///< classes to be compared by their cells, too
  std::vector<std::string> parts = {};   ///< tables of parts, and nothing else; none: everything
  bool comparesReports = false;          ///< the tools' reports, line by line
};

// What a user names, added to `options`. These throw UsageError for what is not compared so; tables
// may be named in any case.
/// "drives.media_errors"
void TakeIgnored(std::string_view text, DifferenceOptions& options);
/// "PINFO"
void TakeTable(std::string_view name, DifferenceOptions& options);
/// "drives", or "events" for the logs
void TakePart(std::string_view name, DifferenceOptions& options);

bool IsIgnored(const DifferenceOptions& options, std::string_view table, std::string_view column);

}  // namespace host
