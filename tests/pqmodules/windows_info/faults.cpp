// The Windows module: on a US English machine two tables are read through pipes, on any other all
// output goes into files. A step depends on no other.

#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/fault_table.h"

namespace {

using test::Fault;
using test::FaultRow;
using test::StepKind;

FaultRow Report(const std::string& commandLine, const std::string& startFailure) {
  return {commandLine, StepKind::kReport, {{Fault::kStartFails, {{startFailure}}}}};
}

FaultRow Piped(const std::string& commandLine, const std::string& startFailure,
               const std::string& pipeFailure) {
  return {commandLine,
          StepKind::kPipe,
          {{Fault::kStartFails, {{startFailure}}}, {Fault::kPipeFails, {{pipeFailure}}}}};
}

FaultRow Copy(const std::string& from, const std::string& file, const std::string& startFailure) {
  return {"/c copy " + from + " \"C:\\Halyard\\logs\\" + file + "\" > nul \"",
          StepKind::kCopy,
          {{Fault::kStartFails, {{startFailure}}}}};
}

const FaultRow kRoute = Report("/c route print >\"C:\\Halyard\\logs\\route.txt\"",
                               "3 CreateProcess failed in getting route(5)");
const FaultRow kShares = Report("/c net share >\"C:\\Halyard\\logs\\netshare.txt\"",
                                "3 CreateProcess failed in getting netshare(5)");
const FaultRow kHostsIcs = Copy("C:\\Windows\\System32\\drivers\\etc\\hosts.ics", "hosts.ics.txt",
                                "3 CreateProcess failed in copying hosts.ics(5)");
const FaultRow kSmbios = Report(
    "/c \"\"C:\\Halyard\\pq_tools\\getsmbios.exe\" >\"C:\\Halyard\\logs\\smbios_info.txt\"\"",
    "3 CreateProcess failed(5)");
const FaultRow kHosts = Copy("C:\\WINDOWS\\system32\\drivers\\etc\\hosts", "hosts.txt",
                             "3 CreateProcess failed in copying hosts(5)");
const FaultRow kProtocol = Copy("C:\\WINDOWS\\system32\\drivers\\etc\\protocol", "protocol.txt",
                                "3 CreateProcess failed in copying protocol(5)");
const FaultRow kLmhosts =
    Copy("C:\\WINDOWS\\system32\\drivers\\etc\\lmhosts.sam", "lmhosts.sam.txt",
         "3 CreateProcess failed in copying lmhosts.sam(5)");

const test::FaultScenarioEntry kEnglish({
    .name = "WindowsUsEnglish",
    .module = "Windows_Related_Info",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/two-socket-server"); },
    .rows = {kRoute,
             Piped("/c arp.exe -a", "3 CreateProcess failed in getting arp info(5)",
                   "3 Failed to create pipe for arp info"),
             Piped("/c netstat.exe", "3 CreateProcess failed in getting netstat info(5)",
                   "3 Failed to create pipe for netstat info"),
             kShares, kSmbios, kHosts, kProtocol, kLmhosts},
});

const test::FaultScenarioEntry kGerman({
    .name = "WindowsGerman",
    .module = "Windows_Related_Info",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/bare-machine"); },
    .rows = {kRoute,
             Report("/c arp.exe -a >\"C:\\Halyard\\logs\\arp.txt\"",
                    "3 CreateProcess failed in getting arp data(5)"),
             Report("/c netstat.exe >\"C:\\Halyard\\logs\\netstat.txt\"",
                    "3 CreateProcess failed in getting netstat data(5)"),
             kShares, kHostsIcs, kSmbios, kHosts, kProtocol},
});

}  // namespace
