// The report on Intel's software RAID that both RAID modules read: Intel RST's tool writes it or,
// where that one fails, Intel VROC's.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "frame/description.h"
#include "frame/module.h"
#include "frame/platform.h"

namespace pq {

/// How a module's log tells about the report.
struct IntelReportLog {
  unsigned commandLevel = kProgress;  ///< of the line with the command
  bool exitCodeErrorNumber = true;    ///< whether an exit code that cannot be read says why
  bool reportPath = false;            ///< whether there is a line with the report's path
};

/// Has one of the tools below `hostFolder` write rstcli64.txt into the log folder and opens it.
/// Null after a failure of both, which is logged.
std::unique_ptr<TextFile> RunIntelReport(CallerLog log, const std::string& hostFolder,
                                         const IntelReportLog& style);

/// The report is about RAID that Intel's chipset and processors make.
inline constexpr Area kIntelArea{"Intel RAID", "an Intel RST or VROC controller"};

/// Where the two tools come from.
std::vector<ToolDescription> DescribeIntelTools();

/// The commands that write the report, for the description of tables.
std::vector<ToolCommand> ListIntelCommands();

/// Adds to `module` how the tools say that they find no controller, which leaves `tables` empty.
void ExplainNoIntelController(ModuleDescription& module, const std::vector<std::string>& tables);

}  // namespace pq
