// Reads what json.cpp writes.

#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/formats/collection_builder.h"
#include "host/formats/kept_collection.h"
#include "host/text/decoder.h"
#include "host/text/time_text.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;
/// Of an object, whose members are found one after the other; no row has as many properties.
constexpr std::size_t kMostMembers = 10'000;

[[noreturn]] void RefuseMember(std::string_view name) {
  throw std::runtime_error(
      fmt::format("is not as pqhost writes it: \"{}\" is missing or of another kind", name));
}

/// The member `name` of an object; null without one.
const Json* FindMember(const Json& object, const char* name) {
  const auto found = object.find(name);
  return found == object.end() ? nullptr : &*found;
}

std::string TakeText(const Json& object, const char* name) {
  const Json* member = FindMember(object, name);
  if (member == nullptr || !member->is_string()) RefuseMember(name);
  return member->get<std::string>();
}

/// Empty where nobody knew it.
std::string TakeKnownText(const Json& object, const char* name) {
  return FindMember(object, name) == nullptr ? std::string() : TakeText(object, name);
}

std::uint32_t TakeNumber(const Json& object, const char* name) {
  const Json* member = FindMember(object, name);
  if (member == nullptr || !member->is_number_unsigned()) RefuseMember(name);
  return static_cast<std::uint32_t>(member->get<std::uint64_t>());
}

const Json& TakeArray(const Json& object, const char* name) {
  const Json* member = FindMember(object, name);
  if (member == nullptr || !member->is_array()) RefuseMember(name);
  return *member;
}

const Json& TakeObject(const Json& object, const char* name) {
  const Json* member = FindMember(object, name);
  if (member == nullptr || !member->is_object()) RefuseMember(name);
  return *member;
}

std::vector<std::string> TakeTexts(const Json& object, const char* name) {
  std::vector<std::string> texts;
  for (const Json& text : TakeArray(object, name)) {
    if (!text.is_string()) RefuseMember(name);
    texts.push_back(text.get<std::string>());
  }
  return texts;
}

LocalTime TakeTime(const Json& object, const char* name) {
  const std::optional<LocalTime> time = ParseIsoTime(TakeText(object, name));
  if (!time) RefuseMember(name);
  return *time;
}

MachineFacts ReadMachine(const Json& machine) {
  MachineFacts facts;
  const Json* recorded = FindMember(machine, "recorded");
  if (recorded == nullptr || !recorded->is_boolean()) RefuseMember("recorded");
  facts.recorded = recorded->get<bool>();
  facts.name = TakeText(machine, "name");
  facts.description = TakeText(machine, "description");
  facts.languageId = TakeNumber(machine, "languageId");
  facts.codePage = kUtf8CodePage;
  facts.toolCodePage = TakeNumber(machine, "codePage");
  facts.hostExecutable = TakeText(machine, "hostExecutable");
  facts.logFolder = TakeText(machine, "logFolder");
  if (FindMember(machine, "recordedAt") != nullptr) {
    facts.recordedAt = TakeTime(machine, "recordedAt");
  }
  facts.system = TakeKnownText(machine, "system");
  facts.maker = TakeKnownText(machine, "maker");
  facts.product = TakeKnownText(machine, "product");
  facts.serials = TakeTexts(machine, "serials");
  facts.contentKey = TakeKnownText(machine, "contentKey");
  return facts;
}

TableLayout ReadLayout(const Json& layout) {
  TableLayout read{.byRow = TakeText(layout, "by") == "row",
                   .headers = TakeTexts(layout, "headers"),
                   .numbers = {}};
  for (const Json& number : TakeArray(layout, read.byRow ? "widths" : "numbers")) {
    if (!number.is_number_unsigned()) RefuseMember("layout");
    read.numbers.push_back(number.get<std::uint64_t>());
  }
  return read;
}

/// The attributes of each row that has some.
std::map<std::uint32_t, std::vector<Attribute>> ReadAttachments(const Json& table) {
  std::map<std::uint32_t, std::vector<Attribute>> attributes;
  for (const Json& attachment : TakeArray(table, "attachments")) {
    const std::string key = TakeText(attachment, "key");
    std::vector<Attribute>& ofRow = attributes[TakeNumber(attachment, "row")];
    for (const auto& [name, value] : TakeObject(attachment, "attributes").items()) {
      if (!value.is_string()) RefuseMember("attributes");
      ofRow.push_back({key, name, value.get<std::string>()});
    }
  }
  return attributes;
}

/// The value of a cell as a text, and its kind.
std::pair<CellKind, std::string> ReadCell(const Json& value) {
  if (value.is_string()) return {CellKind::kText, value.get<std::string>()};
  if (value.is_null()) return {CellKind::kNothing, {}};
  if (value.is_number_float()) return {CellKind::kReal, value.dump()};
  if (!value.is_number()) RefuseMember("rows");
  return {CellKind::kInteger, value.dump()};
}

void ReadRows(const Json& table, const std::string& className,
              const std::map<std::string, std::string>& labels, CollectionBuilder& builder) {
  const std::vector<std::string> instances = TakeTexts(table, "instances");
  const std::map<std::uint32_t, std::vector<Attribute>> attributes = ReadAttachments(table);
  std::uint32_t number = 0;
  for (const Json& row : TakeArray(table, "rows")) {
    if (!row.is_object()) RefuseMember("rows");
    RowShape shape;
    shape.className = className;
    if (!instances.empty()) {
      const std::size_t place = instances.size() == 1 ? 0 : number;
      if (place >= instances.size()) RefuseMember("instances");
      shape.instanceKey = instances[place];
    }
    std::vector<std::string> values;
    for (const auto& [key, value] : row.items()) {
      auto [kind, text] = ReadCell(value);
      const auto label = labels.find(key);
      shape.columns.push_back({.key = key,
                               .label = label == labels.end() ? std::string() : label->second,
                               .kind = kind});
      values.push_back(std::move(text));
    }
    if (const auto found = attributes.find(number); found != attributes.end()) {
      shape.attributes = found->second;
    }
    builder.AddRow(shape, values);
    ++number;
  }
}

TableStatus ReadStatus(const Json& status) {
  TableStatus read{.outcome = TakeText(status, "outcome"),
                   .text = TakeText(status, "text"),
                   .notes = TakeTexts(status, "notes"),
                   .missing = TakeKnownText(status, "missing"),
                   .oldFiles = TakeKnownText(status, "oldFiles")};
  if (FindMember(status, "unfitLabels") != nullptr) {
    read.unfitLabels = TakeTexts(status, "unfitLabels");
  }
  return read;
}

void ReadTable(const Json& table, CollectionBuilder& builder) {
  CollectedTable read{.className = TakeText(table, "class"),
                      .module = TakeText(table, "module"),
                      .layout = ReadLayout(TakeObject(table, "layout")),
                      .status = ReadStatus(TakeObject(table, "status"))};
  std::map<std::string, std::string> labels;
  for (const Json& column : TakeArray(table, "columns")) {
    std::string key = TakeText(column, "key");
    std::string label = TakeText(column, "label");
    read.columns.push_back({.key = key, .label = label, .text = {}});
    labels.emplace(std::move(key), std::move(label));
  }
  const std::string className = read.className;
  builder.AddTable(std::move(read));
  ReadRows(table, className, labels, builder);
}

PartValue ReadPartValue(const Json* value, PartType type) {
  if (value == nullptr || value->is_null()) return {};
  if (value->is_string() && type == PartType::kText) {
    return std::string_view(value->get_ref<const std::string&>());
  }
  if (value->is_number_integer() && type != PartType::kText) return value->get<std::int64_t>();
  if (value->is_number_float() && type == PartType::kReal) return value->get<double>();
  RefuseMember("parts");
}

void ReadParts(const Json& parts, CollectionBuilder& builder) {
  for (const PartTable& table : GetPartTables()) {
    const std::string name(table.name);
    if (FindMember(parts, name.c_str()) == nullptr) continue;
    for (const Json& part : TakeArray(parts, name.c_str())) {
      if (!part.is_object()) RefuseMember(name);
      builder.AddPart(table, [&](const PartColumn& column) {
        return ReadPartValue(FindMember(part, std::string(column.name).c_str()), column.type);
      });
    }
  }
}

/// Throws std::runtime_error for what is no JSON, and for what would take too long.
Json Parse(std::string_view text) {
  std::vector<std::size_t> members;  // of the objects that are open
  const auto follow = [&](int /*depth*/, Json::parse_event_t event, Json& /*parsed*/) {
    if (event == Json::parse_event_t::object_start) members.push_back(0);
    if (event == Json::parse_event_t::object_end && !members.empty()) members.pop_back();
    if (event == Json::parse_event_t::key && ++members.back() > kMostMembers) {
      throw std::runtime_error("is not as pqhost writes it: an object has too many members");
    }
    return true;
  };
  try {
    return Json::parse(text, follow);
  } catch (const Json::parse_error& error) {
    throw std::runtime_error(
        fmt::format("is damaged or not whole: no JSON at byte {}", error.byte));
  }
}

}  // namespace

Collection ReadJsonCollection(std::string_view json) {
  const Json document = Parse(json);
  if (!document.is_object() || FindMember(document, "tables") == nullptr ||
      FindMember(document, "machine") == nullptr) {
    throw std::runtime_error("is JSON, but no collection");
  }
  if (const std::uint32_t format = TakeNumber(document, "format"); format != kFormat) {
    throw std::runtime_error(
        fmt::format("has the format {}, which this pqhost does not know", format));
  }
  CollectionBuilder builder;
  Collection& collection = builder.Get();
  collection.collected = TakeTime(document, "collected").time;
  collection.machineIsKnown = !FindMember(document, "machine")->is_null();
  if (collection.machineIsKnown) collection.machine = ReadMachine(TakeObject(document, "machine"));
  for (const Json& module : TakeArray(document, "modules")) {
    collection.modules.push_back({TakeText(module, "name"), TakeText(module, "description")});
  }
  for (const Json& table : TakeArray(document, "tables")) ReadTable(table, builder);
  ReadParts(TakeObject(document, "parts"), builder);
  collection.problems = TakeTexts(document, "problems");
  return builder.Take();
}

}  // namespace host
