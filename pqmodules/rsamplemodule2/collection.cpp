#include "pqmodules/rsamplemodule2/collection.h"

#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {

std::unique_ptr<TextFile> RunStorcli(CallerLog log, const std::string& hostFolder,
                                     const StorcliReport& report) {
  const std::string path = GetLogFolder() + report.fileName;
  const std::string command = BuildReportCommand(hostFolder + kStorcli, report.arguments, path);
  if (report.commandMessage != nullptr) log(kProgress, report.commandMessage, command);
  if (!RunLogged(log, command)) return nullptr;
  return OpenReport(log, path, kNoReport);
}

ToolCommand DescribeReport(const StorcliReport& report) {
  return {kStorcli, report.arguments, report.fileName};
}

}  // namespace pq
