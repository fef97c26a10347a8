#include "host/answers/parts/microchip.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/arcconf_config.h"
#include "host/answers/parts/arcconf_events.h"
#include "host/answers/parts/report_values.h"
#include "host/answers/parts/sources.h"
#include "host/catalogue/table_sources.h"

namespace host {
namespace {

constexpr char kConfigClass[] = "PMCLINK";
constexpr char kArcconf[] = "arcconf.exe";
constexpr char kArguments[] = "savesupportarchive c:\\";
constexpr char kTool[] = "arcconf savesupportarchive";
constexpr char kArchive[] = "c:\\Support\\Firmware\\";
constexpr std::string_view kConfigEnd = "_Config.txt";
constexpr std::string_view kEventsEnd = "_Event_Log.txt";
constexpr std::string_view kFoundLabel = "Controllers found";

// The row has the files of the archive's first controller.
constexpr int kFirstFurther = 2;
constexpr int kMostControllers = 32;  // PCI slots of a large server

/// How many controllers arcconf finds, as its texts begin with.
Integer FindCount(std::string_view text) { return FindInteger(text, kFoundLabel, ':'); }

/// Why the tool's answers tell of no controller; none when they do not.
enum class Absence { kSaid, kSilent };
std::optional<Absence> FindAbsence(const CollectedRows& rows, const CollectedTable& table) {
  std::optional<Absence> absence;
  for (const CollectedAnswer* answer : rows.ListAnswers(kArcconf, kArguments)) {
    if (FindCount(answer->output) == 0) return Absence::kSaid;
    // On a live machine nobody hears what it prints. It writes an archive only of a controller.
    const bool isSilent = answer->output.empty() && answer->exitCode == 0U &&
                          table.status.outcome == "output could not be opened";
    if (isSilent) absence = Absence::kSilent;
  }
  return absence;
}

/// A controller's volumes or drives are cached, logged and so on; an adapter without them need not
/// have a log.
bool HasArrays(const Parts& parts, const std::string& controller) {
  return std::any_of(
      parts.controllers.begin(), parts.controllers.end(),
      [&](const Controller& one) { return one.id == controller && one.volumesDeclared; });
}

/// Reads one of the archive's files, `name`, and notes that it is not whole.
void ReadFile(const Report& report, const std::string& name, Parts& parts,
              std::vector<std::string>& gaps) {
  const bool isConfig = name.ends_with(kConfigEnd);
  const bool isEmpty = Trim(report.text).empty();
  std::string gap = isEmpty ? "is empty" : "";
  if (isConfig && !isEmpty) gap = ReadArcconfConfig(report, parts);
  if (!isConfig) ReadArcconfEvents(report, parts);
  if (gap.empty() || (!isConfig && !HasArrays(parts, report.controller))) return;
  gaps.push_back(name + " " + gap);
}

/// The archive's files of a controller that the row of the class has not; false without them. They
/// are where arcconf left them, and known of a recording only.
bool ReadFurtherController(const CollectedRows& rows, const std::string& number, Parts& parts,
                           std::vector<std::string>& gaps) {
  bool isThere = false;
  for (const std::string_view end : {kConfigEnd, kEventsEnd}) {
    const std::string name = "Controller_" + number + std::string(end);
    const std::optional<DecodedText> text = rows.FindFile(kArchive + name);
    if (!text) continue;
    isThere = true;
    Place place;
    place.tool = std::string(kTool) + ", " + name;
    ReadFile({text->View(), place, std::string(kMicrochipId) + number}, name, parts, gaps);
  }
  return isThere;
}

/// The files of the row of the class. How many controllers they tell of; 0 where they do not.
std::int64_t ReadFirstController(const CollectedRows& rows, Parts& parts,
                                 std::vector<std::string>& gaps) {
  std::int64_t count = 0;
  for (const CollectedRow& row : rows.ListRows(kConfigClass)) {
    const auto read = [&](const char* key, std::string_view end) {
      const std::string name = "Controller_1" + std::string(end);
      const std::optional<DecodedText> text = row.FindText(key);
      // A file that is not there has an empty text as well.
      if (!text || (text->View().empty() && !rows.FindFile(kArchive + name))) return;
      if (end == kConfigEnd) count = FindCount(text->View()).value_or(0);
      ReadFile({text->View(), row.PlaceOf(key, kTool), std::string(kMicrochipId) + "1"}, name,
               parts, gaps);
    };
    read("Controller_Config", kConfigEnd);
    read("Controller_Event_Log", kEventsEnd);
  }
  return count;
}

/// Whether the collection noticed that the archive has files of further controllers.
bool TellsOfFurtherController(const CollectedTable& table) {
  const pq::TableDescription* described = FindTableDescription(kConfigClass);
  if (described == nullptr) return false;
  const auto& notes = table.status.notes;
  return std::any_of(described->leavesOut.begin(), described->leavesOut.end(),
                     [&](const pq::Omission& omission) {
                       return omission.sign == pq::OmissionSign::kFile &&
                              std::find(notes.begin(), notes.end(), omission.note) != notes.end();
                     });
}

/// `otherGap`: of controllers of which nothing was read.
void AddMicrochipSource(const CollectedRows& rows, Parts& parts, bool hasParts,
                        std::vector<std::string> gaps, const std::string& otherGap) {
  const CollectedTable* table = rows.FindTable(kConfigClass);
  const auto absence = table == nullptr ? std::nullopt : FindAbsence(rows, *table);
  const std::string end = DescribeEnd(rows.FindAnswer(kArcconf, kArguments));
  if (hasParts && !end.empty()) gaps.insert(gaps.begin(), std::string(kTool) + " " + end);
  const bool lacksControllersOnly = gaps.empty() && hasParts;
  if (!otherGap.empty()) gaps.push_back(otherGap);
  if (!gaps.empty()) {
    AddSource(parts, "microchip", kConfigClass, SourceState::kFailed, JoinGaps(gaps));
    parts.sources.back().lacksControllersOnly = lacksControllersOnly;
  } else if (hasParts) {
    AddSource(parts, "microchip", kConfigClass, SourceState::kRead);
  } else if (absence) {
    AddSource(parts, "microchip", kConfigClass, SourceState::kNone, "arcconf finds no controller");
    parts.sources.back().saysNone = absence == Absence::kSaid;
  } else if (table != nullptr && table->RowCount() > 0) {
    AddSource(parts, "microchip", kConfigClass, SourceState::kFailed,
              "no controller in the report");
  } else {
    AddSourceWithoutParts(parts, "microchip", kConfigClass, table);
  }
}

}  // namespace

void ReadMicrochip(const CollectedRows& rows, Parts& parts) {
  const std::size_t controllers = parts.controllers.CountAdded();
  const std::size_t drives = parts.drives.CountAdded();
  std::vector<std::string> gaps;
  const std::int64_t counted = ReadFirstController(rows, parts, gaps);
  const CollectedTable* table = rows.FindTable(kConfigClass);
  const bool hasArchive = table != nullptr && table->RowCount() > 0;
  bool lacksController = hasArchive && TellsOfFurtherController(*table);
  std::int64_t filesRead = 1;
  for (int number = kFirstFurther; hasArchive && number <= kMostControllers; ++number) {
    if (ReadFurtherController(rows, std::to_string(number), parts, gaps)) {
      lacksController = false;
      ++filesRead;
    }
  }
  std::string otherGap;
  if (hasArchive && counted > filesRead) {
    otherGap = fmt::format("arcconf counts {} controllers, of which {} {} read", counted, filesRead,
                           filesRead == 1 ? "was" : "were");
  } else if (lacksController) {
    otherGap = "the report of the second controller was not read";
  }
  AddMicrochipSource(
      rows, parts,
      parts.controllers.CountAdded() > controllers || parts.drives.CountAdded() > drives,
      std::move(gaps), otherGap);
}

}  // namespace host
