// The report: one HTML file with everything in it, which opens offline. The page is drawn by its
// own script (host/pqhost/report/) from a data block; texts of tools are only ever in that block.

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <random>
#include <set>

#include "host/pqhost/formats.h"
#include "host/pqhost/report_page.h"
#include "host/pqhost/row_cells.h"
#include "host/pqhost/table_sources.h"
#include "host/pqhost/text.h"
#include "host/pqhost/tool_versions.h"
#include "host/pqhost/version.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

/// Above this a table that asks for one property per line is shown by rows: nobody reads that many
/// rows side by side.
constexpr std::size_t kMaxPropertyRows = 4;

/// JSON that can stand inside a script element: the only place where the report escapes texts. No
/// text can end the element, open another or start a comment in it.
std::string ScriptJson(const Json& value) {
  const std::string json = value.dump();
  std::string text;
  text.reserve(json.size());
  for (const char c : json) {
    if (c == '<') {
      text += "\\u003c";
    } else if (c == '>') {
      text += "\\u003e";
    } else {
      text += c;
    }
  }
  return text;
}

/// Nobody who wrote the data can have known it.
std::string MakeNonce() {
  std::random_device random;
  std::string nonce;
  for (int i = 0; i < 4; ++i) nonce += fmt::format("{:08x}", random());
  return nonce;
}

class ReportData {
 public:
  ReportData(const Collection& collection, std::ostream& out)
      : collection(collection), decode(collection.machine.codePage), out(out) {}

  void Write() {
    out << "{\"title\":" << ScriptJson(Title()) << ",\"facts\":" << ScriptJson(Facts())
        << ",\"outcome\":" << ScriptJson(Outcome()) << ",\"notes\":" << ScriptJson(Notes())
        << ",\"footer\":" << ScriptJson(fmt::format("Made by pqhost {}.", kVersion))
        << ",\"modules\":[";
    const char* separator = "";
    for (const CollectedModule& module : collection.modules) {
      out << separator << "{\"name\":" << ScriptJson(decode(module.name))
          << ",\"description\":" << ScriptJson(decode(module.description)) << ",\"tables\":[";
      separator = "";
      for (const CollectedTable& table : collection.tables) {
        if (table.module != module.name) continue;
        out << separator;
        WriteTable(table);
        separator = ",\n";
      }
      out << "]}";
      separator = ",\n";
    }
    out << "]}";
  }

 private:
  std::string Title() const {
    const MachineFacts& machine = collection.machine;
    if (!machine.name.empty()) return machine.name;
    return machine.description.empty() ? "Server" : machine.description;
  }

  Json Facts() const {
    const MachineFacts& machine = collection.machine;
    const auto time = std::chrono::time_point_cast<std::chrono::seconds>(collection.collected);
    Json facts = Json::array();
    const auto add = [&](const char* name, const std::string& value) {
      if (!value.empty()) facts.push_back({name, value});
    };
    if (!machine.name.empty()) add("System", machine.description);
    add("Collected", fmt::format("{:%Y-%m-%d %H:%M:%S} UTC", time));
    add("From", machine.recorded ? "a recording" : "this machine, live");
    add("Language", std::to_string(machine.languageId));
    add("Code page", std::to_string(machine.codePage));
    add("Host program", decode(machine.hostExecutable));
    for (const ToolVersion& tool : FindToolVersions(collection)) {
      add(tool.tool.c_str(), decode(tool.version));
    }
    return facts;
  }

  std::string Outcome() const {
    std::size_t filled = 0;
    std::size_t rows = 0;
    for (const CollectedTable& table : collection.tables) {
      if (table.RowCount() > 0) ++filled;
      rows += table.RowCount();
    }
    return fmt::format("{} of {} tables with {} rows", filled, collection.tables.size(), rows);
  }

  Json Notes() const {
    Json notes = Json::array();
    for (const std::string& problem : collection.problems) notes.push_back(problem);
    return notes;
  }

  void WriteTable(const CollectedTable& table) {
    static const Table kNoRows;
    const Table& rows = table.rows == nullptr ? kNoRows : *table.rows;
    const std::set<std::string> attached = AttachedKeys(rows);
    std::vector<std::size_t> shown;
    Json columns = Json::array();
    for (std::size_t i = 0; i < rows.columns.size(); ++i) {
      const Column& column = rows.columns[i];
      if (attached.contains(column.key)) continue;
      shown.push_back(i);
      columns.push_back({{"key", decode(column.key)}, {"label", decode(column.label)}});
    }
    out << "{\"class\":" << ScriptJson(decode(table.className))
        << ",\"title\":" << ScriptJson(decode(TitleOf(table.className)))
        << ",\"kind\":" << ScriptJson(Kind(table, shown.size()))
        << ",\"status\":" << ScriptJson(table.status.text) << ",\"rowCount\":" << rows.rows.size()
        << ",\"columns\":" << ScriptJson(columns) << ",\"attachments\":[";
    WriteAttachments(rows, attached);
    out << "],\"rows\":[";
    const char* separator = "";
    RowCells cells(rows);
    for (const Row& row : rows.rows) {
      if (shown.empty()) break;
      const std::vector<std::size_t>& places = cells.PlacesIn(row);
      Json values = Json::array();
      for (const std::size_t column : shown) {
        const std::size_t place = places[column];
        values.push_back(place == RowCells::kMissing ? Json() : Json(decode(row.Values()[place])));
      }
      out << separator << ScriptJson(values);
      separator = ",\n";
    }
    out << "]}";
  }

  static const char* Kind(const CollectedTable& table, std::size_t columnCount) {
    if (columnCount == 1 && table.RowCount() > 1) return "log";
    return !table.layout.byRow && table.RowCount() <= kMaxPropertyRows ? "properties" : "rows";
  }

  static std::set<std::string> AttachedKeys(const Table& table) {
    std::set<std::string> keys;
    std::set<const RowShape*> seen;
    for (const Row& row : table.rows) {
      if (!seen.insert(row.shape).second) continue;
      for (const Column& column : row.shape->columns) {
        if (IsAttachment(*row.shape, column.key)) keys.insert(column.key);
      }
    }
    return keys;
  }

  void WriteAttachments(const Table& table, const std::set<std::string>& attached) {
    if (attached.empty()) return;
    const char* separator = "";
    for (const Row& row : table.rows) {
      for (std::size_t i = 0; i < row.Values().size(); ++i) {
        const Column& column = row.shape->columns[i];
        if (!attached.contains(column.key)) continue;
        const std::string* name = FindAttribute(*row.shape, column.key, "filename");
        out << separator
            << ScriptJson({{"label", decode(column.label)},
                           {"filename", decode(name == nullptr ? column.key : *name)},
                           {"text", decode(row.Values()[i])}});
        separator = ",\n";
      }
    }
  }

  const Collection& collection;
  TextDecoder decode;
  std::ostream& out;
};

}  // namespace

void WriteHtml(const Collection& collection, const Screen& /*screen*/, std::ostream& out) {
  const std::string nonce = MakeNonce();
  std::string_view page = kReportPage;
  for (std::size_t at = 0; (at = page.find('@')) != std::string_view::npos;) {
    out << page.substr(0, at);
    page.remove_prefix(at);
    const std::string_view place = page.substr(0, page.find('@', 1) + 1);
    page.remove_prefix(place.size());
    if (place == "@NONCE@") {
      out << nonce;
    } else if (place == "@STYLE@") {
      out << kReportStyle;
    } else if (place == "@SCRIPT@") {
      out << kReportScript;
    } else if (place == "@DATA@") {
      ReportData(collection, out).Write();
    }
  }
  out << page;
}

}  // namespace host
