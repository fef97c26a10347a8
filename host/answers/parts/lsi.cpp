#include "host/answers/parts/lsi.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/answers/parts/lsi_drives.h"
#include "host/answers/parts/report.h"
#include "host/answers/parts/report_values.h"
#include "host/answers/parts/sources.h"
#include "host/answers/parts/storcli_drives.h"
#include "host/answers/parts/storcli_events.h"
#include "host/answers/parts/storcli_show.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr char kReports[] = "LSILINK";

struct LinkedReport {
  std::string_view key;
  std::string_view arguments;  ///< after /cN
  void (*read)(const Report& report, Parts& parts);
};
// Events are about drives, and the term log repeats events.
constexpr LinkedReport kLinkedReports[] = {
    {"lsishowall", " show", ReadStorcliShow},
    {"pdlist", "/eall/sall show all", ReadStorcliDrives},
    {"lsieventlog", " show events", ReadStorcliEvents},
    {"lsifwtermlog", " show termlog", ReadStorcliTermLog},
};

/// How the reports answered.
struct Answers {
  bool hasText = false;
  bool tellsNoController = false;
  std::string failure;  ///< the first, in words
  /// The first controller of which nothing is told, in words; a failure where others were read.
  std::string gap;
};

bool HasNoEnclosure(const Parts& parts, const std::string& controller) {
  return std::all_of(parts.drives.begin(), parts.drives.end(), [&](const Drive& drive) {
    return drive.controller != controller || drive.place.starts_with(':');
  });
}

/// Host bus adapters keep no logs, and drives without an enclosure are not among those of all
/// enclosures: that these reports fail is how such a controller is.
bool IsToBeExpected(std::string_view description, const Report& report, const Parts& parts) {
  const std::string words = LowerCase(description);
  for (const char* refusal : {"un-supported", "unsupported", "not supported"}) {
    if (words.find(refusal) != std::string::npos) return true;
  }
  return words.find("no enclosure") != std::string::npos &&
         HasNoEnclosure(parts, report.controller);
}

bool HasController(const Parts& parts, const std::string& id) {
  return std::any_of(parts.controllers.begin(), parts.controllers.end(),
                     [&](const Controller& controller) { return controller.id == id; });
}

/// False when the tool printed nothing.
bool ReadReport(const LinkedReport& linked, const CollectedRow& row, const std::string& number,
                Parts& parts, Answers& answers) {
  const auto text = row.FindText(linked.key);
  if (!text || Trim(text->View()).empty()) return false;
  answers.hasText = true;
  answers.tellsNoController = answers.tellsNoController || TellsNoController(text->View());
  const std::string tool = "storcli /c" + number + std::string(linked.arguments);
  const Report report{text->View(), row.PlaceOf(linked.key, tool),
                      std::string(kLsiIdPrefix) + number};
  linked.read(report, parts);
  const auto failure = FindStorcliFailure(report.text);
  if (failure && answers.failure.empty() && !IsToBeExpected(*failure, report, parts)) {
    answers.failure = tool + ": Status = Failure, " + *failure;
  } else if (&linked == kLinkedReports && answers.gap.empty() &&
             !HasController(parts, report.controller) && !TellsNoController(report.text)) {
    answers.gap = tool + ": no controller in what it printed";
  }
  return true;
}

/// The number in "Controller0"; the place of the row without one.
std::string FindNumber(const CollectedRow& row) {
  const std::string index = row.Get("index");
  const std::size_t at = std::min(index.find_first_of("0123456789"), index.size());
  const std::string number = index.substr(at);
  return IsNumber(number) ? number : std::to_string(row.Number() - 1);
}

std::string MakeGroup(const std::string& number) {
  return IsNumber(number) ? "lsi0 g" + number : number;
}

void KeepUnread(const CollectedRow& row, std::string_view key, Parts& parts) {
  Unread unread;
  unread.readAt = row.PlaceOf(key);
  unread.text = row.Get(key);
  parts.unread.push_back(std::move(unread));
}

void ReadSummaryRow(const CollectedRows& rows, Parts& parts) {
  for (const CollectedRow& row : rows.ListRows("RAIDINFO")) {
    Controller controller;
    controller.id = "lsi0";
    controller.readAt = row.PlaceOf("ProductName", "storcli /c0 show");
    controller.vendor = kLsi;
    controller.number = "0";
    controller.model = row.Get("ProductName");
    controller.serial = row.Get("SerialNumber");
    controller.firmware = row.Get("FWPackageBuild");
    controller.systemTime = ReadTime(row.Get("SystemTime"));
    parts.controllers.push_back(std::move(controller));
  }
}

// Columns of these tables are dealt by number: a row whose size is none is one that does not fit.
void ReadDriveRows(const CollectedRows& rows, Parts& parts) {
  for (const CollectedRow& row : rows.ListRows("PINFO")) {
    Drive drive;
    drive.place = row.Get("EID");
    drive.deviceId = ReadInteger(row.Get("DID"));
    drive.size = ReadSize(row.Get("Size"));
    drive.state = row.Get("State");
    if (!drive.deviceId || !drive.size || drive.state.empty() ||
        drive.place.find(':') == std::string::npos) {
      KeepUnread(row, "EID", parts);
      continue;
    }
    drive.id = "lsi0 " + drive.place;
    drive.readAt = row.PlaceOf("State", "storcli /c0 show");
    drive.vendor = kLsi;
    drive.controller = "lsi0";
    const std::string group = row.Get("DG");
    drive.member = IsNumber(group) ? 1 : 0;
    drive.group = MakeGroup(group);
    drive.interfaceName = row.Get("Intf");
    drive.media = row.Get("Med");
    drive.model = row.Get("Model");
    parts.drives.push_back(std::move(drive));
  }
}

void ReadVolumeRows(const CollectedRows& rows, Parts& parts) {
  for (const CollectedRow& row : rows.ListRows("VINFO")) {
    const std::string numbers = row.Get("DG");
    const std::size_t slash = std::min(numbers.find('/'), numbers.size());
    Volume volume;
    volume.number = numbers.substr(std::min(slash + 1, numbers.size()));
    volume.state = row.Get("State");
    if (!IsNumber(volume.number) || volume.state.empty()) {
      KeepUnread(row, "DG", parts);
      continue;
    }
    volume.id = "lsi0 v" + volume.number;
    volume.readAt = row.PlaceOf("State", "storcli /c0 show");
    volume.vendor = kLsi;
    volume.controller = "lsi0";
    volume.name = row.Get("Name");
    volume.level = row.Get("TYPE");
    volume.size = ReadSize(row.Get("Size"));
    volume.access = row.Get("Access");
    volume.consistent = row.Get("Consist");
    volume.cache = row.Get("Cache");
    volume.group = MakeGroup(numbers.substr(0, slash));
    parts.volumes.push_back(std::move(volume));
  }
}

bool HasLsi(const Parts& parts) {
  const auto isLsi = [](const auto& part) { return part.vendor == kLsi; };
  return std::any_of(parts.controllers.begin(), parts.controllers.end(), isLsi) ||
         std::any_of(parts.drives.begin(), parts.drives.end(), isLsi);
}

}  // namespace

void ReadLsi(const CollectedRows& rows, Parts& parts) {
  Answers answers;
  for (const CollectedRow& row : rows.ListRows(kReports)) {
    const std::string number = FindNumber(row);
    bool printedAny = false;
    for (const LinkedReport& linked : kLinkedReports) {
      if (ReadReport(linked, row, number, parts, answers)) printedAny = true;
    }
    if (!printedAny && answers.gap.empty()) {
      answers.gap = "storcli /c" + number + " show printed nothing";
    }
  }
  if (HasLsi(parts) && answers.failure.empty()) answers.failure = answers.gap;
  if (!HasLsi(parts)) {
    ReadSummaryRow(rows, parts);
    ReadDriveRows(rows, parts);
    ReadVolumeRows(rows, parts);
  }
  if (!answers.failure.empty()) {
    AddSource(parts, "lsi", kReports, SourceState::kFailed, answers.failure);
  } else if (HasLsi(parts)) {
    AddSource(parts, "lsi", kReports, SourceState::kRead);
  } else if (answers.tellsNoController) {
    AddSource(parts, "lsi", kReports, SourceState::kNone, "storcli finds no controller");
  } else if (answers.hasText) {
    AddSource(parts, "lsi", kReports, SourceState::kFailed,
              "no controller and no drive in the reports of storcli");
  } else {
    // The table can have a row although the tool is missing.
    AddSourceWithoutParts(
        parts, "lsi", kReports,
        rows.FindTable("RAIDINFO") ? rows.FindTable("RAIDINFO") : rows.FindTable(kReports));
  }
}

void ReadSas2(const CollectedRows& rows, Parts& parts) {
  constexpr char kLog[] = "SAS2IRLOG";
  bool hasEvents = false;
  for (const CollectedRow& row : rows.ListRows(kLog)) {
    Event event;
    event.number = ReadInteger(row.Get("LogSequence"));
    event.text = row.Get("LogEntryDescription");
    if (!event.number || event.text.empty()) {
      KeepUnread(row, "LogEntryDescription", parts);
      continue;
    }
    event.id = "sas2 " + std::to_string(*event.number);
    event.readAt = row.PlaceOf("LogEntryDescription", "SAS2IR_windows_x64");
    event.source = "SAS2";
    const std::string code = row.Get("LogCode");
    if (code.starts_with("0x")) event.code = ReadHex(code);
    event.level = ReadInteger(row.Get("LogClass"));
    event.part = "controllers";
    event.partId = "sas2";
    parts.events.push_back(std::move(event));
    hasEvents = true;
  }
  const CollectedTable* table = rows.FindTable(kLog);
  // A log without entries is one that was read.
  const bool isEmpty = table != nullptr && table->status.outcome == "no rows in output";
  if (hasEvents || isEmpty) {
    AddSource(parts, "sas2", kLog, SourceState::kRead);
  } else {
    AddSourceWithoutParts(parts, "sas2", kLog, table);
  }
}

}  // namespace host
