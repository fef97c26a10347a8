// One run of the RAID logs, and running storcli on the first controller.
#pragma once

#include <memory>
#include <string>

#include "frame/description.h"
#include "frame/module.h"
#include "frame/platform.h"
#include "pqmodules/rsamplemodule2/event_data.h"

namespace pq {

/// One run of the module.
struct RaidLogsCollection {
  RRepository& repo;
  const ModuleLog& log;
  std::string hostFolder;    ///< the tools are in folders below
  EventData eventData = {};  ///< of the event that is being read
};

/// A storcli report that is kept in a file of the log folder.
struct StorcliReport {
  const char* arguments;    ///< such as "/c0 show"
  const char* fileName;     ///< such as "c0_showall.txt"
  Sentence commandMessage;  ///< before the command line in the log; null: it is not logged
};

/// The report's command, for the description of tables.
ToolCommand DescribeReport(const StorcliReport& report);

/// Has storcli write the report and opens it. Null after a failure, which is logged.
std::unique_ptr<TextFile> RunStorcli(CallerLog log, const std::string& hostFolder,
                                     const StorcliReport& report);

}  // namespace pq
