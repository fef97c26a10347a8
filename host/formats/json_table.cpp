#include "host/formats/json_table.h"

#include <string>
#include <utility>
#include <vector>

#include "host/formats/json_rows.h"
#include "host/text/json_text.h"

namespace host {
namespace {

std::string FormatJsonStatus(const TableStatus& status) {
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

void AppendLayout(const TableView& table, JsonBuffer& json) {
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

void AppendColumns(const TableView& table, JsonBuffer& json) {
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

void AppendPairs(std::string& text, const std::vector<std::pair<DecodedText, DecodedText>>& pairs) {
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

void AppendAttachments(const TableView& table, JsonBuffer& json) {
  const char* separator = "\n  ";
  for (std::size_t i = 0; i < table.RowCount(); ++i) {
    for (const AttachmentView& attachment : table.RowAt(i).ListAttachments()) {
      JsonObject entry;
      entry.AddNumber("row", i).AddText("key", attachment.key);
      entry.Add("attributes", [&](std::string& text) { AppendPairs(text, attachment.attributes); });
      if (attachment.byteSize) entry.AddNumber("bytes", *attachment.byteSize);
      json += separator;
      json += entry.Take();
      separator = ",\n  ";
    }
  }
}

}  // namespace

void AppendJsonTable(const TableView& table, JsonBuffer& json) {
  json.AppendText("{\"class\": ", table.ClassName());
  json.AppendText(",\n \"title\": ", table.Title());
  json.AppendText(",\n \"module\": ", table.Module());
  json += ",\n \"status\": ";
  json += FormatJsonStatus(table.Status());
  json += ",\n \"layout\": ";
  AppendLayout(table, json);
  json += ",\n \"columns\": [";
  AppendColumns(table, json);
  json += "],\n \"instances\": ";
  json.AppendList(table.ListInstanceKeys(), &AppendJsonText);
  json += ",\n \"attachments\": [";
  AppendAttachments(table, json);
  json += "],\n \"rows\": [";
  const JsonRows rows(table);
  for (std::size_t i = 0; i < table.RowCount(); ++i) {
    json += i == 0 ? "\n  " : ",\n  ";
    rows.Append(i, json);
    json.Flush();
  }
  json += "]}";
}

}  // namespace host
