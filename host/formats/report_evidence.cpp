#include "host/formats/report_evidence.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/answers/parts/report_lines.h"
#include "host/formats/html_text.h"

namespace host {
namespace {

/// Of a cell or line, in bytes; who wants more follows the link.
constexpr std::size_t kLongestQuote = 1000;

std::string_view KeepBeginning(std::string_view text) {
  if (text.size() <= kLongestQuote) return text;
  std::size_t end = kLongestQuote;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end);
}

}  // namespace

EvidenceIndex::EvidenceIndex(const CollectionView& view, const std::vector<ShownPart>& shown,
                             const std::vector<const Place*>& places) {
  for (const Place* place : places) {
    if (place->row > 0) {
      cells[{place->className, place->row, place->key}].lines[place->line];
    }
  }
  const std::vector<CollectedTable>& collected = view.GetCollection().tables;
  for (std::size_t i = 0; i < collected.size(); ++i) {
    ReadTable(view.ViewTable(collected[i]), shown[i]);
  }
  std::erase_if(cells, [](const auto& cell) { return cell.second.where.empty(); });
}

void EvidenceIndex::ReadTable(const TableView& table, const ShownPart& part) {
  const DecodedText decoded = table.ClassName();
  const std::string name(decoded.View());
  tables.emplace(name, table.Title().View());
  for (auto at = cells.lower_bound({name, 0, {}}); at != cells.end(); ++at) {
    const auto& [className, row, key] = at->first;
    if (className != name) break;
    const auto index = static_cast<std::size_t>(row - 1);
    if (index < part.firstRow || index >= table.RowCount()) continue;
    const RowView view = table.RowAt(index);
    for (std::size_t i = 0; i < view.CellCount(); ++i) {
      const CellView cell = view.CellAt(i);
      if (cell.Key().View() != key || cell.Kind() == CellKind::kNothing) continue;
      const DecodedText text = cell.Text();
      Cell& found = at->second;
      found.where =
          fmt::format("{}, row {}, {}", table.Title().View(), row, Trim(cell.Label().View()));
      found.firstLine = FindFirstLine(text, CutToEnd(text, part.mostValueBytes));
      ReportLines lines(text);
      ReportLine line;
      for (auto& [number, quote] : found.lines) {
        if (number == 0) quote = KeepBeginning(Trim(text.View()));
        while (line.number < number && lines.Next(line)) {
        }
        if (number > 0 && line.number == number) quote = KeepBeginning(line.text);
      }
      break;
    }
  }
}

Evidence EvidenceIndex::Find(const Place& place) const {
  Evidence evidence;
  evidence.where = place.tool;
  const auto cell = cells.find({place.className, place.row, place.key});
  if (place.line > 0) {
    evidence.where += fmt::format("{}line {}", evidence.where.empty() ? "" : ", ", place.line);
  } else if (cell != cells.end()) {
    evidence.where = cell->second.where;
  }
  if (place.row == 0) {
    const auto table = tables.find(place.className);
    if (table == tables.end()) return evidence;
    if (evidence.where.empty()) evidence.where = table->second;
    evidence.address = MakeAddress(place);
  } else if (cell != cells.end()) {
    const auto line = cell->second.lines.find(place.line);
    if (line == cell->second.lines.end() || !line->second) return evidence;
    evidence.quote = *line->second;
    if (place.line == 0 || place.line >= cell->second.firstLine)
      evidence.address = MakeAddress(place);
  }
  return evidence;
}

std::int64_t FindFirstLine(std::string_view text, std::string_view end) {
  const std::string_view before = text.substr(0, text.size() - end.size());
  ReportLines lines(before);
  ReportLine line;
  while (lines.Next(line)) {
  }
  // What is left of a line is that line.
  const bool endsLine =
      before.empty() || before.back() == '\n' || (before.back() == '\r' && !end.starts_with('\n'));
  return endsLine ? line.number + 1 : line.number;
}

std::string MakeAddress(const Place& place) {
  std::string address = "#at/" + EncodeForAddress(place.className);
  if (place.row == 0) return address;
  address += fmt::format("/{}/{}", place.row, EncodeForAddress(place.key));
  if (place.line > 0) address += fmt::format("/{}", place.line);
  return address;
}

}  // namespace host
