// One "label = value" line per fact of the controller, and a table for each kind of part, whose
// title and columns depend on the tool's version:
//
//   Product Name = KORVA MR-24i
//   ...
//   EID:Slt DID State DG       Size Intf Med SED PI SeSz Model        Sp Type

#include "host/answers/parts/storcli_show.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/answers/parts/header_table.h"
#include "host/answers/parts/lsi_drives.h"
#include "host/answers/parts/report_values.h"

namespace host {
namespace {

struct ControllerFact {
  std::string_view column;
  /// Each as a whole, or only how it begins, where it ends with "(".
  std::array<std::string_view, 3> labels;
  void (*set)(Controller& controller, std::string_view value);
};

// The first line with one of its labels gives a fact; further down they are about something else.
constexpr ControllerFact kStorcliControllerFacts[] = {
    {"model",
     {"Product Name", "Model"},
     [](Controller& made, std::string_view value) { made.model = value; }},
    {"serial",
     {"Serial Number"},
     [](Controller& made, std::string_view value) { made.serial = value; }},
    {"firmware",
     {"FW Package Build", "Firmware Package Build", "Package Version"},
     [](Controller& made, std::string_view value) { made.firmware = value; }},
    {"system_time",
     {"System Time", "System Time(", "Current System Date/time"},
     [](Controller& made, std::string_view value) { made.systemTime = ReadTime(value); }},
    {"status",
     {"Controller Status"},
     [](Controller& made, std::string_view value) { made.status = value; }},
    {"temperature",
     {"ROC temperature("},
     [](Controller& made, std::string_view value) { made.temperature = ReadLeadingReal(value); }},
    {"volumes_declared",
     {"Virtual Drives"},
     [](Controller& made, std::string_view value) { made.volumesDeclared = ReadInteger(value); }},
    {"drives_declared",
     {"Physical Drives"},
     [](Controller& made, std::string_view value) { made.drivesDeclared = ReadInteger(value); }},
};

bool IsLabelOf(const ControllerFact& fact, std::string_view label) {
  return std::any_of(fact.labels.begin(), fact.labels.end(), [&](std::string_view known) {
    return known.ends_with('(') ? label.starts_with(known) : label == known;
  });
}

struct CacheBackupTable {
  std::string_view title;
  std::string_view kind;
};
constexpr CacheBackupTable kCacheBackupTables[] = {
    {"BBU_Info", "BBU"},
    {"Cachevault_Info", "CacheVault"},
};

/// The list after that of the drives.
bool HasEnclosureHeads(const TableHeads& heads) { return heads.Has("EID") && heads.Has("Slots"); }

std::string MakeGroupId(const std::string& controller, std::string_view number) {
  return controller + " g" + std::string(number);
}

class ShowReader {
 public:
  ShowReader(const Report& report, Parts& parts)
      : report(report), parts(parts), drives(parts, report.controller) {}

  std::string Read() {
    ReportLines lines(report.text);
    for (ReportLine line; lines.Next(line);) {
      const TableScan::LineKind kind = scan.Take(line.text);
      if (kind == TableScan::LineKind::kRow) {
        TakeRow(line);
      } else if (kind == TableScan::LineKind::kOther) {
        TakeFact(line);
      }
    }
    if (!hasParts && controller.columnPlaces.empty()) return {};
    // Of no drives there is neither a number nor a list.
    const bool isBeforeDrives = !passedDrives && !controller.drivesDeclared;
    controller.id = report.controller;
    controller.number = report.controller.substr(kLsiIdPrefix.size());
    controller.vendor = kLsi;
    controller.readAt = controller.columnPlaces.empty() ? PlaceOfLine(report, {{}, 1})
                                                        : controller.columnPlaces.front().place;
    parts.controllers.push_back(std::move(controller));
    std::string brokenOff = scan.DescribeBreak();
    if (brokenOff.empty() && isBeforeDrives) brokenOff = "breaks off before its drives";
    return brokenOff;
  }

 private:
  void TakeFact(const ReportLine& line) {
    const auto split = SplitLabel(line.text, '=');
    if (!split) return;
    for (std::size_t i = 0; i < std::size(kStorcliControllerFacts); ++i) {
      if (known[i] || !IsLabelOf(kStorcliControllerFacts[i], split->label)) continue;
      known[i] = true;
      kStorcliControllerFacts[i].set(controller, split->value);
      NotePlace(controller, kStorcliControllerFacts[i].column, PlaceOfLine(report, line));
    }
  }

  void TakeRow(const ReportLine& line) {
    const TableHeads& heads = scan.Heads();
    const bool hasDrives = HasDriveHeads(heads);
    hasParts = hasParts || hasDrives || heads.Has("DG/VD");
    passedDrives = passedDrives || hasDrives || HasEnclosureHeads(heads);
    if (!TakeRowOf(heads, line)) KeepUnread(parts, report, line);
  }

  /// False when the row is one of a part's table and does not fit it.
  bool TakeRowOf(const TableHeads& heads, const ReportLine& line) {
    if (HasDriveHeads(heads)) return TakeDrive(line);
    if (heads.Has("DG/VD") && heads.Has("State")) return TakeVolume(line);
    if (heads.Has("DG") && heads.Has("Arr") && heads.Has("Row")) return TakeTopology(line);
    if (HasEnclosureHeads(heads)) return TakeEnclosure(line);
    return TakeCacheBackup(line);
  }

  bool TakeDrive(const ReportLine& line) {
    std::optional<Drive> drive = ReadLsiDriveRow(scan.Heads(), line.text, report.controller);
    if (!drive) return false;
    if (drives.FindByPlace(drive->place) != nullptr) return true;  // of two lists
    drive->readAt = PlaceOfLine(report, line);
    drives.Add(std::move(*drive));
    return true;
  }

  bool TakeVolume(const ReportLine& line) {
    const TableHeads& heads = scan.Heads();
    const std::optional<RowCells> cells = heads.DealWords(line.text, "Name");
    if (!cells) return false;
    const std::string_view numbers = (*cells)["DG/VD"];
    const std::size_t slash = numbers.find('/');
    if (slash == std::string_view::npos) return false;
    const std::string_view group = numbers.substr(0, slash);
    const std::string_view number = numbers.substr(slash + 1);
    const std::string_view size = (*cells)["Size"];
    Volume volume;
    volume.size = ReadSize(size);
    volume.state = (*cells)["State"];
    if (!IsNumber(number) || volume.state.empty() || (!volume.size && size != "-")) return false;
    volume.id = report.controller + " v" + std::string(number);
    volume.readAt = PlaceOfLine(report, line);
    volume.vendor = kLsi;
    volume.controller = report.controller;
    volume.number = number;
    volume.name = (*cells)["Name"];
    volume.level = (*cells)["TYPE"];
    volume.access = (*cells)["Access"];
    volume.consistent = (*cells)["Consist"];
    volume.cache = (*cells)[heads.Has("Cache") ? "Cache" : "CurrentCache"];
    if (IsNumber(group)) volume.group = MakeGroupId(report.controller, group);
    parts.volumes.push_back(std::move(volume));
    return true;
  }

  /// A group, one of its arrays, or one of their drives.
  bool TakeTopology(const ReportLine& line) {
    const std::optional<RowCells> cells = scan.Heads().DealWords(line.text, {});
    if (!cells) return false;
    return AddTopologyRow({(*cells)["DG"], (*cells)["Arr"], (*cells)["Row"], (*cells)["EID:Slot"],
                           (*cells)["Type"], (*cells)["State"], (*cells)["BT"]},
                          report.controller, PlaceOfLine(report, line), parts);
  }

  bool TakeEnclosure(const ReportLine& line) {
    const RowCells cells = scan.Heads().CutBelowHeads(line.text);
    if (!IsNumber(cells["EID"]) || cells["State"].empty()) return false;
    Enclosure enclosure;
    enclosure.number = cells["EID"];
    enclosure.id = report.controller + " e" + enclosure.number;
    enclosure.readAt = PlaceOfLine(report, line);
    enclosure.controller = report.controller;
    enclosure.state = cells["State"];
    enclosure.slots = ReadInteger(cells["Slots"]);
    enclosure.drives = ReadInteger(cells["PD"]);
    enclosure.powerSupplies = ReadInteger(cells["PS"]);
    enclosure.fans = ReadInteger(cells["Fans"]);
    enclosure.product = cells["ProdID"];
    parts.enclosures.push_back(std::move(enclosure));
    return true;
  }

  /// False only for a row of a cache backup that cannot be read: rows of other tables are no parts.
  bool TakeCacheBackup(const ReportLine& line) {
    const auto* const table =
        std::find_if(std::begin(kCacheBackupTables), std::end(kCacheBackupTables),
                     [&](const CacheBackupTable& known) { return known.title == scan.Title(); });
    const TableHeads& heads = scan.Heads();
    if (table == std::end(kCacheBackupTables) || !heads.Has("State") || !heads.Has("Temp")) {
      return true;
    }
    passedDrives = true;
    RowCells cells = heads.CutBelowHeads(line.text);
    const auto isTemperature = [](std::string_view cell) {
      return ReadLeadingReal(cell) || !IsTold(cell);
    };
    // A value longer than its column moves the rest of the row out of place.
    if (!isTemperature(cells["Temp"])) {
      const std::optional<RowCells> inOrder = heads.DealWords(line.text, {});
      if (!inOrder) return false;
      cells = *inOrder;
    }
    if (cells["State"].empty() || !isTemperature(cells["Temp"])) return false;
    CacheBackup backup;
    backup.id = report.controller + " " + std::string(table->kind);
    backup.readAt = PlaceOfLine(report, line);
    backup.vendor = kLsi;
    backup.controller = report.controller;
    backup.kind = table->kind;
    backup.model = cells["Model"];
    backup.state = cells["State"];
    backup.temperature = ReadLeadingReal(cells["Temp"]);
    parts.cacheBackups.push_back(std::move(backup));
    return true;
  }

  const Report& report;
  Parts& parts;
  LsiDrives drives;
  TableScan scan;
  Controller controller;
  bool hasParts = false;
  bool passedDrives = false;  ///< their list, or one of those after it
  std::array<bool, std::size(kStorcliControllerFacts)> known{};
};

void AddMissingDrive(const TopologyRow& row, const std::string& controller, const Place& at,
                     Parts& parts) {
  MissingDrive missing;
  missing.group = MakeGroupId(controller, row.group);
  // Every array counts its rows from 0.
  missing.place = row.array == "0" ? "row " : "array " + std::string(row.array) + " row ";
  missing.place += row.row;
  missing.id = missing.group + " " + missing.place;
  missing.readAt = at;
  missing.controller = controller;
  missing.state = row.state;
  parts.missingDrives.push_back(std::move(missing));
}

/// The values below a label of the head of a report.
template <typename Take>
void FindFact(std::string_view text, std::string_view label, const Take& take) {
  ReportLines lines(text);
  for (ReportLine line; lines.Next(line);) {
    const auto split = SplitLabel(line.text, '=');
    if (split && split->label == label) take(split->value);
  }
}

/// Whether some label could have the value `word`. Drives have a "Predictive Failure Count", too,
/// in a report of megabytes.
bool MayHaveValue(std::string_view text, std::string_view word) {
  for (std::size_t at = text.find(word); at != std::string_view::npos;
       at = text.find(word, at + word.size())) {
    std::size_t before = at;
    while (before > 0 && IsWhiteSpace(text[before - 1])) --before;
    if (before > 0 && text[before - 1] == '=') return true;
  }
  return false;
}

}  // namespace

std::string ReadStorcliShow(const Report& report, Parts& parts) {
  return ShowReader(report, parts).Read();
}

bool AddTopologyRow(const TopologyRow& row, const std::string& controller, const Place& at,
                    Parts& parts) {
  if (row.type.empty() || row.state.empty()) return false;
  if (row.type == "DRIVE") {
    if (row.state == "Msng" || row.drive == "-") AddMissingDrive(row, controller, at, parts);
  } else if (row.array == "-" && IsNumber(row.group)) {
    Group made;
    made.id = MakeGroupId(controller, row.group);
    made.readAt = at;
    made.vendor = kLsi;
    made.controller = controller;
    made.number = row.group;
    made.level = row.type;
    made.state = row.state;
    made.busy = row.busy;
    parts.groups.push_back(std::move(made));
  }
  return true;
}

std::optional<std::string> FindStorcliFailure(std::string_view text) {
  constexpr std::string_view kWord = "Failure";
  if (!MayHaveValue(text, kWord)) return std::nullopt;
  bool failed = false;
  std::string description;
  FindFact(text, "Status", [&](std::string_view value) { failed = failed || value == kWord; });
  if (!failed) return std::nullopt;
  FindFact(text, "Description", [&](std::string_view value) { description = value; });
  return description;
}

bool TellsNoController(std::string_view text) {
  return text.find("No Controller found") != std::string_view::npos ||
         text.find("Controller Count = 0") != std::string_view::npos;
}

}  // namespace host
