#include "host/answers/parts/microchip.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "host/answers/parts/arcconf_config.h"
#include "host/answers/parts/arcconf_events.h"
#include "host/answers/parts/sources.h"

namespace host {
namespace {

constexpr char kClass[] = "PMCLINK";
constexpr char kProgram[] = "arcconf.exe";
constexpr char kArguments[] = "savesupportarchive c:\\";
constexpr char kTool[] = "arcconf savesupportarchive";
constexpr char kNoController[] = "Controllers found: 0";

/// Whether the tool said that there is no controller, or ended well without writing of one.
bool TellsNoController(const CollectedRows& rows, const CollectedTable& table) {
  const auto answers = rows.ListAnswers(kProgram, kArguments);
  return std::any_of(answers.begin(), answers.end(), [&](const CollectedAnswer* answer) {
    const bool saysSo = answer->output.Text().find(kNoController) != std::string::npos;
    return saysSo || (table.status.outcome == "output could not be opened" &&
                      answer->exitCode.value_or(1) == 0);
  });
}

void AddMicrochipSource(const CollectedRows& rows, Parts& parts, bool hasParts) {
  const CollectedTable* table = rows.FindTable(kClass);
  if (hasParts) {
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
    // Of several controllers the archive's first is in the row.
    const std::string controller = std::string(kMicrochipId) + "1";
    if (const std::optional<DecodedText> text = row.FindText("Controller_Config")) {
      ReadArcconfConfig({text->View(), row.PlaceOf("Controller_Config", kTool), controller}, parts);
    }
    if (const std::optional<DecodedText> text = row.FindText("Controller_Event_Log")) {
      ReadArcconfEvents({text->View(), row.PlaceOf("Controller_Event_Log", kTool), controller},
                        parts);
    }
  }
  AddMicrochipSource(rows, parts,
                     parts.controllers.size() > controllers || parts.drives.size() > drives);
}

}  // namespace host
