// JSON as docs/json.md describes it. Rows are written as they come, one per line, so that no table
// is in memory a second time.

#include <optional>
#include <string>

#include "host/answers/assessment.h"
#include "host/answers/machine_identity.h"
#include "host/collect/table_view.h"
#include "host/formats/formats.h"
#include "host/formats/health_formats.h"
#include "host/formats/json_buffer.h"
#include "host/formats/json_document.h"
#include "host/formats/json_parts.h"
#include "host/formats/json_table.h"
#include "host/text/json_text.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

std::string FormatJsonMachine(const CollectionView& view) {
  const Collection& collection = view.GetCollection();
  const MachineFacts& machine = collection.machine;
  const MachineIdentity identity = FindMachineIdentity(collection);
  JsonObject object;
  object.AddFlag("recorded", machine.recorded)
      .AddText("name", machine.name)
      .AddText("description", machine.description)
      .AddNumber("languageId", machine.languageId)
      .AddNumber("codePage", machine.PrintedCodePage())
      .AddText("hostExecutable", view.HostExecutable())
      .AddText("logFolder", view.LogFolder());
  const auto addKnown = [&](const char* name, const std::string& value) {
    if (!value.empty()) object.AddText(name, value);
  };
  if (machine.recordedAt) addKnown("recordedAt", FormatIsoTime(*machine.recordedAt));
  addKnown("system", machine.system);
  addKnown("maker", identity.maker);
  addKnown("product", identity.product);
  addKnown("serial", identity.serial);
  addKnown("assetTag", identity.assetTag);
  const auto appendSerials = [&](std::string& text) {
    AppendJsonList(text, ListMachineSerials(collection), &AppendJsonText);
  };
  object.Add("serials", appendSerials);
  addKnown("contentKey", machine.contentKey);
  return object.Take();
}

}  // namespace

void WriteJson(const Collection& collection, const Screen& screen, std::ostream& out) {
  std::optional<Assessment> assessment;
  if (collection.machineIsKnown) assessment = Assess(collection);
  WriteJson(collection, assessment ? &*assessment : nullptr, screen, out);
}

void WriteJson(const Collection& collection, const Assessment* assessment, const Screen& screen,
               std::ostream& out) {
  const CollectionView view(collection, ChooseAttachments(screen));
  JsonBuffer json(&WriteJsonForTerminal, out);
  json += "{\n\"format\": 1,\n\"program\": ";
  json += JsonObject().AddText("name", "pqhost").AddText("version", kVersion).Take();
  json.AppendText(",\n\"collected\": ", FormatIsoTime(collection.collected));
  json += ",\n\"machine\": ";
  json += assessment != nullptr ? FormatJsonMachine(view) : "null";
  json += ",\n\"health\": ";
  json += assessment != nullptr ? MakeHealthJson(assessment->health) : "null";
  json += ",\n\"modules\": [";
  const char* separator = "\n";
  for (const CollectedModule& module : collection.modules) {
    const auto [name, description] = view.ViewModule(module);
    json += separator;
    json += JsonObject().AddText("name", name).AddText("description", description).Take();
    separator = ",\n";
  }
  json += "\n],\n\"tables\": [";
  separator = "\n";
  for (const CollectedTable& table : collection.tables) {
    json += separator;
    AppendJsonTable(view.ViewTable(table), json);
    separator = ",\n";
  }
  json += "\n],\n\"parts\": {";
  if (assessment != nullptr) AppendJsonParts(assessment->parts, json);
  json += "},\n\"problems\": ";
  json.AppendList(collection.problems, &AppendJsonText);
  json += "\n}\n";
  json.Flush();
}

}  // namespace host
