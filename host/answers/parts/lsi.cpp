#include "host/answers/parts/lsi.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/lsi_drives.h"
#include "host/answers/parts/report.h"
#include "host/answers/parts/report_values.h"
#include "host/answers/parts/sources.h"
#include "host/answers/parts/storcli_drives.h"
#include "host/answers/parts/storcli_events.h"
#include "host/answers/parts/storcli_show.h"
#include "host/text/ascii.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr char kReports[] = "LSILINK";
constexpr char kNothing[] = "printed nothing";

struct LinkedReport {
  std::string_view key;
  std::string_view arguments;  ///< after /cN
  /// Where the report breaks off, in words; empty when it does not, or when nobody can tell.
  std::string (*read)(const Report& report, Parts& parts);
};

/// Ends where its lines do.
std::string ReadTermLog(const Report& report, Parts& parts) {
  ReadStorcliTermLog(report, parts);
  return {};
}

// Events are about drives, and the term log repeats events.
constexpr LinkedReport kLinkedReports[] = {
    {"lsishowall", " show", ReadStorcliShow},
    {"pdlist", "/eall/sall show all", ReadStorcliDrives},
    {"lsieventlog", " show events", ReadStorcliEvents},
    {"lsifwtermlog", " show termlog", ReadTermLog},
};

constexpr char kStorcli[] = "storcli.exe";
constexpr char kCountArguments[] = "show ctrlcount";
constexpr char kCountLabel[] = "Controller Count";
constexpr std::size_t kLongestValue = 60;  ///< columns of what is told as no number

/// How the reports answered.
struct Answers {
  bool hasText = false;
  bool tellsNoController = false;
  std::vector<std::string> failures;  ///< reports that say they failed, a clause each
  /// What is not told, or not all of it, a clause each; failures where others were read.
  std::vector<std::string> gaps;
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
bool ReadReport(const LinkedReport& linked, const CollectedRows& rows, const CollectedRow& row,
                const std::string& number, Parts& parts, Answers& answers) {
  const std::string arguments = "/c" + number + std::string(linked.arguments);
  const std::string tool = "storcli " + arguments;
  const CollectedAnswer* const answer = rows.FindAnswer(kStorcli, arguments);
  const std::string end = DescribeEnd(answer);
  const auto text = row.FindText(linked.key);
  if (!text || Trim(text->View()).empty()) {
    if (answer != nullptr) answers.gaps.push_back(tool + " " + (end.empty() ? kNothing : end));
    return false;
  }
  answers.hasText = true;
  answers.tellsNoController = answers.tellsNoController || TellsNoController(text->View());
  const Report report{text->View(), row.PlaceOf(linked.key, tool),
                      std::string(kLsiIdPrefix) + number};
  const std::string brokenOff = linked.read(report, parts);
  const auto failure = FindStorcliFailure(report.text);
  if (failure && !IsToBeExpected(*failure, report, parts)) {
    answers.failures.push_back(tool + ": Status = Failure, " + *failure);
  } else if (&linked == kLinkedReports && !HasController(parts, report.controller)) {
    if (!TellsNoController(report.text)) {
      answers.gaps.push_back(tool + ": no controller in what it printed");
    }
  } else if (!failure && !end.empty()) {
    answers.gaps.push_back(tool + " " + end);
  } else if (!failure && !brokenOff.empty()) {
    answers.gaps.push_back(tool + " " + brokenOff);
  }
  return true;
}

/// Reads the reports on one controller.
void ReadController(const CollectedRows& rows, const CollectedRow& row, const std::string& number,
                    Parts& parts, Answers& answers) {
  const std::size_t gapsBefore = answers.gaps.size();
  bool printedAny = false;
  for (const LinkedReport& linked : kLinkedReports) {
    if (ReadReport(linked, rows, row, number, parts, answers)) printedAny = true;
  }
  if (printedAny) return;
  answers.gaps.resize(gapsBefore);
  answers.gaps.push_back("storcli /c" + number + " show " + kNothing);
}

/// Why there are, or may be, controllers beside those of the `rowCount` rows with reports; empty
/// when there is no reason. Without a count the classes have the first controller only.
std::string FindCountGap(const CollectedRows& rows, std::size_t rowCount) {
  const auto asked = rows.ListAnswers(kStorcli, kCountArguments);
  for (const CollectedAnswer* answer : asked) {
    Integer count = FindInteger(answer->fileText, kCountLabel, '=');
    if (!count) count = FindInteger(answer->output, kCountLabel, '=');
    if (!count) continue;
    if (*count <= static_cast<std::int64_t>(rowCount)) return {};
    return fmt::format("storcli counts {} controllers, of which {} {} read", *count, rowCount,
                       rowCount == 1 ? "was" : "were");
  }
  if (asked.empty()) return {};
  const CollectedAnswer* const answer = rows.FindAnswer(kStorcli, kCountArguments);
  std::string end = answer == nullptr ? "has no answer" : DescribeEnd(answer);
  if (end.empty()) end = "told no number";
  return "storcli show ctrlcount " + end + ", so there may be more controllers than one";
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

void ReadTopologyRows(const CollectedRows& rows, Parts& parts) {
  for (const CollectedRow& row : rows.ListRows("TINFO")) {
    const auto get = [&](const char* key) { return row.Get(key); };
    const std::string group = get("DG"), array = get("Arr"), number = get("Row");
    const std::string drive = get("EID"), type = get("Type"), state = get("State");
    const std::string busy = get("BT");
    const bool fits = AddTopologyRow({group, array, number, drive, type, state, busy}, "lsi0",
                                     row.PlaceOf("State", "storcli /c0 show"), parts);
    if (!fits) KeepUnread(row, "DG", parts);
  }
}

bool HasLsiEvents(const Parts& parts) {
  for (std::size_t row = 0; row < parts.events.size(); ++row) {
    if (parts.events.GetText(row, EventColumn::kSource) == kLsi) return true;
  }
  return false;
}

/// After drives and volumes, which events are about. A report can have told of events alone.
void ReadEventRows(const CollectedRows& rows, Parts& parts) {
  if (HasLsiEvents(parts)) return;
  Report report;
  report.place.tool = "storcli /c0 show events";
  report.controller = "lsi0";
  for (const char* page : {"EVENTLOG1", "EVENTLOG2", "EVENTLOG3", "EVENTLOG4", "EVENTLOG5"}) {
    ReadStorcliEventRows(rows.ListRows(page), report, parts);
  }
}

bool HasLsi(const Parts& parts) {
  const auto isLsi = [](const auto& part) { return part.vendor == kLsi; };
  return std::any_of(parts.controllers.begin(), parts.controllers.end(), isLsi) ||
         std::any_of(parts.drives.begin(), parts.drives.end(), isLsi);
}

/// Why not all entries of the log are there, in words; empty when they are, as far as it tells.
std::string FindSas2Gap(const CollectedRows& rows) {
  const CollectedAnswer* const log = rows.FindAnswer("sas2ir_windows_x64.exe", "logir.log");
  if (log == nullptr) return {};
  const std::string end = DescribeEnd(log);
  if (!end.empty()) return "SAS2IR_windows_x64 " + end;
  // "Entries: 8", then "LogSequence: 1" and so on
  const DecodedText text =
      rows.Decode(log->file.empty() ? log->output.Text() : log->fileText.Text());
  std::int64_t declared = 0;
  std::int64_t listed = 0;
  ReportLines lines(text.View());
  for (ReportLine line; lines.Next(line);) {
    const auto split = SplitLabel(line.text, ':');
    if (!split) continue;
    if (split->label == "Entries") {
      const Integer told = ReadLeadingInteger(split->value);
      if (!told) {
        return "the log tells no number of its entries: " + CutText(split->value, kLongestValue);
      }
      declared = *told;
    }
    if (split->label == "LogSequence") ++listed;
  }
  if (listed >= declared) return {};
  return "the log breaks off: " + std::to_string(listed) + " of " + std::to_string(declared) +
         " entries";
}

}  // namespace

void ReadLsi(const CollectedRows& rows, Parts& parts) {
  Answers answers;
  const CollectedRowList reports = rows.ListRows(kReports);
  for (const CollectedRow& row : reports) {
    ReadController(rows, row, FindNumber(row), parts, answers);
  }
  std::vector<std::string> gaps = std::move(answers.failures);
  bool lacksControllersOnly = false;
  if (HasLsi(parts)) {
    gaps.insert(gaps.end(), answers.gaps.begin(), answers.gaps.end());
    const std::string countGap = FindCountGap(rows, reports.size());
    lacksControllersOnly = gaps.empty();
    if (!countGap.empty()) gaps.push_back(countGap);
  } else {
    ReadSummaryRow(rows, parts);
    ReadDriveRows(rows, parts);
    ReadVolumeRows(rows, parts);
    ReadTopologyRows(rows, parts);
    ReadEventRows(rows, parts);
    // The rows have neither the drives' details nor other controllers.
    const CollectedTable* const table = rows.FindTable(kReports);
    if (table != nullptr && HasLsi(parts)) gaps.push_back(table->status.text);
  }
  if (!gaps.empty()) {
    AddSource(parts, "lsi", kReports, SourceState::kFailed, JoinGaps(gaps));
    parts.sources.back().lacksControllersOnly = lacksControllersOnly;
  } else if (HasLsi(parts)) {
    AddSource(parts, "lsi", kReports, SourceState::kRead);
  } else if (answers.tellsNoController) {
    AddSource(parts, "lsi", kReports, SourceState::kNone, "storcli finds no controller");
    parts.sources.back().saysNone = true;
  } else if (answers.hasText) {
    const bool hasLog = HasLsiEvents(parts);
    AddSource(parts, "lsi", kReports, SourceState::kFailed,
              hasLog ? "of the controllers there is nothing but a log"
                     : "what storcli printed tells of no controller by itself and of no drive");
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
    parts.events.push_back(event);
    hasEvents = true;
  }
  const CollectedTable* table = rows.FindTable(kLog);
  // A log without entries is one that was read.
  const bool isEmpty = table != nullptr && table->status.outcome == "no rows in output";
  const std::string gap = FindSas2Gap(rows);
  if (hasEvents && !gap.empty()) {
    AddSource(parts, "sas2", kLog, SourceState::kFailed, gap);
  } else if (hasEvents || isEmpty) {
    AddSource(parts, "sas2", kLog, SourceState::kRead);
  } else {
    AddSourceWithoutParts(parts, "sas2", kLog, table);
  }
}

}  // namespace host
