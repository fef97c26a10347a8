// JSON as docs/json.md describes it. Rows are written as they come, one per line, so that a table
// never stands in memory a second time.

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <set>

#include "host/pqhost/formats.h"
#include "host/pqhost/json_text.h"
#include "host/pqhost/row_cells.h"
#include "host/pqhost/table_sources.h"
#include "host/pqhost/text.h"
#include "host/pqhost/version.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

std::string Dump(const Json& value) { return EscapeJsonForTerminal(value.dump()); }

class JsonWriter {
 public:
  JsonWriter(const Collection& collection, std::ostream& out)
      : collection(collection), decode(collection.machine.codePage), out(out) {}

  void WriteObject() {
    const auto time = std::chrono::time_point_cast<std::chrono::seconds>(collection.collected);
    out << "{\n\"format\": 1,\n\"program\": " << Dump({{"name", "pqhost"}, {"version", kVersion}})
        << ",\n\"collected\": \"" << fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", time)
        << "\",\n\"machine\": " << Dump(Machine()) << ",\n\"modules\": [";
    const char* separator = "\n";
    for (const CollectedModule& module : collection.modules) {
      out << separator << Dump(Module(module));
      separator = ",\n";
    }
    out << "\n],\n\"tables\": [";
    separator = "\n";
    for (const CollectedTable& table : collection.tables) {
      out << separator;
      WriteTable(table);
      separator = ",\n";
    }
    out << "\n],\n\"problems\": " << Dump(Problems()) << "\n}\n";
  }

  void WriteLines() {
    for (const CollectedTable& table : collection.tables) {
      if (table.rows == nullptr) continue;
      for (const Row& row : table.rows->rows) {
        out << Dump({{"class", decode(table.className)}, {"row", RowObject(row)}}) << '\n';
      }
    }
  }

 private:
  Json Machine() const {
    const MachineFacts& machine = collection.machine;
    return {
        {"recorded", machine.recorded},          {"name", machine.name},
        {"description", machine.description},    {"languageId", machine.languageId},
        {"codePage", machine.codePage},          {"hostExecutable", decode(machine.hostExecutable)},
        {"logFolder", decode(machine.logFolder)}};
  }

  Json Problems() const {
    Json lines = Json::array();
    for (const std::string& problem : collection.problems) lines.push_back(problem);
    return lines;
  }

  Json Module(const CollectedModule& module) const {
    return {{"name", decode(module.name)}, {"description", decode(module.description)}};
  }

  void WriteTable(const CollectedTable& table) {
    static const Table kNoRows;
    const Table& rows = table.rows == nullptr ? kNoRows : *table.rows;
    out << "{\"class\": " << Dump(decode(table.className))
        << ",\n \"title\": " << Dump(decode(TitleOf(table.className)))
        << ",\n \"module\": " << Dump(decode(table.module)) << ",\n \"status\": "
        << Dump({{"outcome", table.status.outcome}, {"text", table.status.text}})
        << ",\n \"layout\": " << Dump(Layout(table.layout)) << ",\n \"columns\": ["
        << Joined(Columns(rows), "\n  ") << "],\n \"instances\": " << Dump(InstanceKeys(rows))
        << ",\n \"attachments\": [" << Joined(Attachments(rows), "\n  ") << "],\n \"rows\": [";
    const char* separator = "\n  ";
    for (const Row& row : rows.rows) {
      out << separator << Dump(RowObject(row));
      separator = ",\n  ";
    }
    out << "]}";
  }

  Json Layout(const TableLayout& layout) const {
    Json headers = Json::array();
    for (const std::string& header : layout.headers) headers.push_back(decode(header));
    if (layout.byRow) return {{"by", "row"}, {"headers", headers}, {"widths", layout.numbers}};
    return {{"by", "property"}, {"headers", headers}, {"numbers", layout.numbers}};
  }

  std::vector<Json> Columns(const Table& table) const {
    // A key keeps its first label; a row may have come with another one.
    std::map<std::string, std::vector<std::string>> labels;
    std::set<const RowShape*> shapes;
    for (const Row& row : table.rows) {
      if (!shapes.insert(row.shape).second) continue;
      for (const Column& column : row.shape->columns) {
        std::vector<std::string>& known = labels[column.key];
        if (std::find(known.begin(), known.end(), column.label) == known.end()) {
          known.push_back(column.label);
        }
      }
    }
    std::vector<Json> columns;
    for (const Column& column : table.columns) {
      Json entry = {{"key", decode(column.key)}, {"label", decode(column.label)}};
      Json others = Json::array();
      for (const std::string& label : labels[column.key]) {
        if (label != column.label) others.push_back(decode(label));
      }
      if (!others.empty()) entry["otherLabels"] = others;
      columns.push_back(std::move(entry));
    }
    return columns;
  }

  /// One key when all rows have the same, otherwise one per row.
  Json InstanceKeys(const Table& table) const {
    bool same = true;
    for (const Row& row : table.rows) {
      same = same && row.shape->instanceKey == table.rows.front().shape->instanceKey;
    }
    Json keys = Json::array();
    for (const Row& row : table.rows) {
      if (same && !keys.empty()) break;
      keys.push_back(decode(row.shape->instanceKey));
    }
    return keys;
  }

  std::vector<Json> Attachments(const Table& table) const {
    std::vector<Json> attachments;
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
      const Row& row = table.rows[i];
      if (row.shape->attributes.empty()) continue;
      // The attributes of one property stand together, in the order in which they came.
      Json byKey = Json::object();
      for (const Attribute& a : row.shape->attributes) {
        byKey[decode(a.propertyKey)][decode(a.name)] = decode(a.value);
      }
      for (const auto& [key, attributes] : byKey.items()) {
        Json entry = {{"row", i}, {"key", key}, {"attributes", attributes}};
        if (const std::string* value = FindValue(row, key)) entry["bytes"] = value->size();
        attachments.push_back(std::move(entry));
      }
    }
    return attachments;
  }

  const std::string* FindValue(const Row& row, const std::string& decodedKey) const {
    for (std::size_t i = 0; i < row.Values().size(); ++i) {
      if (decode(row.shape->columns[i].key) == decodedKey) return &row.Values()[i];
    }
    return nullptr;
  }

  Json RowObject(const Row& row) const {
    Json object = Json::object();
    for (std::size_t i = 0; i < row.Values().size(); ++i) {
      const Column& column = row.shape->columns[i];
      Json& value = object[decode(column.key)];
      if (column.isInteger) {
        value = std::stoi(row.Values()[i]);
      } else {
        value = decode(row.Values()[i]);
      }
    }
    return object;
  }

  static std::string Joined(const std::vector<Json>& values, const char* before) {
    std::string text;
    for (const Json& value : values) {
      if (!text.empty()) text += ',';
      text += before;
      text += Dump(value);
    }
    return text;
  }

  const Collection& collection;
  TextDecoder decode;
  std::ostream& out;
};

}  // namespace

void WriteJson(const Collection& collection, const Screen& /*screen*/, std::ostream& out) {
  JsonWriter(collection, out).WriteObject();
}

void WriteJsonLines(const Collection& collection, const Screen& /*screen*/, std::ostream& out) {
  JsonWriter(collection, out).WriteLines();
}

}  // namespace host
