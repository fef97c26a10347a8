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

/// A value begins right after its label's equals sign.
LabelledColumn After(std::string_view label, Column column, bool endsRow = false) {
  return {label, label.size(), std::move(column), endsRow};
}

const LabelledColumns kFacts{
    After("Shield Counter =", {"ShieldCounter", "Shield Counter"}),
    After("Media Error Count =", {"MediaErrorCount", "Media Error Count"}),
    After("Other Error Count =", {"OtherErrorCount", "Other Error Count"}),
    After("Drive Temperature =", {"DriveTemperature", "Drive Temperature"}),
    After("Predictive Failure Count =", {"PredictiveFail", "Predictive Failure Count"}),
    After("S.M.A.R.T alert flagged by drive =", {"SMARTflag", "S.M.A.R.T alert flagged by drive"}),
    After("SN =", {"SN", "SN"}),
    After("WWN =", {"WWN", "WWN"}),
    After("Firmware Revision =", {"FirmwareRevision", "Firmware Revision"}),
    After("Raw size =", {"Rawsize", "Raw size"}),
    After("Coerced size =", {"Coercedsize", "Coerced size"}),
    After("Device Speed =", {"DeviceSpeed", "Device Speed"}),
    After("Link Speed =", {"LinkSpeed", "Link Speed"}),
    After("Logical Sector Size =", {"LogicalSectorSize", "Logical Sector Size"}),
    After("Enclosure position =", {"Enclosureposition", "Enclosure position"}),
    After("Connected Port Number =", {"ConnectedPortNumber", "Connected Port Number"}),
    After("Commissioned Spare =", {"CommissionedSpare", "Commissioned Spare"}),
    After("Emergency Spare =", {"EmergencySpare", "Emergency Spare"}),
    After("Needs EKM Attention =", {"NeedsEKMAttention", "Needs EKM Attention"}, true),
};

// "Coerced size =" also stands inside this label.
const LabelledColumn kNonCoercedSize =
    After("Non Coerced size =", {"NonCoercedsize", "Non Coerced size"});

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
