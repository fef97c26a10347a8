// storcli /c0/eall/sall show all: one "label = value" line per fact of a drive.
//
//   Shield Counter = 0
//   ...
//   Needs EKM Attention = No

#include "pqmodules/rsamplemodule2/drive_details.h"

#include "frame/labelled_columns.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

// The message names the term log; readers of host logs know this step by it.
constexpr StorcliReport kReport{"/c0/eall/sall show all", "pdlist.txt", "fwterm raw path:"};

const LabelledColumns kFacts{
    BehindLabel("Shield Counter =", {"ShieldCounter", "Shield Counter"}),
    BehindLabel("Media Error Count =", {"MediaErrorCount", "Media Error Count"}),
    BehindLabel("Other Error Count =", {"OtherErrorCount", "Other Error Count"}),
    BehindLabel("Drive Temperature =", {"DriveTemperature", "Drive Temperature"}),
    BehindLabel("Predictive Failure Count =", {"PredictiveFail", "Predictive Failure Count"}),
    BehindLabel("S.M.A.R.T alert flagged by drive =",
                {"SMARTflag", "S.M.A.R.T alert flagged by drive"}),
    BehindLabel("SN =", {"SN", "SN"}),
    BehindLabel("WWN =", {"WWN", "WWN"}),
    BehindLabel("Firmware Revision =", {"FirmwareRevision", "Firmware Revision"}),
    BehindLabel("Raw size =", {"Rawsize", "Raw size"}),
    BehindLabel("Coerced size =", {"Coercedsize", "Coerced size"}),
    BehindLabel("Device Speed =", {"DeviceSpeed", "Device Speed"}),
    BehindLabel("Link Speed =", {"LinkSpeed", "Link Speed"}),
    BehindLabel("Logical Sector Size =", {"LogicalSectorSize", "Logical Sector Size"}),
    BehindLabel("Enclosure position =", {"Enclosureposition", "Enclosure position"}),
    BehindLabel("Connected Port Number =", {"ConnectedPortNumber", "Connected Port Number"}),
    BehindLabel("Commissioned Spare =", {"CommissionedSpare", "Commissioned Spare"}),
    BehindLabel("Emergency Spare =", {"EmergencySpare", "Emergency Spare"}),
    BehindLabel("Needs EKM Attention =", {"NeedsEKMAttention", "Needs EKM Attention"}, true),
};

// "Coerced size =" also stands inside this label.
const LabelledColumn kNonCoercedSize =
    BehindLabel("Non Coerced size =", {"NonCoercedsize", "Non Coerced size"});

LabelledFact ReadFact(std::string_view line) {
  LabelledFact fact = kFacts.FindIn(line);
  if (fact && fact.source->label == "Coerced size =" && Holds(line, kNonCoercedSize.label)) {
    fact.source = &kNonCoercedSize;
  }
  return fact;
}

}  // namespace

void CollectDriveDetails(const RaidLogsCollection& collection) {
  const auto file = RunStorcli(collection, kReport);
  if (!file) return;
  RowBuffer row(collection.repo, kPdList, "Controller 0 PDLIST");
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) Fill(row, ReadFact(line));
}

TableSource DescribeDriveDetails() {
  TableSource source{kPdList, {CommandOf(kReport)}, {}};
  for (const Column& column : ColumnsOf(kFacts)) {
    source.columns.push_back(column);
    if (column.key == "Coercedsize") source.columns.push_back(kNonCoercedSize.column);
  }
  return source;
}

}  // namespace pq
