// Two raw files for later analysis: the event log in hexadecimal, and the sensor listing with its
// identifier strings. Nobody here reads them back.
#include "pqmodules/rbmcinfo/raw_dumps.h"

#include "frame/report_file.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

struct RawDump {
  const char* command;  ///< after the host's folder, up to the log folder
  const char* fileName;
  // Progress lines.
  Sentence begun;
  Sentence prepared;
  Sentence done;
};

constexpr RawDump kSelHexDump{
    .command = "\\pq_tools\\ipmiutilnh.exe\" sel -r >\"",
    .fileName = "SEL_Hex.txt",
    .begun = "Oru Debug  selhex 1",
    .prepared = "Oru Debug  selhex 2",
    .done = "Oru Debug  selhex 3",
};

constexpr RawDump kSensorIdDump{
    .command = "\\pq_tools\\ipmiutilnh.exe\" sensor >\"",
    .fileName = "sensor_with_id_string.txt",
    .begun = "Oru Debug  sen_id 1",
    .prepared = "Oru Debug  sen_id 2",
    .done = "Oru Debug  sen_id 3",
};

// The dumps' own text has no blank before the parenthesis.
constexpr Sentence kDumpFailure = "CreateProcess failed(";
constexpr StartRule kDumpStart{
    .inheritHandles = true, .failureLevel = kProgress, .failure = kDumpFailure};

void WriteDump(const ModuleLog& log, const std::string& hostFolder, const RawDump& dump) {
  log(kProgress, dump.begun);
  const std::string commandLine =
      "/c \"\"" + hostFolder + dump.command + GetLogFolder() + dump.fileName + "\"\"";
  log(kProgress, dump.prepared);
  if (RunLogged(log, commandLine, kDumpStart)) log(kProgress, dump.done);
}

}  // namespace

void DumpSelHex(const ModuleLog& log, const std::string& hostFolder) {
  WriteDump(log, hostFolder, kSelHexDump);
}

void DumpSensorIds(const ModuleLog& log, const std::string& hostFolder) {
  WriteDump(log, hostFolder, kSensorIdDump);
}

void DescribeRawDumps(ModuleDescription& module) {
  module.AddFailures(StepFailure::kToolNotRun, {kDumpFailure});
}

}  // namespace pq
