// FRU inventory and system event log: the utility's output goes into a file of the log folder,
// stays there as a raw log and is read back line by line.
//   0002 03/02/26 07:12:31 INF BMC  Power Unit #50  Power Off     6f [00 ff ff]
#include "pqmodules/rbmcinfo/fru_sel.h"

#include <memory>

#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

struct FileQuery {
  const char* command;  ///< after the host's folder, up to the log folder
  const char* fileName;
  Sentence commandLabel;
  bool logsCommandTwice;
  Sentence openFailure;
  const char* className;
  const char* instanceTitle;
  const char* title;
  Column column;
  const char* versionLabel;  ///< the utility's, before its own version
  // Progress lines.
  Sentence begun;
  Sentence started;
  Sentence ended;
  Sentence opened;
  Sentence done;
};

constexpr FileQuery kFruQuery{
    .command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem fru>\"",
    .fileName = "fruinfo.txt",
    .commandLabel = "fruinfo raw path:",
    .logsCommandTwice = false,
    .openFailure = "Failed to open fru info file",
    .className = kFruInfo,
    .instanceTitle = "FRU Information",
    .title = "Field-replaceable units (FRU)",
    .column = {"FRUINFO", "FRU Detailed Info",
               "one line of the inventory of the machine's parts: maker, model, serial number"},
    .versionLabel = "ipmiutil fru version",
    .begun = "Oru Debug  fru info 1",
    .started = "Oru Debug  fru info 2",
    .ended = "Oru Debug  fru info 3",
    .opened = "Oru Debug  fru info 4",
    .done = "Oru Debug fru info 5",  // One blank: whoever filters the log knows it so.
};

constexpr FileQuery kSelQuery{
    .command = "\\pq_tools\\ipmiutilnh.exe\" sel>\"",
    .fileName = "selinfo.txt",
    .commandLabel = "selinfo raw path:",
    .logsCommandTwice = true,  // As detail, and again where progress is read.
    .openFailure = "Failed to open SEL log file",
    .className = kSelInfo,
    .instanceTitle = "SEL Information",
    .title = "System event log (SEL)",
    .column = {"SELINFO", "SEL Info",
               "one line of the log: number, time, severity, source and what happened"},
    .versionLabel = "ipmiutil sel version",
    .begun = "Oru Debug  sel info 1",
    .started = "Oru Debug  sel info 2",
    .ended = "Oru Debug  sel info 3",
    .opened = "Oru Debug  sel info 4",
    .done = "Oru Debug  sel info 5",
};

int CollectFile(const BmcCollection& collection, const FileQuery& query) {
  const std::string path = GetLogFolder() + query.fileName;
  const ModuleLog& log = collection.log;
  log(kProgress, query.begun);
  const std::string commandLine = "/c \"\"" + collection.hostFolder + query.command + path + "\"\"";
  log(kDetail, query.commandLabel, commandLine);
  if (query.logsCommandTwice) log(kProgress, query.commandLabel, commandLine);

  Acquired<Process> tool = StartTool(commandLine, /*inheritHandles=*/false);
  if (!tool) {
    log(kDetail, kStartFailure, tool.error, ")");
    return 1;
  }
  log(kProgress, query.started);
  tool.object->Wait();
  tool.object.reset();
  log(kProgress, query.ended);

  std::unique_ptr<TextFile> file = OpenReport(log, path, query.openFailure);
  if (!file) return 1;
  RowBuffer row(collection.repo, query.className, query.instanceTitle);
  log(kProgress, query.opened);
  LineReader lines(file.get());
  while (const char* line = lines.Next()) {
    row.Set(query.column, line);
    row.Commit();
  }
  file.reset();
  log(kProgress, query.done);
  return 0;
}

}  // namespace

int CollectFru(const BmcCollection& collection) { return CollectFile(collection, kFruQuery); }
int CollectSel(const BmcCollection& collection) { return CollectFile(collection, kSelQuery); }

void DescribeFruAndSel(ModuleDescription& module) {
  for (const FileQuery* query : {&kFruQuery, &kSelQuery}) {
    TableDescription table{.className = query->className,
                           .title = query->title,
                           .commands = {ParseToolCommand(query->command, query->fileName)}};
    table.isLog = query == &kSelQuery;
    table.AddColumn(query->column);
    module.tables.push_back(table);
    module.AddFailures(StepFailure::kOutputNotOpened, {query->openFailure});
    module.versionLines.push_back({"ipmiutil", query->className, query->versionLabel});
  }
}

}  // namespace pq
