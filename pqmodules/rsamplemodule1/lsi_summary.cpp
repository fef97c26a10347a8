// storcli /c0 show: one "label = value" line per fact, then tables of drives that stay unread here.
//
//   Product Name = ACME 9460
//   Serial Number = SK7
//   ...
//   Function Number = 0

#include "pqmodules/rsamplemodule1/lsi_summary.h"

#include <utility>

#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

constexpr char kArguments[] = "/c0 show";
constexpr char kReportName[] = "c0_showall.txt";

}  // namespace

const LabelledColumns& LsiSummaryFacts() {
  static const LabelledColumns facts{
      BehindLabel("Product Name =", {"ProductName", "Product Name"}),
      BehindLabel("Serial Number =", {"SerialNumber", "Serial Number"}),
      BehindLabel("SAS Address =", {"SASAddress", "SAS Address"}),
      BehindLabel("Mfg. Date =", {"MfgDate", "Mfg. Date"}),
      BehindLabel("System Time =", {"SystemTime", "System Time"}),
      BehindLabel("Controller Time =", {"ControllerTime", "Controller Time"}),
      BehindLabel("FW Package Build =", {"FWPackageBuild", "FW Package Build"}),
      BehindLabel("BIOS Version =", {"BIOSVersion", "BIOS Version"}),
      BehindLabel("FW Version =", {"FWVersion", "FW Version"}),
      BehindLabel("Driver Name =", {"DriverName", "Driver Name"}),
      BehindLabel("Driver Version =", {"DriverVersion", "Driver Version"}),
      BehindLabel("Bus Number =", {"BusNumber", "Bus Number"}),
      BehindLabel("Device Number =", {"DeviceNumber", "Device Number"}),
      BehindLabel("Function Number =", {"FunctionNumber", "Function Number"}, true),
  };
  return facts;
}

void CollectLsiSummary(RRepository& repo) {
  const std::string folder = GetExeFolder();
  const std::string path = GetLogFolder() + kReportName;
  CheckFolderFits(folder, 5);
  if (!RunLogged(kInventoryLog, ReportCommand(folder + kStorcli, kArguments, path))) {
    return;
  }
  const auto file = OpenReport(kInventoryLog, path, kNoReport);
  if (!file) return;
  RowBuffer row(repo, kRaidInfo, "LSI Controller 0 Info");
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) Fill(row, LsiSummaryFacts().FindIn(line));
}

TableSource DescribeLsiSummary() {
  return {kRaidInfo, {{kStorcli, kArguments, kReportName}}, ColumnsOf(LsiSummaryFacts())};
}

}  // namespace pq
