// Titles say which drive the lines after them are about:
//
//   Drive /c0/e69/s0 State :
//   ======================
//   Shield Counter = 0
//   Media Error Count = 0
//
// When some drives did not answer, a table says so: "/c0/e69/s1 Failure 46 -".

#include "host/answers/parts/storcli_drives.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "host/answers/parts/header_table.h"
#include "host/answers/parts/lsi_drives.h"
#include "host/answers/parts/report_values.h"

namespace host {
namespace {

/// How a value becomes one of a drive; false when it tells nothing.
using SetDriveValue = bool (*)(Drive& drive, std::string_view value);

template <auto member>
bool SetText(Drive& drive, std::string_view value) {
  if (!(drive.*member).empty() || !IsTold(value)) return false;
  drive.*member = value;
  return true;
}

template <auto member, auto read>
bool SetNumber(Drive& drive, std::string_view value) {
  const auto number = read(value);
  if (drive.*member || !number) return false;
  drive.*member = number;
  return true;
}

/// The lists cut long names off.
bool SetModel(Drive& drive, std::string_view value) {
  if (!IsTold(value) || value.size() <= drive.model.size()) return false;
  drive.model = value;
  return true;
}

/// "0C" is printed for drives without a sensor.
bool SetTemperature(Drive& drive, std::string_view value) {
  const Real degrees = ReadLeadingReal(value);
  return degrees && *degrees != 0 && SetNumber<&Drive::temperature, ReadLeadingReal>(drive, value);
}

struct DriveFact {
  std::string_view label;
  std::string_view column;
  SetDriveValue set;
};

// Both generations of the tool. Of a drive with several logical units the first one counts.
constexpr DriveFact kStorcliDriveFacts[] = {
    {"Shield Counter", "shield", SetNumber<&Drive::shield, ReadInteger>},
    {"Media Error Count", "media_errors", SetNumber<&Drive::mediaErrors, ReadInteger>},
    {"Other Error Count", "other_errors", SetNumber<&Drive::otherErrors, ReadInteger>},
    {"Predictive Failure Count", "predictive_failures",
     SetNumber<&Drive::predictiveFailures, ReadInteger>},
    {"S.M.A.R.T alert flagged by drive", "smart_alert", SetText<&Drive::smartAlert>},
    {"Drive Temperature", "temperature", SetTemperature},
    {"Temperature(C)", "temperature", SetTemperature},
    {"SN", "serial", SetText<&Drive::serial>},
    {"Serial Number", "serial", SetText<&Drive::serial>},
    {"Model Number", "model", SetModel},
    {"Model", "model", SetModel},
    {"Firmware Revision", "firmware", SetText<&Drive::firmware>},
    {"Firmware Revision Level", "firmware", SetText<&Drive::firmware>},
    {"Raw size", "size", SetNumber<&Drive::size, ReadSize>},
    {"Device Speed", "device_speed", SetNumber<&Drive::deviceSpeed, ReadLeadingReal>},
    {"Capable Speed", "device_speed", SetNumber<&Drive::deviceSpeed, ReadLeadingReal>},
    {"Link Speed", "link_speed", SetNumber<&Drive::linkSpeed, ReadLeadingReal>},
};

class DrivesReader {
 public:
  DrivesReader(const Report& report, Parts& parts)
      : report(report), parts(parts), drives(parts, report.controller) {}

  std::string Read() {
    ReportLines lines(report.text);
    for (ReportLine line; lines.Next(line);) {
      const TableScan::LineKind kind = scan.Take(line.text);
      if (kind == TableScan::LineKind::kTitle) {
        TakeTitle(line);
      } else if (Trim(line.text).starts_with("/c")) {
        TakeAnswer(line);
      } else if (kind == TableScan::LineKind::kRow) {
        TakeRow(line);
      } else if (!place.empty()) {
        TakeFact(line);
      }
    }
    return DescribeBreak();
  }

 private:
  std::string DescribeBreak() const {
    if (std::string text = scan.DescribeBreak(); !text.empty()) return text;
    if (!lastLabel.empty() && !hasLastLabel) return "breaks off at drive " + place;
    std::size_t listed = 0;
    std::size_t told = 0;
    for (const Drive& drive : parts.drives) {
      // Drives without an enclosure are not among those of all enclosures.
      if (drive.controller != report.controller || drive.place.starts_with(':')) continue;
      ++listed;
      if (mentioned.contains(drive.place)) ++told;
    }
    return told < listed ? fmt::format("tells of {} of {} drives", told, listed) : std::string();
  }

  /// The drive in a place, which `line` mentions.
  Drive& Open(const std::string& where, const ReportLine& line) {
    if (Drive* known = drives.FindByPlace(where)) return *known;
    Drive drive;
    drive.place = where;
    drive.readAt = PlaceOfLine(report, line);
    return drives.Add(std::move(drive));
  }

  void TakeTitle(const ReportLine& line) {
    constexpr std::string_view kWord = "Drive ";
    const std::size_t at = line.text.find("Drive /c");
    if (at == std::string_view::npos) return;
    const auto where = ReadLsiDrivePath(line.text.substr(at + kWord.size()));
    if (!where) return;
    if (place != *where) BeginDrive(*where);
    Open(place, line);
  }

  void BeginDrive(const std::string& where) {
    if (mentioned.size() == 1) lastLabel = label;
    place = where;
    mentioned.insert(place);
    hasLastLabel = false;
  }

  void TakeFact(const ReportLine& line) {
    const auto split = SplitLabel(line.text, '=');
    if (!split) return;
    label = split->label;
    hasLastLabel = hasLastLabel || label == lastLabel;
    const auto* const fact =
        std::find_if(std::begin(kStorcliDriveFacts), std::end(kStorcliDriveFacts),
                     [&](const DriveFact& known) { return known.label == split->label; });
    if (fact == std::end(kStorcliDriveFacts)) return;
    Drive& drive = Open(place, line);
    if (fact->set(drive, split->value)) {
      NotePlace(drive, fact->column, PlaceOfLine(report, line));
    }
  }

  void TakeRow(const ReportLine& line) {
    if (scan.Heads().Has("NegotiatedSpeed") && !place.empty()) TakePath(line);
    if (!HasDriveHeads(scan.Heads())) return;
    std::optional<Drive> row = ReadLsiDriveRow(scan.Heads(), line.text, report.controller);
    if (!row) {
      KeepUnread(parts, report, line);
      return;
    }
    Drive& drive = Open(row->place, line);
    if (!drive.state.empty()) return;   // as the controller's own list has it
    if (!drive.columnPlaces.empty()) {  // too late: it would hide what was read before
      KeepUnread(parts, report, line);
      return;
    }
    row->id = drive.id;
    row->vendor = drive.vendor;
    row->controller = drive.controller;
    row->readAt = PlaceOfLine(report, line);
    drive = std::move(*row);
  }

  /// One of the paths to the drive, with its speed.
  void TakePath(const ReportLine& line) {
    const auto cells = scan.Heads().DealWords(line.text, {});
    if (!cells) return;
    Drive& drive = Open(place, line);
    if (SetNumber<&Drive::linkSpeed, ReadLeadingReal>(drive, (*cells)["NegotiatedSpeed"])) {
      NotePlace(drive, "link_speed", PlaceOfLine(report, line));
    }
  }

  /// What a drive answered that could not be asked.
  void TakeAnswer(const ReportLine& line) {
    const std::string_view text = Trim(line.text);
    const std::size_t end = text.find_first_of(" \t");
    const auto where = ReadLsiDrivePath(text);
    if (!where || end == std::string_view::npos) return;
    const std::string_view answer = Trim(text.substr(end));
    if (!answer.starts_with("Fail")) return;
    mentioned.insert(*where);
    Drive& drive = Open(*where, line);
    drive.answer = answer;
    NotePlace(drive, "answer", PlaceOfLine(report, line));
  }

  const Report& report;
  Parts& parts;
  LsiDrives drives;
  TableScan scan;
  std::string place;                          ///< of the drive that the lines are about
  std::unordered_set<std::string> mentioned;  ///< places
  std::string_view label;                     ///< of the last fact
  /// What is told of a drive ends with it, as that of the first does. Empty while that is read.
  std::string_view lastLabel;
  bool hasLastLabel = false;  ///< the drive that the lines are about
};

}  // namespace

std::string ReadStorcliDrives(const Report& report, Parts& parts) {
  return DrivesReader(report, parts).Read();
}

}  // namespace host
