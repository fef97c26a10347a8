#include "host/answers/parts/microchip.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "host/answers/parts/arcconf_config.h"
#include "host/answers/parts/arcconf_events.h"
#include "host/answers/parts/sources.h"
#include "host/catalogue/table_sources.h"

namespace host {
namespace {

constexpr char kClass[] = "PMCLINK";
constexpr char kProgram[] = "arcconf.exe";
constexpr char kArguments[] = "savesupportarchive c:\\";
constexpr char kTool[] = "arcconf savesupportarchive";
constexpr char kArchive[] = "c:\\Support\\Firmware\\";
constexpr char kNoController[] = "Controllers found: 0";

// The row has the files of the archive's first controller.
constexpr int kFirstFurther = 2;
constexpr int kMostControllers = 32;  // PCI slots of a large server

/// Whether the tool said that there is no controller, or ended well without writing of one.
bool TellsNoController(const CollectedRows& rows, const CollectedTable& table) {
  const auto answers = rows.ListAnswers(kProgram, kArguments);
  return std::any_of(answers.begin(), answers.end(), [&](const CollectedAnswer* answer) {
    const bool saysSo = answer->output.Text().find(kNoController) != std::string::npos;
    return saysSo || (table.status.outcome == "output could not be opened" &&
                      answer->exitCode.value_or(1) == 0);
  });
}

/// The archive's files of a controller that the row of the class has not; false without them. They
/// are where arcconf left them, and known of a recording only.
bool ReadFurtherController(const CollectedRows& rows, const std::string& number, Parts& parts) {
  struct File {
    std::string_view end;
    void (*read)(const Report& report, Parts& parts);
  };
  constexpr File kFiles[] = {{"_Config.txt", ReadArcconfConfig},
                             {"_Event_Log.txt", ReadArcconfEvents}};
  bool isThere = false;
  for (const File& file : kFiles) {
    const std::string name = "Controller_" + number + std::string(file.end);
    const std::optional<DecodedText> text = rows.FindFile(kArchive + name);
    if (!text) continue;
    isThere = true;
    Place place;
    place.tool = std::string(kTool) + ", " + name;
    file.read({text->View(), place, std::string(kMicrochipId) + number}, parts);
  }
  return isThere;
}

/// Whether the collection noticed that the archive has files of further controllers.
bool TellsOfFurtherController(const CollectedTable& table) {
  const pq::TableDescription* described = FindTableDescription(kClass);
  if (described == nullptr) return false;
  const auto& notes = table.status.notes;
  return std::any_of(described->leavesOut.begin(), described->leavesOut.end(),
                     [&](const pq::Omission& omission) {
                       return omission.sign == pq::OmissionSign::kFile &&
                              std::find(notes.begin(), notes.end(), omission.note) != notes.end();
                     });
}

void AddMicrochipSource(const CollectedRows& rows, Parts& parts, bool hasParts,
                        bool lacksController) {
  const CollectedTable* table = rows.FindTable(kClass);
  if (lacksController) {
    AddSource(parts, "microchip", kClass, SourceState::kFailed,
              "the report of the second controller was not read");
  } else if (hasParts) {
    AddSource(parts, "microchip", kClass, SourceState::kRead);
  } else if (table != nullptr && TellsNoController(rows, *table)) {
    AddSource(parts, "microchip", kClass, SourceState::kNone, "arcconf finds no controller");
  } else if (table != nullptr && table->RowCount() > 0) {
    AddSource(parts, "microchip", kClass, SourceState::kFailed, "no controller in the report");
  } else {
    AddSourceWithoutParts(parts, "microchip", kClass, table);
  }
}

}  // namespace

void ReadMicrochip(const CollectedRows& rows, Parts& parts) {
  const std::size_t controllers = parts.controllers.size();
  const std::size_t drives = parts.drives.size();
  for (const CollectedRow& row : rows.ListRows(kClass)) {
    const std::string controller = std::string(kMicrochipId) + "1";
    if (const std::optional<DecodedText> text = row.FindText("Controller_Config")) {
      ReadArcconfConfig({text->View(), row.PlaceOf("Controller_Config", kTool), controller}, parts);
    }
    if (const std::optional<DecodedText> text = row.FindText("Controller_Event_Log")) {
      ReadArcconfEvents({text->View(), row.PlaceOf("Controller_Event_Log", kTool), controller},
                        parts);
    }
  }
  const CollectedTable* table = rows.FindTable(kClass);
  const bool hasArchive = table != nullptr && table->RowCount() > 0;
  bool lacksController = hasArchive && TellsOfFurtherController(*table);
  for (int number = kFirstFurther; hasArchive && number <= kMostControllers; ++number) {
    if (ReadFurtherController(rows, std::to_string(number), parts)) lacksController = false;
  }
  AddMicrochipSource(rows, parts,
                     parts.controllers.size() > controllers || parts.drives.size() > drives,
                     lacksController);
}

}  // namespace host
