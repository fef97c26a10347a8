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
  std::size_t valueAt;  ///< right after the label that the tool prints in this place
  Column column;
};

constexpr Column kControllerName{"Name", "Name", "name of the controller"};
constexpr std::string_view kNameLabel = "Name";

constexpr ControllerLine kLines[] = {
    {5, kControllerName},  // The first three places are above it or, without ID, the name itself.
    {5, kControllerName},
    {5, kControllerName},
    {5, kControllerName},
    {5, {"Type", "Type", "kind of drives that it serves, such as SATA"}},
    {15, {"SupportedRAID", "Supported RAID", "RAID levels that it can make"}},
    // Hosts know this column by its short key.
    {16, {"Max", "Max Disks/Array", "how many drives an array can have", ValueKind::kNumber}},
    {15, {"HWInformation", "HW Information", "headline of the three identifiers below it"}},
    {10, {"VendorID", "Vendor ID", "PCI vendor number"}},
    {10, {"DeviceID", "Device ID", "PCI device number"}},
    {12, {"HWRevision", "HW Revision", "revision of the hardware"}},
};
constexpr int kLastPlace = static_cast<int>(std::size(kLines)) - 1;
constexpr int kFirstSurePlace = 3;

}  // namespace

std::optional<IntelControllerFact> IntelControllerScan::Take(std::string_view line) {
  if (nextPlace > kLastPlace) return std::nullopt;
  const int place = nextPlace++;
  const ControllerLine& known = kLines[place];
  // A name this early means that a line is missing above it; all that follows moves up by one.
  if (place < kFirstSurePlace && Contains(line, kNameLabel)) ++nextPlace;
  return IntelControllerFact{&known.column, GetTextFrom(line, known.valueAt), place == kLastPlace};
}

void CollectIntelController(const RaidInventoryCollection& collection) {
  CheckFolderFits(collection.hostFolder, 5);
  auto file = RunIntelReport(collection.log, collection.hostFolder, {});
  if (!file) return;
  RowBuffer row(collection.repo, kController, "Controller Info");
  IntelControllerScan scan;
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) {
    const auto fact = scan.Take(line);
    if (!fact) continue;
    row.Set(*fact->column, fact->value);
    if (fact->endsRow) row.Commit();
  }
  file.reset();
}

void DescribeIntelController(ModuleDescription& module) {
  TableDescription table{.className = kController,
                         .title = "Intel RST or VROC controller",
                         .commands = ListIntelCommands(),
                         .commandsAreAlternatives = true};
  for (int place = kFirstSurePlace; place <= kLastPlace; ++place) {
    table.AddColumn(kLines[place].column);
  }
  module.tables.push_back(table);
  for (const ToolDescription& tool : DescribeIntelTools()) module.tools.push_back(tool);
  ExplainNoIntelController(module, {kController});
}

}  // namespace pq
