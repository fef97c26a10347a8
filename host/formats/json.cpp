// JSON as docs/json.md describes it. Rows are written as they come, one per line, so that no table
// is in memory a second time.

#include <optional>
#include <set>

#include "host/answers/assessment.h"
#include "host/answers/machine_identity.h"
#include "host/answers/parts/part_tables.h"
#include "host/collect/table_view.h"
#include "host/formats/formats.h"
#include "host/formats/health_formats.h"
#include "host/formats/json_buffer.h"
#include "host/formats/json_document.h"
#include "host/formats/row_identity.h"
#include "host/text/json_text.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

/// Keys that differ as bytes and read the same in UTF-8.
bool HasRepeatedKeys(const TableView& table) {
  std::set<std::string_view> keys;
  for (const ColumnView& column : table.Columns()) {
    if (!keys.insert(column.key).second) return true;
  }
  return false;
}

/// The first and the last place of a key that the row has.
std::pair<std::size_t, std::size_t> FindPlaces(const RowView& row, std::string_view key) {
  std::size_t first = 0;
  while (row.CellAt(first).Key().View() != key) ++first;
  std::size_t last = row.CellCount() - 1;
  while (row.CellAt(last).Key().View() != key) --last;
  return {first, last};
}

class JsonWriter {
 public:
  JsonWriter(const Collection& collection, const Screen& screen, std::ostream& out)
      : collection(collection),
        view(collection, ChooseAttachments(screen)),
        json(&WriteJsonForTerminal, out) {}

  /// `assessment`: of a known machine.
  void WriteObject(const Assessment* assessment) {
    json += "{\n\"format\": 1,\n\"program\": ";
    json += JsonObject().AddText("name", "pqhost").AddText("version", kVersion).Take();
    json.AppendText(",\n\"collected\": ", FormatIsoTime(collection.collected));
    json += ",\n\"machine\": ";
    if (assessment != nullptr) {
      AppendMachine();
    } else {
      json += "null";
    }
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
      WriteTable(view.ViewTable(table));
      separator = ",\n";
    }
    json += "\n],\n\"parts\": {";
    if (assessment != nullptr) WriteParts(assessment->parts);
    json += "},\n\"problems\": ";
    json.AppendList(collection.problems, &AppendJsonText);
    json += "\n}\n";
    json.Flush();
  }

  void WriteLines() {
    const std::string identity = collection.machineIsKnown ? DescribeIdentity() : "";
    for (const CollectedTable& collected : collection.tables) {
      const TableView table = view.ViewTable(collected);
      const bool keysRepeat = HasRepeatedKeys(table);
      for (std::size_t i = 0; i < table.RowCount(); ++i) {
        json += "{";
        json += identity;
        json.AppendText("\"class\":", table.ClassName());
        json += ",\"row\":";
        AppendRow(table.RowAt(i), keysRepeat);
        json += "}\n";
        json.Flush();
      }
    }
  }

 private:
  /// The members that begin each line.
  std::string DescribeIdentity() const {
    const RowIdentity identity = MakeRowIdentity(collection);
    std::string object = JsonObject()
                             .AddText("machine", identity.machine)
                             .AddText("serial", identity.serial)
                             .AddText("recordedAt", identity.recordedAt)
                             .AddText("collection", identity.collection)
                             .Take();
    object.back() = ',';
    return object.substr(1);
  }

  void AppendMachine() {
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
    json += object.Take();
  }

  static std::string FormatStatus(const TableStatus& status) {
    const auto appendTexts = [](const std::vector<std::string>& texts) {
      return [&texts](std::string& json) { AppendJsonList(json, texts, &AppendJsonText); };
    };
    JsonObject object;
    object.AddText("outcome", status.outcome)
        .AddText("text", status.text)
        .Add("notes", appendTexts(status.notes));
    if (!status.missing.empty()) object.AddText("missing", status.missing);
    if (!status.oldFiles.empty()) object.AddText("oldFiles", status.oldFiles);
    if (!status.unfitLabels.empty()) object.Add("unfitLabels", appendTexts(status.unfitLabels));
    return object.Take();
  }

  void WriteTable(const TableView& table) {
    json.AppendText("{\"class\": ", table.ClassName());
    json.AppendText(",\n \"title\": ", table.Title());
    json.AppendText(",\n \"module\": ", table.Module());
    json += ",\n \"status\": ";
    json += FormatStatus(table.Status());
    json += ",\n \"layout\": ";
    AppendLayout(table);
    json += ",\n \"columns\": [";
    AppendColumns(table);
    json += "],\n \"instances\": ";
    json.AppendList(table.ListInstanceKeys(), &AppendJsonText);
    json += ",\n \"attachments\": [";
    AppendAttachments(table);
    json += "],\n \"rows\": [";
    const bool keysRepeat = HasRepeatedKeys(table);
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      json += i == 0 ? "\n  " : ",\n  ";
      AppendRow(table.RowAt(i), keysRepeat);
      json.Flush();
    }
    json += "]}";
  }

  void WriteParts(const Parts& parts) {
    const char* separator = "\n";
    for (const PartTable& table : GetPartTables()) {
      json += separator;
      json.AppendText("", table.name);
      json += ": [";
      for (std::size_t row = 0; row < table.count(parts); ++row) {
        json += row == 0 ? "\n  " : ",\n  ";
        AppendPart(table, *table.at(parts, row));
        json.Flush();
      }
      json += "]";
      separator = ",\n";
    }
    json += "\n";
  }

  void AppendPart(const PartTable& table, const Part& part) {
    char separator = '{';
    for (const PartColumn& column : table.columns) {
      json.AppendText({&separator, 1}, column.name);
      separator = ',';
      json += ":";
      const PartValue value = column.get(part);
      if (const auto* text = std::get_if<std::string_view>(&value)) {
        json.AppendText("", *text);
      } else {
        json += FormatPartValue(value, "null");
      }
    }
    json += "}";
  }

  void AppendLayout(const TableView& table) {
    const auto appendHeaders = [&](std::string& text) {
      AppendJsonList(text, table.ListHeaders(), &AppendJsonText);
    };
    const auto appendNumbers = [&](std::string& text) {
      AppendJsonNumbers(text, table.LayoutNumbers());
    };
    json += JsonObject()
                .AddText("by", table.IsByRow() ? "row" : "property")
                .Add("headers", appendHeaders)
                .Add(table.IsByRow() ? "widths" : "numbers", appendNumbers)
                .Take();
  }

  void AppendColumns(const TableView& table) {
    const char* separator = "\n  ";
    for (const ColumnView& column : table.Columns()) {
      JsonObject entry;
      entry.AddText("key", column.key).AddText("label", column.label);
      if (!column.otherLabels.empty()) {
        entry.Add("otherLabels", [&](std::string& text) {
          AppendJsonList(text, column.otherLabels, &AppendJsonText);
        });
      }
      json += separator;
      json += entry.Take();
      separator = ",\n  ";
    }
  }

  void AppendAttachments(const TableView& table) {
    const char* separator = "\n  ";
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      for (const AttachmentView& attachment : table.RowAt(i).ListAttachments()) {
        JsonObject entry;
        entry.AddNumber("row", i).AddText("key", attachment.key);
        entry.Add("attributes",
                  [&](std::string& text) { AppendPairs(text, attachment.attributes); });
        if (attachment.byteSize) entry.AddNumber("bytes", *attachment.byteSize);
        json += separator;
        json += entry.Take();
        separator = ",\n  ";
      }
    }
  }

  static void AppendPairs(std::string& text,
                          const std::vector<std::pair<DecodedText, DecodedText>>& pairs) {
    char separator = '{';
    for (const auto& [name, value] : pairs) {
      text += separator;
      AppendJsonText(text, name);
      text += ':';
      AppendJsonText(text, value);
      separator = ',';
    }
    text += '}';
  }

  /// Properties whose keys read the same are one member: where the first is, with the last's value.
  void AppendRow(const RowView& row, bool keysRepeat) {
    json += "{";
    for (std::size_t place = 0; place < row.CellCount(); ++place) {
      const DecodedText key = row.CellAt(place).Key();
      const auto [first, last] = keysRepeat ? FindPlaces(row, key) : std::pair(place, place);
      if (first != place) continue;
      json.AppendText(place > 0 ? "," : "", key);
      const CellView cell = row.CellAt(last);
      if (cell.Kind() == CellKind::kNothing) {
        json += ":null";
      } else if (cell.Kind() != CellKind::kText) {
        json += ":";
        json += cell.Text();
      } else {
        json.AppendText(":", cell.Text());
      }
    }
    json += "}";
  }

  const Collection& collection;
  CollectionView view;
  JsonBuffer json;
};

}  // namespace

void WriteJson(const Collection& collection, const Screen& screen, std::ostream& out) {
  std::optional<Assessment> assessment;
  if (collection.machineIsKnown) assessment = Assess(collection);
  WriteJson(collection, assessment ? &*assessment : nullptr, screen, out);
}

void WriteJson(const Collection& collection, const Assessment* assessment, const Screen& screen,
               std::ostream& out) {
  JsonWriter(collection, screen, out).WriteObject(assessment);
}

void WriteJsonLines(const Collection& collection, const Screen& screen, std::ostream& out) {
  JsonWriter(collection, screen, out).WriteLines();
}

}  // namespace host
