// storcli /c0/eall/sall show all: one "label = value" line per fact of a drive.
//
//   Shield Counter = 0
//   ...
//   Needs EKM Attention = No

#include "pqmodules/rsamplemodule2/drive_details.h"

#include "frame/labelled_columns.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

// The message names the term log; readers of host logs know this step by it.
constexpr StorcliReport kDetailsReport{"/c0/eall/sall show all", "pdlist.txt", "fwterm raw path:"};

constexpr std::string_view kCoercedSize = "Coerced size =";

constexpr LabelledColumn kDriveFactColumns[] = {
    MakeLabelledColumn("Shield Counter =",
                       {"ShieldCounter", "Shield Counter",
                        "how often the drive was taken out for diagnosis", ValueKind::kNumber}),
    MakeLabelledColumn("Media Error Count =",
                       {"MediaErrorCount", "Media Error Count",
                        "errors when reading or writing the medium", ValueKind::kNumber}),
    MakeLabelledColumn("Other Error Count =",
                       {"OtherErrorCount", "Other Error Count",
                        "errors of other kinds, such as of the link", ValueKind::kNumber}),
    MakeLabelledColumn("Drive Temperature =", {"DriveTemperature", "Drive Temperature",
                                               "in degrees Celsius and Fahrenheit"}),
    MakeLabelledColumn("Predictive Failure Count =",
                       {"PredictiveFail", "Predictive Failure Count",
                        "how often the drive foretold its own failure", ValueKind::kNumber}),
    MakeLabelledColumn("S.M.A.R.T alert flagged by drive =",
                       {"SMARTflag", "S.M.A.R.T alert flagged by drive",
                        "whether the drive warns of its failure by SMART"}),
    MakeLabelledColumn("SN =", {"SN", "SN", "serial number"}),
    MakeLabelledColumn("WWN =", {"WWN", "WWN", "world-wide name, in hexadecimal"}),
    MakeLabelledColumn("Firmware Revision =", {"FirmwareRevision", "Firmware Revision",
                                               "version of the drive's firmware"}),
    MakeLabelledColumn("Raw size =", {"Rawsize", "Raw size",
                                      "capacity of the drive, with its unit and its sectors"}),
    MakeLabelledColumn(kCoercedSize,
                       {"Coercedsize", "Coerced size",
                        "capacity rounded down so that drives of different makers fit one array"}),
    MakeLabelledColumn("Device Speed =", {"DeviceSpeed", "Device Speed",
                                          "fastest speed that the drive supports, in Gb/s"}),
    MakeLabelledColumn("Link Speed =", {"LinkSpeed", "Link Speed",
                                        "speed at which the drive is connected, in Gb/s"}),
    MakeLabelledColumn("Logical Sector Size =",
                       {"LogicalSectorSize", "Logical Sector Size", "in bytes"}),
    MakeLabelledColumn("Enclosure position =",
                       {"Enclosureposition", "Enclosure position",
                        "place of the enclosure among those connected", ValueKind::kNumber}),
    MakeLabelledColumn("Connected Port Number =", {"ConnectedPortNumber", "Connected Port Number",
                                                   "the controller's port, and the path over it"}),
    MakeLabelledColumn("Commissioned Spare =", {"CommissionedSpare", "Commissioned Spare",
                                                "whether it serves as a spare at present"}),
    MakeLabelledColumn("Emergency Spare =", {"EmergencySpare", "Emergency Spare",
                                             "whether it may serve as a spare in an emergency"}),
    MakeLabelledColumn("Needs EKM Attention =",
                       {"NeedsEKMAttention", "Needs EKM Attention",
                        "whether its encryption needs the key manager"},
                       true),
};
const LabelledColumns kDriveFacts(kDriveFactColumns);

// "Coerced size =" occurs inside this label too.
constexpr LabelledColumn kNonCoercedSize = MakeLabelledColumn(
    "Non Coerced size =",
    {"NonCoercedsize", "Non Coerced size", "capacity before it is rounded down"});

LabelledFact ReadFact(std::string_view line) {
  LabelledFact fact = kDriveFacts.FindIn(line);
  if (fact && fact.source->label == kCoercedSize && Contains(line, kNonCoercedSize.label)) {
    fact.source = &kNonCoercedSize;
  }
  return fact;
}

}  // namespace

void CollectDriveDetails(const RaidLogsCollection& collection) {
  auto file = RunStorcli(collection.log, collection.hostFolder, kDetailsReport);
  if (!file) return;
  RowBuffer row(collection.repo, kPdList, "Controller 0 PDLIST");
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) Fill(row, ReadFact(line));
  file.reset();
}

void DescribeDriveDetails(ModuleDescription& module) {
  TableDescription table{.className = kPdList,
                         .title = "LSI physical drive details",
                         .commands = {DescribeReport(kDetailsReport)}};
  for (const LabelledColumn& fact : kDriveFactColumns) {
    table.AddColumn(fact.column);
    if (fact.label == kCoercedSize) table.AddColumn(kNonCoercedSize.column);
  }
  const std::string rowEnd(std::rbegin(kDriveFactColumns)->label);
  table.EndRowsAt(rowEnd);
  table.leavesOut = {
      LeaveOutOtherLsiControllers(),
      {.text = "No column has the drive's enclosure and slot; the drives are in the order of the "
               "report.",
       .note = std::string("the drives are in the order of their report, without enclosure and "
                           "slot: the report itself, in ") +
               kLsiLink + ", has them",
       .sign = OmissionSign::kRows},
      {.text = "What the report does not say of a drive, such as its temperature, is left as the "
               "drive before had it.",
       .note = "what the report does not say of a drive is left as the drive before had it: {}",
       .sign = OmissionSign::kLackingLine,
       .command = DescribeReport(kDetailsReport),
       .label = " =",
       .end = rowEnd}};
  module.tables.push_back(table);
}

}  // namespace pq
