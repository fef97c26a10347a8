#include "host/check/check_json.h"

#include "host/text/json_text.h"
#include "host/text/version.h"

namespace host {
namespace {

const char* NameState(CheckedTool::State state) {
  constexpr const char* kNames[] = {"found", "missing", "not needed", "planted"};
  return kNames[static_cast<std::size_t>(state)];
}

const char* NameKind(Finding::Kind kind) {
  constexpr const char* kNames[] = {"ok", "note", "missing"};
  return kNames[static_cast<std::size_t>(kind)];
}

const char* NamePresence(const CheckedArea& area) {
  if (area.device.empty()) return "always";
  if (!area.hasDevice) return "not known";
  return *area.hasDevice ? "yes" : "no";
}

void AppendTexts(std::string& json, const std::vector<std::string>& texts) {
  AppendJsonList(json, texts, &AppendJsonText);
}

void AppendTool(std::string& json, const CheckedTool& tool) {
  json += JsonObject()
              .AddText("program", tool.program)
              .AddText("state", NameState(tool.state))
              .AddText("path", tool.path)
              .AddText("vendor", tool.vendor)
              .AddText("product", tool.product)
              .AddText("text", tool.text)
              .Take();
}

void AppendArea(std::string& json, const CheckedArea& area) {
  const auto texts = [](const std::vector<std::string>& list) {
    return [&list](std::string& text) { AppendTexts(text, list); };
  };
  json += "\n" + JsonObject()
                     .AddText("area", area.area)
                     .Add("modules", texts(area.modules))
                     .AddText("device", area.device)
                     .AddText("hasDevice", NamePresence(area))
                     .AddText("rating", NameRating(area.rating))
                     .AddText("text", area.text)
                     .Add("tables", texts(area.tables))
                     .Add("emptyTables", texts(area.emptyTables))
                     .Add("tools",
                          [&](std::string& text) { AppendJsonList(text, area.tools, &AppendTool); })
                     .Take();
}

void AppendFinding(std::string& json, const Finding& finding) {
  json += "\n" + JsonObject()
                     .AddText("subject", finding.subject)
                     .AddText("state", NameKind(finding.kind))
                     .AddText("text", finding.text)
                     .Take();
}

}  // namespace

const char* NameRating(CheckedArea::Rating rating) {
  constexpr const char* kNames[] = {"full", "partly", "nothing", "not needed"};
  return kNames[static_cast<std::size_t>(rating)];
}

std::string WriteCheckJson(const MachineCheck& check) {
  const JsonObject program = JsonObject().AddText("name", "pqhost").AddText("version", kVersion);
  return JsonObject()
             .AddNumber("format", 1)
             .Add("program", [&](std::string& text) { text += JsonObject(program).Take(); })
             .AddFlag("complete", check.isComplete)
             .Add("areas",
                  [&](std::string& text) { AppendJsonList(text, check.areas, &AppendArea); })
             .Add("machine",
                  [&](std::string& text) { AppendJsonList(text, check.findings, &AppendFinding); })
             .Take() +
         "\n";
}

}  // namespace host
