// What the collectors of the RAID logs module share: the names of the tables, where the tools are,
// and running storcli on the first controller.
#pragma once

#include <memory>
#include <string>

#include "frame/module.h"
#include "frame/platform.h"
#include "frame/table_source.h"

namespace pq {

inline const std::string kSample2Table1 = "S2TABLE1";
inline const std::string kSample2Table2 = "S2TABLE2";
inline const std::string kEventLog1 = "EVENTLOG1";
inline const std::string kEventLog2 = "EVENTLOG2";
inline const std::string kEventLog3 = "EVENTLOG3";
inline const std::string kEventLog4 = "EVENTLOG4";
inline const std::string kEventLog5 = "EVENTLOG5";
inline const std::string kFwTermLog = "FWTERMLOG";
inline const std::string kPdList = "PDLIST";
inline const std::string kTInfo = "TINFO";
inline const std::string kVInfo = "VINFO";
inline const std::string kPInfo = "PINFO";
inline const std::string kSas2IrLog = "SAS2IRLOG";
inline const std::string kEndDeviceInfo = "ENDDEVICEINFO";
inline const std::string kArray = "ARRAY";
inline const std::string kVolume = "VOLUME";
inline const std::string kLsiLink = "LSILINK";

/// One run of the module.
struct RaidLogsCollection {
  RRepository& repo;
  const ModuleLog& log;
  std::string hostFolder;  ///< the tools are in folders below
};

/// A storcli report that is kept in a file of the log folder.
struct StorcliReport {
  const char* arguments;       ///< such as "/c0 show"
  const char* fileName;        ///< such as "c0_showall.txt"
  const char* commandMessage;  ///< before the command line in the log; null: it is not logged
};

/// The report's command, for the description of tables.
ToolCommand CommandOf(const StorcliReport& report);

/// Has storcli write the report and opens it. Null after a failure, which is logged.
std::unique_ptr<TextFile> RunStorcli(const RaidLogsCollection& collection,
                                     const StorcliReport& report);

}  // namespace pq
