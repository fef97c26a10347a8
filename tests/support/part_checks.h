// What holds for the parts of every report, whatever it contains. For tests and fuzz targets that
// are linked to the room of the parts.
#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/storcli_drives.h"
#include "host/answers/parts/storcli_events.h"
#include "host/answers/parts/storcli_show.h"

namespace test {

/// Texts by the key of their report.
using Reports = std::map<std::string, std::string>;

/// The parts of storcli's reports on controller 0, whose keys are those of LSILINK.
inline host::Parts ReadLsiReports(const Reports& reports) {
  host::Parts parts;
  const auto read = [&](const char* key, auto* reader) {
    const auto found = reports.find(key);
    if (found == reports.end()) return;
    reader({found->second, {"LSILINK", 1, key, 0, "storcli"}, "lsi0"}, parts);
  };
  read("lsishowall", host::ReadStorcliShow);
  read("pdlist", host::ReadStorcliDrives);
  read("lsieventlog", host::ReadStorcliEvents);
  read("lsifwtermlog", host::ReadStorcliTermLog);
  return parts;
}

/// The lines of each report.
class ReportPlaces {
 public:
  explicit ReportPlaces(const Reports& reports) {
    for (const auto& [key, text] : reports) {
      host::ReportLines rest(text);
      for (host::ReportLine line; rest.Next(line);) lines[key].push_back(line.text);
      count += lines[key].size();
    }
  }

  std::size_t CountLines() const { return count; }

  /// The line of a place; in the event log all lines of the record that begins there.
  std::string FindText(const host::Place& place) const {
    const std::vector<std::string_view>& all = lines.at(place.key);
    const auto first = static_cast<std::size_t>(place.line) - 1;
    std::string text(all.at(first));
    for (std::size_t i = first + 1; place.key == "lsieventlog" && i < all.size(); ++i) {
      const auto split = host::SplitLabel(all[i], ':');
      if (split && (split->label == "seqNum" || split->label == "Sequence Number")) break;
      text += '\n';
      text += all[i];
    }
    return text;
  }

 private:
  std::map<std::string, std::vector<std::string_view>> lines;
  std::size_t count = 0;
};

/// Whether `line` has the words or the number of a column that shows them as they are printed.
/// Other columns are made of what is printed.
inline bool ShowsCell(std::string_view line, std::string_view column,
                      const host::PartValue& value) {
  static const std::set<std::string_view> kColumnsAsPrinted{
      "model",
      "serial",
      "firmware",
      "status",
      "interface",
      "media",
      "name",
      "level",
      "access",
      "consistent",
      "cache",
      "smart_alert",
      "answer",
      "product",
      "text",
      "sense",
      "busy",
      "device_id",
      "media_errors",
      "other_errors",
      "shield",
      "slots",
      "predictive_failures",
      "fans",
      "power_supplies",
      "volumes_declared",
      "drives_declared",
  };
  const auto contains = [&](std::string_view text) {
    return line.find(text) != std::string_view::npos;
  };
  if (const auto* number = std::get_if<double>(&value); number && column == "temperature") {
    return contains(std::to_string(static_cast<std::int64_t>(std::floor(std::abs(*number)))));
  }
  if (const auto* state = std::get_if<std::string_view>(&value); state && column == "state") {
    const std::size_t slash = state->find('/');  // between words of two columns
    return contains(*state) ||
           (slash != std::string_view::npos && contains(state->substr(0, slash)) &&
            contains(state->substr(slash + 1)));
  }
  if (!kColumnsAsPrinted.contains(column)) return true;
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    // Some print the level as a word. Lines that count volumes whose data are kept in the cache
    // print none.
    constexpr const char* kWords[] = {"Class: Debug",   "Class: Progress",     "Class: Information",
                                      "Class: Warning", "Class: Critical",     "Class: Fatal",
                                      "Class: Fault",   "number_of_pinned_vds"};
    const bool isWord =
        column == "level" && std::any_of(std::begin(kWords), std::end(kWords), contains);
    return isWord || contains(std::to_string(*number));
  }
  const auto* text = std::get_if<std::string_view>(&value);
  return text == nullptr || contains(*text);
}

/// Which of `parts`, read from `reports`, is not found again where it says it was read, or whether
/// there are more parts than lines; empty when all is well.
inline std::string FindUnsoundPart(const Reports& reports, const host::Parts& parts) {
  const ReportPlaces places(reports);
  std::size_t count = 0;
  for (const host::PartTable& table : host::GetPartTables()) {
    count += table.count(parts);
    for (std::size_t i = 0; i < table.count(parts); ++i) {
      const std::shared_ptr<const host::Part> shared = table.at(parts, i);
      const host::Part& part = *shared;
      for (const host::PartColumn& column : table.columns) {
        const std::string line = places.FindText(host::FindPlace(part, column.name));
        if (!ShowsCell(line, column.name, column.get(part))) {
          return std::string(table.name) + " " + part.id + ", " + std::string(column.name) +
                 ", is not in: " + line;
        }
      }
    }
  }
  // The controller is made of several lines, and has none of its own.
  return count <= places.CountLines() + 1 ? "" : "more parts than lines";
}

}  // namespace test
