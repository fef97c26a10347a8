// FRU inventory and system event log: the utility's output goes into a file of the log folder,
// stays there as a raw log and is read back line by line.
//   0002 03/02/26 07:12:31 INF BMC  Power Unit #50  Power Off     6f [00 ff ff]
#include <memory>

#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/rbmcinfo.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

struct FileQuery {
  const char* command;  ///< behind the host's folder, up to the log folder
  const char* fileName;
  const char* commandLabel;
  bool logsCommandTwice;
  const char* openFailure;
  const char* className;
  const char* title;
  Column column;
  // Progress lines.
  const char* begun;
  const char* started;
  const char* ended;
  const char* opened;
  const char* done;
};

const FileQuery kFruQuery{
    .command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem fru>\"",
    .fileName = "fruinfo.txt",
    .commandLabel = "fruinfo raw path:",
    .logsCommandTwice = false,
    .openFailure = "Failed to open fru info file",
    .className = kFruInfo,
    .title = "FRU Information",
    .column = {"FRUINFO", "FRU Detailed Info"},
    .begun = "Oru Debug  fru info 1",
    .started = "Oru Debug  fru info 2",
    .ended = "Oru Debug  fru info 3",
    .opened = "Oru Debug  fru info 4",
    .done = "Oru Debug fru info 5",  // One blank: whoever filters the log knows it so.
};

const FileQuery kSelQuery{
    .command = "\\pq_tools\\ipmiutilnh.exe\" sel>\"",
    .fileName = "selinfo.txt",
    .commandLabel = "selinfo raw path:",
    .logsCommandTwice = true,  // As detail, and again where progress is read.
    .openFailure = "Failed to open SEL log file",
    .className = kSelInfo,
    .title = "SEL Information",
    .column = {"SELINFO", "SEL Info"},
    .begun = "Oru Debug  sel info 1",
    .started = "Oru Debug  sel info 2",
    .ended = "Oru Debug  sel info 3",
    .opened = "Oru Debug  sel info 4",
    .done = "Oru Debug  sel info 5",
};

int CollectFile(RRepository& repo, const std::string& exePath, const FileQuery& query) {
  const std::string path = GetLogFolder() + query.fileName;
  kBmcLog(kProgress, query.begun);
  const std::string commandLine = "/c \"\"" + exePath + query.command + path + "\"\"";
  kBmcLog(kDetail, query.commandLabel, commandLine);
  if (query.logsCommandTwice) kBmcLog(kProgress, query.commandLabel, commandLine);

  Acquired<Process> tool = StartTool(commandLine, /*inheritHandles=*/false);
  if (!tool) {
    kBmcLog(kDetail, kStartFailure, tool.error, ")");
    return 1;
  }
  kBmcLog(kProgress, query.started);
  tool.object->Wait();
  tool.object.reset();
  kBmcLog(kProgress, query.ended);

  std::unique_ptr<TextFile> file = OpenReport(kBmcLog, path, query.openFailure);
  if (!file) return 1;
  RowBuffer row(repo, query.className, query.title);
  kBmcLog(kProgress, query.opened);
  LineReader lines(file.get());
  while (const char* line = lines.Next()) {
    row.Set(query.column, line);
    row.Commit();
  }
  file.reset();
  kBmcLog(kProgress, query.done);
  return 0;
}

}  // namespace

int RBMCInfo::CollectFru(RRepository& repo) { return CollectFile(repo, exePath, kFruQuery); }
int RBMCInfo::CollectSel(RRepository& repo) { return CollectFile(repo, exePath, kSelQuery); }

TableSources RBMCInfo::DescribeFiles() {
  TableSources sources;
  for (const FileQuery* query : {&kFruQuery, &kSelQuery}) {
    sources.push_back(
        {query->className, {ToolCommandOf(query->command, query->fileName)}, {query->column}});
  }
  return sources;
}

}  // namespace pq
