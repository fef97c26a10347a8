#include <string>
#include <string_view>

#include "host/formats/difference/difference_formats.h"
#include "host/text/json_text.h"

namespace host {
namespace {

void AddOptional(JsonObject& object, std::string_view name, const OptionalText& text,
                 PartType type = PartType::kText) {
  object.Add(name, [&](std::string& json) {
    if (!text) {
      json += "null";
    } else if (type == PartType::kText) {
      AppendJsonText(json, *text);
    } else {
      json += *text;
    }
  });
}

OptionalText Name(const std::optional<Severity>& severity) {
  if (!severity) return std::nullopt;
  return GetWord(*severity);
}

void AddSide(JsonObject& object, std::string_view name, const std::string& called,
             const ComparedSide& side) {
  object.Add(name, [&](std::string& json) {
    json += JsonObject()
                .AddText("name", called)
                .AddText("asOf", side.asOf)
                .AddText("asOfFrom", side.asOfFrom)
                .AddText("verdict", side.verdict)
                .Take();
  });
}

template <typename List, typename AppendOne>
void AddList(JsonObject& object, std::string_view name, const List& list,
             const AppendOne& appendOne) {
  object.Add(name, [&](std::string& json) { AppendJsonList(json, list, appendOne); });
}

void AppendFinding(std::string& json, const FindingDifference& one) {
  JsonObject object;
  object.AddText("rule", one.rule).AddText("part", one.part).AddText("id", one.id);
  object.AddText("serial", one.serial).AddText("change", GetWord(one.change));
  AddOptional(object, "old", Name(one.before));
  AddOptional(object, "new", Name(one.after));
  json += object.AddText("observed", one.observed).AddText("text", one.text).Take();
}

void AppendColumn(std::string& json, const ChangedColumn& column) {
  JsonObject object;
  object.AddText("column", column.column);
  AddOptional(object, "old", column.before, column.type);
  AddOptional(object, "new", column.after, column.type);
  json += object.Take();
}

void AppendPart(std::string& json, const PartDifference& part) {
  JsonObject object;
  object.AddText("part", part.table).AddText("id", part.id).AddText("serial", part.serial);
  object.AddText("change", GetWord(part.change)).AddText("state", part.state);
  AddList(object, "columns", part.columns, AppendColumn);
  json += object.Take();
}

void AppendCell(std::string& json, const CellDifference& cell) {
  JsonObject object;
  object.AddText("class", cell.className).AddText("key", cell.key).AddText("column", cell.column);
  AddOptional(object, "old", cell.before);
  AddOptional(object, "new", cell.after);
  json += object.Take();
}

void AppendReport(std::string& json, const ReportDifference& report) {
  JsonObject object;
  object.AddText("class", report.className).AddText("key", report.key);
  object.AddNumber("oldLines", report.linesOfBefore).AddNumber("newLines", report.linesOfAfter);
  json += object.Take();
}

void AddInteger(JsonObject& object, std::string_view name, const Integer& number) {
  if (number) {
    object.AddNumber(name, *number);
  } else {
    object.Add(name, [](std::string& json) { json += "null"; });
  }
}

void AppendEntry(std::string& json, const NewEntry& entry) {
  JsonObject object;
  AddInteger(object, "number", entry.number);
  object.AddText("time", entry.time);
  AddInteger(object, "level", entry.level);
  json += object.AddText("text", entry.text).Take();
}

void AppendLog(std::string& json, const LogDifference& log) {
  JsonObject object;
  object.AddText("log", log.log).AddNumber("new", log.entries.size());
  object.AddFlag("cleared", log.wasCleared);
  AddList(object, "entries", log.entries, AppendEntry);
  json += object.Take();
}

void AppendNotCompared(std::string& json, const NotCompared& one) {
  JsonObject object;
  object.AddText("what", one.what);
  object.AddText("side", one.side == DifferenceSide::kBefore ? "old" : "new");
  json += object.AddText("why", one.why).Take();
}

}  // namespace

void WriteDifferenceJson(const NamedDifference& named, const Screen& /*screen*/,
                         std::ostream& out) {
  const Difference& difference = named.difference;
  JsonObject object;
  object.AddNumber("format", 1);
  AddSide(object, "old", named.before, difference.before);
  AddSide(object, "new", named.after, difference.after);
  object.AddFlag("newIsOlder", difference.isOlder);
  object.AddFlag("otherMachine", difference.otherMachine);
  AddList(object, "findings", difference.findings, AppendFinding);
  AddList(object, "parts", difference.parts, AppendPart);
  AddList(object, "cells", difference.cells, AppendCell);
  AddList(object, "reports", difference.reports, AppendReport);
  AddList(object, "logs", difference.logs, AppendLog);
  AddList(object, "notCompared", difference.notCompared, AppendNotCompared);
  WriteJsonForTerminal(object.Take(), out);
  out << '\n';
}

}  // namespace host
