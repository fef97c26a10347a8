#include "host/formats/report_parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <variant>

#include "host/answers/parts/part_tables.h"
#include "host/formats/report_charts.h"
#include "host/formats/report_columns.h"
#include "host/text/count_text.h"

namespace host {
namespace {

// --- what is shown of a table, as data ---

constexpr std::size_t kMostRows = 200;   ///< of a table
constexpr std::size_t kMostEvents = 50;  ///< of logs, the newest
constexpr std::size_t kMostTableBytes = std::size_t{512} << 10;
constexpr std::size_t kWidestCell = 160;                  ///< in columns of a screen
constexpr std::size_t kMostArrayNames = 4 * kWidestCell;  ///< bytes, but for the last name

struct TableShape {
  std::string_view table;
  std::string_view title;
  std::string_view columns;  ///< that come first, blank-separated; the others follow
  std::string_view leftOut;  ///< blank-separated
  std::string_view judged;   ///< the column that a finding of the whole part is about
};
constexpr TableShape kShapes[] = {
    {"volumes", "Volumes", "number name state level size access consistent cache",
     "vendor condition", "state"},
    {"groups", "Drive groups", "number state level busy", "vendor condition", "state"},
    {"missing_drives", "Missing drives", "place state grp", "", "state"},
    {"drives", "Drives",
     "place state model serial media_errors predictive_failures smart_alert temperature grp size "
     "media interface other_errors wear_left firmware member_state failure_reason",
     "vendor condition member location", "state"},
    {"controllers", "Controllers", "model status temperature serial firmware", "number", "status"},
    {"cache_backups", "Cache backups", "kind state model temperature", "vendor condition", "state"},
    {"enclosures", "Enclosures", "number state slots drives", "", "state"},
    {"sensors", "Sensors", "reading status", "name unit event_type number type", "reading"},
    {"events", "Newest entries", "time level text part_id", "part", "text"},
    {"power_supplies", "Power supplies", "status ac_volts output_watts text", "", "status"},
    {"leds", "Lights", "colour state", "", "state"},
    {"self_tests", "Self-tests", "text code", "", "text"},
    {"sources", "Sources", "state observed", "", "state"},
    {"unread", "Lines that were not understood", "text", "", "text"},
};

/// The place of a part; its row links there instead.
constexpr std::string_view kPlaceColumns = "class row key line tool";

bool HoldsWord(std::string_view words, std::string_view word) {
  while (!words.empty()) {
    const std::size_t end = std::min(words.find(' '), words.size());
    if (words.substr(0, end) == word) return true;
    words.remove_prefix(std::min(end + 1, words.size()));
  }
  return false;
}

const TableShape& FindShape(const PartTable& table) {
  constexpr static TableShape kPlain{"", "", "", "", ""};
  const auto* found = std::ranges::find(kShapes, table.name, &TableShape::table);
  return found == std::end(kShapes) ? kPlain : *found;
}

/// How grave an entry of a log is, in a word.
std::string NameLevel(std::int64_t level) {
  constexpr std::int64_t kFirst = -2;
  constexpr std::array<const char*, 7> kWords{"debug",    "progress", "information", "warning",
                                              "critical", "fatal",    "dead"};
  constexpr std::int64_t kLast = kFirst + static_cast<std::int64_t>(kWords.size()) - 1;
  if (level < kFirst || level > kLast) return fmt::format("{}", level);
  return kWords[static_cast<std::size_t>(level - kFirst)];
}

std::string FormatCell(const PartTable& table, const PartColumn& column, const Part& part) {
  const PartValue value = column.get(part);
  if (const auto* number = std::get_if<std::int64_t>(&value);
      number && column.name == "level" && table.name == "events") {
    return NameLevel(*number);
  }
  return ShowPartText(column.name, FormatPartValue(value, ""));
}

/// Those of `table` that some of `rows` has a value for, in the order in which they are shown.
std::vector<const PartColumn*> ChooseColumns(const PartTable& table, const Parts& parts,
                                             const std::vector<std::size_t>& rows) {
  const TableShape& shape = FindShape(table);
  std::vector<const PartColumn*> columns;
  const auto add = [&](const PartColumn& column) {
    const auto number = static_cast<std::size_t>(&column - table.columns.data());
    const bool hasValue = std::ranges::any_of(
        rows, [&](std::size_t row) { return table.Get(parts, row, number).index() != 0; });
    if (hasValue) columns.push_back(&column);
  };
  std::string_view first = shape.columns;
  while (!first.empty()) {
    const std::size_t end = std::min(first.find(' '), first.size());
    const auto column = std::ranges::find(table.columns, first.substr(0, end), &PartColumn::name);
    if (column != table.columns.end()) add(*column);
    first.remove_prefix(std::min(end + 1, first.size()));
  }
  for (const PartColumn& column : table.columns) {
    if (HoldsWord(shape.columns, column.name) || HoldsWord(shape.leftOut, column.name) ||
        HoldsWord(kPlaceColumns, column.name) || column.name == "id") {
      continue;
    }
    add(column);
  }
  return columns;
}

std::optional<Gauge> FindGauge(const PartTable& table, const Part& part, const PartColumn& column) {
  if (table.name == "sensors" && column.name == "reading") {
    return MakeGauge(static_cast<const Sensor&>(part));
  }
  if (table.name == "drives" && column.name == "temperature") {
    return MakeGauge(static_cast<const Drive&>(part));
  }
  return std::nullopt;
}

}  // namespace

ReportParts::ReportParts(const Assessment& assessment, const std::vector<ReportArea>& areas,
                         const ReportChanges* changes)
    : assessment(assessment), changes(changes) {
  for (const HealthFinding& finding : assessment.health.findings) {
    for (const HealthHit& hit : finding.hits) hits[{hit.part, hit.id}].push_back(&hit);
  }
  for (const Volume& volume : assessment.parts.volumes) {
    if (volume.group.empty()) continue;
    const std::string name = volume.name.empty() ? volume.id : volume.name;
    std::string& names = arrays[volume.group];
    // Each drive of the group has them in its row; a cell shows less than this.
    if (names.size() < kMostArrayNames) names += (names.empty() ? "" : ", ") + name;
  }
  for (const ReportArea& area : areas) {
    for (const AreaParts& list : area.parts) {
      for (const std::size_t row : ChooseRows(list)) {
        shownRows[list.table].insert(row);
        const std::shared_ptr<const Part> part = list.table->at(assessment.parts, row);
        rowIds[{std::string(list.table->name), part->id}] =
            fmt::format("part-{}-{}", list.table->name, row + 1);
      }
    }
  }
}

/// Those with findings, and as many others as there is room for.
std::vector<std::size_t> ReportParts::ChooseRows(const AreaParts& list) const {
  if (list.table->name == "events") {
    std::vector<std::size_t> rows = list.rows;
    const Events& events = assessment.parts.events;
    std::ranges::stable_sort(rows, std::ranges::greater(), [&](std::size_t row) {
      return events.GetText(row, EventColumn::kTime);
    });
    rows.resize(std::min(rows.size(), kMostEvents));
    return rows;
  }
  if (list.rows.size() <= kMostRows) return list.rows;
  std::vector<std::size_t> rows;
  const auto isJudged = [&](std::size_t row) {
    const std::shared_ptr<const Part> part = list.table->at(assessment.parts, row);
    return hits.contains({std::string(list.table->name), part->id});
  };
  for (const bool judged : {true, false}) {
    for (const std::size_t row : list.rows) {
      if (rows.size() < kMostRows && isJudged(row) == judged) rows.push_back(row);
    }
  }
  std::ranges::sort(rows);
  return rows;
}

std::string ReportParts::FindRowId(std::string_view table, const std::string& id) const {
  const auto found = rowIds.find({std::string(table), id});
  return found == rowIds.end() ? std::string() : found->second;
}

std::vector<Place> ReportParts::ListPlaces() const {
  std::vector<Place> places;
  for (const auto& [table, rows] : shownRows) {
    for (const std::size_t row : rows) {
      places.push_back(table->at(assessment.parts, row)->readAt);
    }
  }
  return places;
}

void ReportParts::WriteArea(const ReportArea& area, const EvidenceIndex& evidence,
                            HtmlWriter& html) const {
  for (const AreaParts& list : area.parts) {
    if (list.table->name == "events") {
      WriteEventsByDay(assessment.parts.events, list.rows, assessment.health.asOf, html);
    }
    WriteTable(area, list, evidence, html);
  }
}

void ReportParts::WriteTable(const ReportArea& area, const AreaParts& list,
                             const EvidenceIndex& evidence, HtmlWriter& html) const {
  const PartTable& table = *list.table;
  const std::vector<std::size_t> rows = ChooseRows(list);
  const std::vector<const PartColumn*> columns = ChooseColumns(table, assessment.parts, rows);
  const std::string_view title = FindShape(table).title;
  html.Add("<div class=\"panel parts\"><div class=\"bar\"><h3>").Text(title);
  html.Add("</h3><span class=\"grow\"></span><span class=\"count\">");
  html.Text(FormatCount(list.rows.size(), "row"));
  html.Add("</span></div><div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"");
  html.Text(area.title).Add(": ").Text(title).Add("\"><table class=\"joined\"><thead><tr>");
  html.Add("<th scope=\"col\">Part</th>");
  for (const PartColumn* column : columns) {
    html.Add("<th scope=\"col\" title=\"").Text(column->description).Add("\">");
    html.Text(LabelColumn(column->name)).Add("</th>");
  }
  html.Add("</tr></thead><tbody>");
  const std::size_t begin = html.CountBytes();
  std::size_t written = 0;
  for (const std::size_t row : rows) {
    if (html.CountBytes() - begin > kMostTableBytes) break;
    WriteRow(table, row, columns, evidence, html);
    ++written;
  }
  html.Add("</tbody></table></div>");
  if (written < list.rows.size()) {
    html.Add("<p class=\"cut\">").Number(written).Add(" of ").Number(list.rows.size());
    html.Add(
        " are shown here; all of them are in the tools&#39; reports below, and in the other "
        "formats.</p>");
  }
  html.Add("</div>");
}

void ReportParts::WriteRow(const PartTable& table, std::size_t row,
                           const std::vector<const PartColumn*>& columns,
                           const EvidenceIndex& evidence, HtmlWriter& html) const {
  const std::shared_ptr<const Part> shown = table.at(assessment.parts, row);
  const Part& part = *shown;
  html.Add("<tr id=\"").Text(FindRowId(table.name, part.id)).Add("\"><th scope=\"row\">");
  const std::string address = evidence.Find(part.readAt).address;
  if (!address.empty()) html.Add("<a href=\"").Text(address).Add("\">");
  html.ShortText(part.id, kWidestCell);
  if (!address.empty()) html.Add("</a>");
  if (changes != nullptr) {
    const std::string_view mark = changes->FindMark(table.name, part);
    if (!mark.empty()) html.Add(" <ins>").Text(mark).Add("</ins>");
  }
  html.Add("</th>");
  for (const PartColumn* column : columns) WriteCell(table, part, *column, html);
  html.Add("</tr>");
}

void ReportParts::WriteCell(const PartTable& table, const Part& part, const PartColumn& column,
                            HtmlWriter& html) const {
  std::string text = FormatCell(table, column, part);
  if (table.name == "sensors" && column.name == "reading" && !text.empty()) {
    text += " " + static_cast<const Sensor&>(part).unit;
  }
  if (column.name == "grp" && table.name == "drives") {
    const auto names = arrays.find(text);
    if (names != arrays.end()) text = names->second;
  }
  const PartValue value = column.get(part);
  html.Add("<td");
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    html.Add(" class=\"number\" data-value=\"").Text(fmt::format("{}", *number)).Add("\"");
  } else if (const auto* real = std::get_if<double>(&value)) {
    html.Add(" class=\"number\" data-value=\"").Text(fmt::format("{}", *real)).Add("\"");
  }
  html.Add(">");
  if (changes != nullptr) {
    const ChangedColumn* changed = changes->FindColumn(table.name, part.id, column.name);
    if (changed != nullptr && changed->before) {
      html.Add("<del>").ShortText(ShowPartText(column.name, *changed->before), kWidestCell);
      html.Add("</del> ");
    }
  }
  const HealthHit* hit = FindHit(table, part, column);
  if (hit != nullptr) {
    const Tone tone = GetTone(hit->severity);
    html.Add("<span class=\"chip ").Text(GetStyleClass(tone));
    html.Add("\"><span aria-hidden=\"true\">").Text(GetSign(tone));
    html.Add(" </span><span class=\"visually-hidden\">").Text(NameSeverity(hit->severity));
    html.Add(": </span>")
        .ShortText(text.empty() ? hit->observed : text, kWidestCell)
        .Add("</span>");
  } else {
    html.ShortText(text, kWidestCell);
  }
  if (const auto gauge = FindGauge(table, part, column)) {
    html.Add(" ");
    WriteGauge(*gauge, html);
  }
  html.Add("</td>");
}

const HealthHit* ReportParts::FindHit(const PartTable& table, const Part& part,
                                      const PartColumn& column) const {
  const auto found = hits.find({std::string(table.name), part.id});
  if (found == hits.end()) return nullptr;
  const HealthHit* worst = nullptr;
  const bool isJudgedColumn = FindShape(table).judged == column.name;
  const auto place = std::ranges::find(part.columnPlaces, column.name, &ColumnPlace::column);
  for (const HealthHit* hit : found->second) {
    // A column without a place of its own was read where the part was.
    const bool isMeant = hit->column.empty() ? isJudgedColumn : hit->column == column.name;
    const bool isOfCell = place != part.columnPlaces.end() ? hit->place == place->place
                                                           : isMeant && hit->place == part.readAt;
    if (hit->isOfLog || !isOfCell) continue;
    if (worst == nullptr || hit->severity > worst->severity) worst = hit;
  }
  return worst;
}

}  // namespace host
