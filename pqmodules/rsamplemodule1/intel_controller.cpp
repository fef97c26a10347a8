// rstcli64_5 -I or IntelVROCCli -I: the controller comes first. Newer tools print an ID before the
// name.
//
//   --CONTROLLER INFORMATION--
//
//   ID:                     0
//   Name:                   Intel(R) SATA RAID Controller
//   Type:                   SATA
//   ...
//   HW Revision:            11

#include "pqmodules/rsamplemodule1/intel_controller.h"

#include <iterator>

#include "frame/label_table.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/intel_report.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

struct ControllerLine {
  std::size_t valueAt;  ///< right behind the label that the tool prints in this place
  Column column;
};

const Column kName{"Name", "Name"};
constexpr std::string_view kNameLabel = "Name";

const ControllerLine kLines[] = {
    {5, kName},  // The first three places are above the name or, without an ID, the name itself.
    {5, kName},
    {5, kName},
    {5, kName},
    {5, {"Type", "Type"}},
    {15, {"SupportedRAID", "Supported RAID"}},
    {16, {"Max", "Max Disks/Array"}},  // Hosts know this column by its short key.
    {15, {"HWInformation", "HW Information"}},
    {10, {"VendorID", "Vendor ID"}},
    {10, {"DeviceID", "Device ID"}},
    {12, {"HWRevision", "HW Revision"}},
};
constexpr int kLastPlace = static_cast<int>(std::size(kLines)) - 1;
constexpr int kFirstSurePlace = 3;

}  // namespace

std::optional<IntelControllerFact> IntelControllerScan::Take(std::string_view line) {
  if (nextPlace > kLastPlace) return std::nullopt;
  const int place = nextPlace++;
  const ControllerLine& known = kLines[place];
  // A name this early means that a line is missing above it; all that follows moves up by one.
  if (place < kFirstSurePlace && Holds(line, kNameLabel)) ++nextPlace;
  return IntelControllerFact{&known.column, TextFrom(line, known.valueAt), place == kLastPlace};
}

void CollectIntelController(RRepository& repo) {
  const std::string folder = GetExeFolder();
  CheckFolderFits(folder, 5);
  const auto file = RunIntelReport(kInventoryLog, folder, {});
  if (!file) return;
  RowBuffer row(repo, kController, "Controller Info");
  IntelControllerScan scan;
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) {
    const auto fact = scan.Take(line);
    if (!fact) continue;
    row.Set(*fact->column, fact->value);
    if (fact->endsRow) row.Commit();
  }
}

TableSource DescribeIntelController() {
  TableSource source{kController, IntelReportCommands(), {}};
  for (int place = kFirstSurePlace; place <= kLastPlace; ++place) {
    source.columns.push_back(kLines[place].column);
  }
  return source;
}

}  // namespace pq
