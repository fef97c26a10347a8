#include <string>

#include "host/formats/health_formats.h"
#include "host/formats/health_words.h"
#include "host/text/ascii.h"
#include "host/text/json_text.h"

namespace host {
namespace {

void AppendPlace(std::string& json, const Place& place) {
  JsonObject object;
  object.AddText("tool", place.tool).AddText("class", place.className);
  object.AddNumber("row", place.row).AddText("key", place.key).AddNumber("line", place.line);
  json += object.Take();
}

void AppendHit(std::string& json, const HealthHit& hit) {
  JsonObject object;
  object.AddText("rule", hit.rule).AddText("severity", GetWord(hit.severity));
  object.AddText("part", hit.part).AddText("id", hit.id).AddText("serial", hit.serial);
  object.AddText("area", hit.area).AddText("observed", hit.observed).AddText("text", hit.text);
  if (hit.suppressed) {
    object.AddText("suppressed", GetWord(*hit.suppressed)).AddText("reason", hit.reason);
  }
  object.Add("because", [&](std::string& list) {
    AppendJsonList(list, hit.because,
                   [](std::string& text, const std::string& id) { AppendJsonText(text, id); });
  });
  object.Add("place", [&](std::string& text) { AppendPlace(text, hit.place); });
  json += object.Take();
}

void AppendFinding(std::string& json, const HealthFinding& finding) {
  const HealthHit& title = finding.hits.front();
  JsonObject object;
  object.AddText("key", finding.key).AddText("severity", GetWord(finding.severity));
  object.AddText("area", title.area).AddText("part", title.part).AddText("id", title.id);
  object.AddText("serial", title.serial).AddText("rule", title.rule);
  object.AddText("observed", title.observed).AddText("text", title.text);
  object.AddText("why", title.why).AddText("next", title.next);
  object.Add("evidence", [&](std::string& list) { AppendJsonList(list, finding.hits, AppendHit); });
  json += object.Take();
}

void AppendSource(std::string& json, const PartSource& source) {
  JsonObject object;
  object.AddText("id", source.id).AddText("state", source.state);
  object.AddText("observed", source.observed);
  json += object.Take();
}

void AppendMachine(std::string& json, const JudgedMachine& one) {
  JsonObject object;
  object.AddText("machine", one.machine);
  object.AddText("name", one.name).AddText("serial", one.serial);
  object.AddText("recordedAt", one.recordedAt);
  object.Add("health", [&](std::string& text) { text += MakeHealthJson(one.health); });
  json += object.Take();
}

}  // namespace

std::string MakeHealthJson(const Health& health) {
  JsonObject object;
  object.AddNumber("format", 1).AddText("asOf", health.asOf).AddText("asOfFrom", health.asOfFrom);
  object.AddText("verdict", LowerCase(GetVerdict(health))).AddNumber("exit", GetExitCode(health));
  object.Add("counts", [&](std::string& text) {
    JsonObject counts;
    for (const Severity severity : kWorstFirst) {
      counts.AddNumber(GetWord(severity), CountFindings(health, severity));
    }
    text += counts.Take();
  });
  object.Add("checked", [&](std::string& text) {
    JsonObject counts;
    for (const auto& [table, count] : health.checked) counts.AddNumber(table, count);
    text += counts.Take();
  });
  object.Add("sources",
             [&](std::string& text) { AppendJsonList(text, health.sources, AppendSource); });
  object.Add("findings",
             [&](std::string& text) { AppendJsonList(text, health.findings, AppendFinding); });
  return object.Take();
}

void WriteHealthJson(const Health& health, std::ostream& out) {
  WriteJsonForTerminal(MakeHealthJson(health) + '\n', out);
}

void WriteHealthJson(const std::vector<JudgedMachine>& machines, std::ostream& out) {
  const Severity worst = FindWorst(machines);
  JsonObject object;
  object.AddNumber("format", 1).AddText("verdict", LowerCase(GetVerdict(worst)));
  object.AddNumber("exit", GetExitCode(worst));
  object.Add("counts", [&](std::string& text) {
    JsonObject counts;
    for (const Severity severity : kWorstFirst) {
      counts.AddNumber(LowerCase(GetVerdict(severity)), CountMachines(machines, severity));
    }
    text += counts.Take();
  });
  object.Add("machines", [&](std::string& text) { AppendJsonList(text, machines, AppendMachine); });
  WriteJsonForTerminal(object.Take() + '\n', out);
}

}  // namespace host
