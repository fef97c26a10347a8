// What holds for the parts of every machine without LSI controllers, whatever its tools print.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/answers/parts/report_lines.h"
#include "host/collect/collect.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"

namespace test {

inline std::string GetLine(std::string_view text, std::int64_t number) {
  host::ReportLines lines(text);
  for (host::ReportLine line; lines.Next(line);) {
    if (line.number == number) return std::string(line.text);
  }
  return {};
}

/// All that is printed at `place`: its cell or a line of it; of a text that no cell has, that line
/// of every answer and of every file.
inline std::vector<std::string> ListTexts(const host::Collection& collection,
                                          const host::Place& place) {
  const host::TextDecoder decode(collection.machine.codePage);
  std::vector<std::string> texts;
  if (place.className.empty()) {
    for (const host::CollectedAnswer& answer : collection.answers) {
      texts.push_back(GetLine(decode(answer.output), place.line));
      texts.push_back(GetLine(decode(answer.fileText), place.line));
    }
    for (const auto& [path, text] : collection.files) {
      texts.push_back(GetLine(decode(text), place.line));
    }
    return texts;
  }
  const host::CollectedRows all(collection);
  const auto rows = all.ListRows(place.className);
  const auto text = rows[static_cast<std::size_t>(place.row) - 1].FindText(place.key);
  if (text) {
    texts.push_back(place.line == 0 ? std::string(text->View())
                                    : GetLine(text->View(), place.line));
  }
  return texts;
}

/// Columns whose values are printed as they are, or in other case; the others are made of what is
/// printed, and so are these of some tables.
inline const std::set<std::string_view> kColumnsAsPrinted{
    "model",
    "serial",
    "firmware",
    "status",
    "cache_status",
    "cache_reason",
    "interface",
    "name",
    "level",
    "cache",
    "initialized",
    "product",
    "location",
    "failed_stripes",
    "smart_alert",
    "failure_reason",
    "member_state",
    "state",
    "text",
    "colour",
    "media_errors",
    "temperature_word",
    "predictive_failures",
    "other_errors",
    "drives_defunct",
    "temperature",
};
inline bool IsAsPrinted(std::string_view table, std::string_view column) {
  if (table == "sources") return false;
  if (table == "events" && column == "level") return false;         // of a word
  if (table == "enclosures" && column == "state") return false;     // of several lines
  if (table == "power_supplies" && column == "text") return false;  // of several lines
  if (table == "self_tests" && column == "text") return false;      // of several lines
  if (table == "sensors") return column == "status";
  return kColumnsAsPrinted.contains(column);
}

inline bool IsUtf8(const host::PartValue& value) {
  const auto* text = std::get_if<std::string_view>(&value);
  return text == nullptr || host::CleanUtf8(*text) == *text;
}

inline std::string Print(const host::PartValue& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return std::string(*text);
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  const double number = std::get<double>(value);
  return std::to_string(static_cast<long>(std::floor(std::abs(number))));
}

/// One blank between words, in lower case.
inline std::string Simplify(std::string_view text) {
  std::string simple;
  for (const std::string_view word : host::ListWords(text)) simple.append(word).append(" ");
  return host::LowerCase(simple.substr(0, simple.empty() ? 0 : simple.size() - 1));
}

inline bool IsWhereItWasRead(const host::Collection& collection, const host::PartTable& table,
                             const host::Part& part, const host::PartColumn& column) {
  const host::PartValue value = column.get(part);
  if (value.index() == 0 || !IsAsPrinted(table.name, column.name)) return true;
  const std::string text = Simplify(Print(value));
  const auto texts = ListTexts(collection, host::FindPlace(part, column.name));
  return std::any_of(texts.begin(), texts.end(), [&](const std::string& one) {
    return Simplify(one).find(text) != std::string::npos;
  });
}

inline std::size_t CountLines(const host::Collection& collection) {
  std::size_t count = 0;
  const auto add = [&](std::string_view text) {
    host::ReportLines lines(text);
    for (host::ReportLine line; lines.Next(line);) ++count;
  };
  for (const host::CollectedAnswer& answer : collection.answers) {
    add(answer.output);
    add(answer.fileText);
  }
  for (const auto& [path, text] : collection.files) add(text);
  return count;
}

/// Which of the machine's parts has an id of another, is no UTF-8 or is not found again where it
/// says that it was read, or whether there are more parts than lines; empty when all is well.
inline std::string FindUnsoundPart(const host::Recording& machine) {
  const host::Collection collection = host::Collect(machine, {});
  const host::Parts parts = host::ReadParts(collection);
  std::size_t count = 0;
  for (const host::PartTable& table : host::GetPartTables()) {
    if (table.name != "sources") count += table.count(parts);
    std::set<std::string> ids;
    for (std::size_t i = 0; i < table.count(parts); ++i) {
      const std::shared_ptr<const host::Part> shared = table.at(parts, i);
      const host::Part& part = *shared;
      const std::string name = std::string(table.name) + " " + part.id;
      if (!ids.insert(part.id).second) return name + " is there twice";
      for (const host::PartColumn& column : table.columns) {
        if (!IsUtf8(column.get(part))) {
          return name + ", " + std::string(column.name) + ", is no UTF-8";
        }
        if (!IsWhereItWasRead(collection, table, part, column)) {
          return name + ", " + std::string(column.name) +
                 ", is not where it was read: " + Print(column.get(part));
        }
      }
    }
  }
  if (count > CountLines(collection)) return "more parts than lines";
  return parts.sources.size() == 11 ? "" : "a source is missing";
}

}  // namespace test
