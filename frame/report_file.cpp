#include "frame/report_file.h"

#include "frame/tool_runner.h"

namespace pq {

std::string BuildReportCommand(const std::string& program, const std::string& arguments,
                               const std::string& reportPath) {
  return "/c \"\"" + program + "\" " + arguments + " > \"" + reportPath + "\"\"";
}

bool RunLogged(CallerLog log, const std::string& commandLine, const StartRule& rule) {
  const ToolRun run = RunAndWait(commandLine, rule.inheritHandles);
  if (!run.started) log(rule.failureLevel, rule.failure, run.startError, ")");
  return run.started;
}

std::unique_ptr<TextFile> OpenReport(CallerLog log, const std::string& path,
                                     const Sentence& failure) {
  std::unique_ptr<TextFile> file = Machine().OpenText(DoubleBackslashes(path));
  if (!file) log(kDetail, failure);
  return file;
}

}  // namespace pq
