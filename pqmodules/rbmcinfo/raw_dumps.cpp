// Two raw files for later analysis: the event log in hexadecimal, and the sensor listing with its
// identifier strings. Nobody here reads them back.
#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/rbmcinfo.h"

namespace pq {
namespace {

struct RawDump {
  const char* command;  ///< behind the host's folder, up to the log folder
  const char* fileName;
  // Progress lines.
  const char* begun;
  const char* prepared;
  const char* done;
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
constexpr StartRule kDumpStart{
    .inheritHandles = true, .failureLevel = kProgress, .failure = "CreateProcess failed("};

void WriteDump(const std::string& exePath, const RawDump& dump) {
  kBmcLog(kProgress, dump.begun);
  const std::string commandLine =
      "/c \"\"" + exePath + dump.command + GetLogFolder() + dump.fileName + "\"\"";
  kBmcLog(kProgress, dump.prepared);
  if (RunLogged(kBmcLog, commandLine, kDumpStart)) kBmcLog(kProgress, dump.done);
}

}  // namespace

void RBMCInfo::DumpSelHex() { WriteDump(exePath, kSelHexDump); }
void RBMCInfo::DumpSensorIds() { WriteDump(exePath, kSensorIdDump); }

}  // namespace pq
