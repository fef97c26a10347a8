#include "host/answers/difference/side.h"

#include <algorithm>
#include <utility>

#include "host/answers/columns_fit.h"
#include "host/answers/difference/compared.h"
#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"

namespace host {
namespace {

/// Sources by the letters that the ids of their parts begin with.
constexpr std::pair<std::string_view, std::string_view> kSourcesOfIds[] = {
    {"lsi", "lsi"}, {"mchp", "microchip"}, {"intel", "intel"}, {"sas", "sas2"}};

/// Sources of tables whose ids are names.
constexpr std::pair<std::string_view, std::string_view> kSourcesOfTables[] = {
    {"sensors", "sensors"}, {"power_supplies", "power supplies"}, {"leds", "leds"}};

/// Sources of classes.
constexpr std::pair<std::string_view, std::string_view> kSourcesOfClasses[] = {
    {"RAIDINFO", "lsi"},      {"PDLIST", "lsi"},         {"PINFO", "lsi"},
    {"TINFO", "lsi"},         {"VINFO", "lsi"},          {"LSILINK", "lsi"},
    {"PMCINFO", "microchip"}, {"PMCLINK", "microchip"},  {"PMCVER", "microchip"},
    {"CONTROLLER", "intel"},  {"ARRAY", "intel"},        {"ENDDEVICEINFO", "intel"},
    {"VOLUME", "intel"},      {"SENSORINFO", "sensors"}, {"SDRINFO", "sensors"},
    {"SELINFO", "sel"},       {"FRUINFO", "fru"},        {"PSUINFO", "power supplies"},
    {"LEDINFO", "leds"},      {"AMTLOG", "amt"},         {"SAS2IRLOG", "sas2"},
};

template <typename Pairs>
std::string_view FindSecond(const Pairs& pairs, std::string_view first) {
  for (const auto& [one, second] : pairs) {
    if (one == first) return second;
  }
  return {};
}

constexpr std::string_view kFormer = "former ";

/// The id of the source of a part; empty for what has none.
std::string_view FindSourceId(std::string_view table, std::string_view id) {
  if (table == "sources") return id;
  if (id.starts_with(kFormer)) id.remove_prefix(kFormer.size());
  if (const std::string_view source = FindSecond(kSourcesOfTables, table); !source.empty()) {
    return source;
  }
  return FindSecond(kSourcesOfIds, id.substr(0, id.find_first_of("0123456789 ")));
}

/// With a line the property is a whole report on one controller.
bool IsOfReport(const Place& place) { return !place.className.empty() && place.line > 0; }

std::string_view GetFirstWord(std::string_view text) { return text.substr(0, text.find(' ')); }

/// What a part was read from, as far as it can fail to tell by itself.
std::string NameOrigin(std::string_view id, const Place& place) {
  if (place.className.empty()) return place.tool;
  if (!IsOfReport(place)) return place.className;
  return place.className + ' ' + place.key + ' ' + std::string(GetFirstWord(id));
}

/// Whether a tool, called as in Place, was not run, or there is no answer of it. What it printed is
/// not always known.
bool WasNotAnswered(const Collection& collection, std::string_view tool) {
  constexpr std::pair<std::string_view, std::string_view> kPrograms[] = {
      {"storcli", "storcli.exe"}, {"ipmiutil", "ipmiutilnh.exe"}};
  const std::string_view program = FindSecond(kPrograms, GetFirstWord(tool));
  if (program.empty() || collection.answers.empty()) return false;
  const std::string_view arguments =
      tool.substr(std::min(GetFirstWord(tool).size() + 1, tool.size()));
  return CollectedRows(collection).FindAnswer(program, arguments) == nullptr;
}

/// Controllers by their serial numbers, where only one has it.
std::unordered_map<std::string_view, const Controller*> MapBySerial(const Parts& parts) {
  std::unordered_map<std::string_view, const Controller*> bySerial;
  for (const Controller& one : parts.controllers) {
    if (!IsUsableSerial(one.serial)) continue;
    const auto [known, isNew] = bySerial.emplace(one.serial, &one);
    if (!isNew) known->second = nullptr;
  }
  return bySerial;
}

}  // namespace

Renaming::Renaming(const Parts& before, const Parts& after) {
  const auto bySerial = MapBySerial(after);
  std::unordered_set<std::string_view> taken;
  for (const auto& [serial, old] : MapBySerial(before)) {
    const auto found = bySerial.find(serial);
    if (old == nullptr || found == bySerial.end() || found->second == nullptr) continue;
    taken.insert(found->second->id);
    names.emplace(old->id, found->second->id);
  }
  for (const Controller& one : before.controllers) {
    if (!names.contains(one.id) && taken.contains(one.id)) {
      names.emplace(one.id, std::string(kFormer) + one.id);
    }
  }
}

std::string Renaming::Rename(std::string_view id) const {
  const std::string_view controller = GetFirstWord(id);
  const auto found = names.find(std::string(controller));
  if (found == names.end()) return std::string(id);
  return found->second + std::string(id.substr(controller.size()));
}

Side::Side(const AssessedCollection& assessed, DifferenceSide side)
    : assessed(assessed), side(side) {
  for (const CollectedTable& table : assessed.collection.tables) {
    tables.emplace(table.className, &table);
  }
  const auto add = [&](const Part& part) {
    origins.insert(NameOrigin(part.id, part.readAt));
    for (const ColumnPlace& column : part.columnPlaces) {
      origins.insert(NameOrigin(part.id, column.place));
    }
  };
  for (const PartTable& table : GetPartTables()) {
    if (FindComparedPart(table.name) == nullptr) continue;
    const std::size_t count = table.count(GetParts());
    for (std::size_t i = 0; i < count; ++i) add(*table.at(GetParts(), i));
  }
  for (const Event& event : GetParts().events) add(event);
}

std::string Side::FindWhyUntold(std::string_view table, std::string_view id,
                                const Place& place) const {
  // What a log tells of a sensor is not read where sensors are.
  std::string_view sourceId = FindSecond(kSourcesOfClasses, place.className);
  if (sourceId.empty()) sourceId = FindSourceId(table, id);
  const PartSource* source = FindSource(sourceId);
  if (source != nullptr && !HasRead(*source, id)) return FindWhySourceUnread(*source);
  // All of its classes are made of one report.
  if (sourceId == "intel") return {};
  // Of each of its controllers there is a report.
  if (sourceId == "microchip" && source != nullptr && source->state == "read" &&
      !HasController(GetFirstWord(id))) {
    return {};
  }
  return FindWhyOriginUnread(id, place);
}

std::string Side::FindWhyNoEntries(const Side& teller, const Place& place) const {
  if (place.className.empty()) return {};
  const std::string_view id = FindSecond(kSourcesOfClasses, place.className);
  const PartSource* own = FindSource(id);
  const PartSource* others = teller.FindSource(id);
  // What went wrong on both sides alike was no obstacle to reading the entries.
  const bool isAlike = own != nullptr && others != nullptr && own->state == others->state &&
                       own->observed == others->observed;
  if (own != nullptr && own->state != "read" && !isAlike) return FindWhySourceUnread(*own);
  return FindWhyWithoutRows(place.className);
}

std::string Side::FindWhyUnread(std::string_view className) const {
  const PartSource* source = FindSource(FindSecond(kSourcesOfClasses, className));
  if (source != nullptr && source->state == "failed" && !source->lacksControllersOnly) {
    return FindWhySourceUnread(*source);
  }
  return FindWhyWithoutRows(className);
}

std::string Side::FindWhyLogEmpty(const Event& entry) const {
  if (entry.source == "LSI") {
    if (!HasController(entry.controller)) return "there is no controller " + entry.controller;
    const auto found = tables.find("EVENTLOG1");
    if (found != tables.end() && found->second->RowCount() == 0) return found->second->status.text;
  }
  return "it shows no entry";
}

bool Side::SaysNone(std::string_view className) const {
  const PartSource* source = FindSource(FindSecond(kSourcesOfClasses, className));
  return source != nullptr && source->saysNone;
}

std::vector<std::string> Side::ListUnfitLabels(std::string_view className) const {
  const auto found = tables.find(className);
  if (found == tables.end()) return {};
  const TableStatus& status = found->second->status;
  // A result of an earlier pqhost tells that columns do not fit, not which.
  const bool isTold = std::ranges::any_of(
      status.notes, [](const std::string& note) { return note.starts_with(kUnfitNote); });
  return status.unfitLabels.empty() && isTold ? std::vector<std::string>{kAnyLabel}
                                              : status.unfitLabels;
}

bool Side::IsSourceRead(std::string_view table, std::string_view id) const {
  const PartSource* source = FindSource(FindSourceId(table, id));
  return source == nullptr || HasRead(*source, id);
}

bool Side::HasRead(const PartSource& source, std::string_view id) const {
  return source.state == "read" || (source.lacksControllersOnly && HasController(GetFirstWord(id)));
}

std::string Side::NameSource(std::string_view table, std::string_view id) const {
  const std::string_view source = FindSourceId(table, id);
  return std::string(source.empty() ? std::string_view("the BMC") : source);
}

const PartSource* Side::FindSource(std::string_view id) const {
  const PartList<PartSource>& sources = GetParts().sources;
  const auto found = std::ranges::find(sources, id, &PartSource::id);
  return found == sources.end() ? nullptr : &*found;
}

std::string Side::FindWhySourceUnread(const PartSource& source) const {
  if (source.saysNone) return {};
  return source.observed.empty() ? "it could not be read" : source.observed;
}

std::string Side::FindWhyWithoutRows(std::string_view className) const {
  const auto found = tables.find(className);
  if (found == tables.end()) return "not collected";
  const TableStatus& status = found->second->status;
  return found->second->RowCount() == 0 ? status.text : status.missing;
}

std::string Side::FindWhyOriginUnread(std::string_view id, const Place& place) const {
  if (place.className.empty() && place.tool.empty()) return {};  // Nobody knows where it was read.
  if (!place.className.empty()) {
    if (std::string why = FindWhyWithoutRows(place.className); !why.empty()) return why;
  }
  if (origins.contains(NameOrigin(id, place))) return {};
  if (place.className == "LSILINK" && !HasController(GetFirstWord(id)) &&
      TellsAllLsiControllers()) {
    return {};
  }
  if (WasNotAnswered(assessed.collection, place.tool)) return place.tool + " has no answer";
  return (place.tool.empty() ? place.className : place.tool) + " told nothing that is understood";
}

bool Side::HasController(std::string_view id) const {
  return std::ranges::find(GetParts().controllers, id, &Controller::id) !=
         GetParts().controllers.end();
}

//   Controller Count = 2
bool Side::TellsAllLsiControllers() const {
  const std::int64_t told = std::ranges::count_if(
      GetParts().controllers,
      [](const Controller& one) { return FindSourceId("controllers", one.id) == "lsi"; });
  const CollectedRows rows(assessed.collection);
  for (const CollectedAnswer* answer : rows.ListAnswers("storcli.exe", "show ctrlcount")) {
    ReportLine line;
    for (ReportLines lines(answer->fileText.Text()); lines.Next(line);) {
      const auto split = SplitLabel(line.text, '=');
      if (!split || split->label != "Controller Count") continue;
      return ReadInteger(split->value) == told;
    }
  }
  return false;
}

}  // namespace host
