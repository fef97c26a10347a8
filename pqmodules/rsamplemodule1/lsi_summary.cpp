// storcli /c0 show: one "label = value" line per fact, then tables of drives that stay unread here.
//
//   Product Name = ACME 9460
//   Serial Number = SK7
//   ...
//   Function Number = 0

#include "pqmodules/rsamplemodule1/lsi_summary.h"

#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

constexpr char kSummaryArguments[] = "/c0 show";
constexpr char kReportName[] = "c0_showall.txt";

constexpr LabelledColumn kSummaryFacts[] = {
    MakeLabelledColumn("Product Name =",
                       {"ProductName", "Product Name", "model of the controller"}),
    MakeLabelledColumn("Serial Number =",
                       {"SerialNumber", "Serial Number", "serial number of the controller"}),
    MakeLabelledColumn("SAS Address =",
                       {"SASAddress", "SAS Address", "world-wide address of the controller"}),
    MakeLabelledColumn("Mfg. Date =", {"MfgDate", "Mfg. Date", "day of manufacture"}),
    MakeLabelledColumn("System Time =",
                       {"SystemTime", "System Time", "the machine's clock when the tool ran"}),
    MakeLabelledColumn("Controller Time =", {"ControllerTime", "Controller Time",
                                             "the controller's own clock at that time"}),
    MakeLabelledColumn("FW Package Build =", {"FWPackageBuild", "FW Package Build",
                                              "version of the whole firmware package"}),
    MakeLabelledColumn("BIOS Version =",
                       {"BIOSVersion", "BIOS Version", "version of the controller's BIOS"}),
    MakeLabelledColumn("FW Version =",
                       {"FWVersion", "FW Version", "version of the firmware that runs"}),
    MakeLabelledColumn("Driver Name =",
                       {"DriverName", "Driver Name", "name of the Windows driver"}),
    MakeLabelledColumn("Driver Version =",
                       {"DriverVersion", "Driver Version", "version of the Windows driver"}),
    MakeLabelledColumn("Bus Number =", {"BusNumber", "Bus Number", "PCI bus of the controller",
                                        ValueKind::kNumber}),
    MakeLabelledColumn("Device Number =", {"DeviceNumber", "Device Number",
                                           "PCI device number on that bus", ValueKind::kNumber}),
    MakeLabelledColumn(
        "Function Number =",
        {"FunctionNumber", "Function Number", "PCI function of the device", ValueKind::kNumber},
        true),
};

}  // namespace

const LabelledColumns& GetLsiSummaryFacts() {
  static const LabelledColumns kLabelled(kSummaryFacts);
  return kLabelled;
}

void CollectLsiSummary(const RaidInventoryCollection& collection) {
  const std::string path = GetLogFolder() + kReportName;
  CheckFolderFits(collection.hostFolder, 5);
  const std::string command =
      BuildReportCommand(collection.hostFolder + kStorcli, kSummaryArguments, path);
  if (!RunLogged(collection.log, command)) return;
  auto file = OpenReport(collection.log, path, kNoReport);
  if (!file) return;
  RowBuffer row(collection.repo, kRaidInfo, "LSI Controller 0 Info");
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) {
    Fill(row, GetLsiSummaryFacts().FindIn(line));
  }
  file.reset();
}

void DescribeLsiSummary(ModuleDescription& module) {
  TableDescription table{.className = kRaidInfo,
                         .title = "LSI controller summary",
                         .commands = {{kStorcli, kSummaryArguments, kReportName}}};
  for (const LabelledColumn& fact : kSummaryFacts) table.AddColumn(fact.column);
  table.EndRowsAt(std::rbegin(kSummaryFacts)->label);
  table.leavesOut = {LeaveOutOtherLsiControllers()};
  module.tables.push_back(table);
  module.tools.push_back(DescribeStorcli());
  module.answers.push_back(ExplainNoLsiController({kRaidInfo}));
  module.reasonLines.push_back(DescribeStorcliReason());
}

}  // namespace pq
