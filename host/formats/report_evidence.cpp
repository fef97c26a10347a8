#include "host/formats/report_evidence.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/answers/parts/collected_rows.h"
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

/// What tools say that no table keeps as it was, and the table that is made of it.
struct UnkeptOutput {
  std::string_view tool;  ///< as in Place; a file's name can follow
  std::string_view className;
  std::string_view program;  ///< of the answers; empty when the text is in none
  std::string_view arguments;
};
constexpr UnkeptOutput kUnkeptOutputs[] = {
    {"ipmiutil sensor -s -q", "SENSORINFO", "ipmiutilnh.exe", "sensor -s -q"},
    {"ipmiutil sensor", "SENSORINFO", "ipmiutilnh.exe", "sensor"},
    {"arcconf savesupportarchive", "PMCLINK", "", ""},
};

/// Null when `place` is that of a table, or of nothing.
const UnkeptOutput* FindUnkeptOutput(const Place& place) {
  if (!place.className.empty()) return nullptr;
  const std::string_view tool = std::string_view(place.tool).substr(0, place.tool.find(','));
  const auto* const known = std::find_if(std::begin(kUnkeptOutputs), std::end(kUnkeptOutputs),
                                         [&](const auto& one) { return one.tool == tool; });
  return known == std::end(kUnkeptOutputs) ? nullptr : known;
}

}  // namespace

EvidenceIndex::EvidenceIndex(const CollectionView& view, const std::vector<ShownPart>& shown,
                             const std::vector<Place>& places) {
  for (const Place& place : places) {
    if (place.row > 0) {
      cells[{place.className, place.row, place.key}].lines[place.line];
    }
  }
  const std::vector<CollectedTable>& collected = view.GetCollection().tables;
  for (std::size_t i = 0; i < collected.size(); ++i) {
    ReadTable(view.ViewTable(collected[i]), shown[i]);
  }
  std::erase_if(cells, [](const auto& cell) { return cell.second.where.empty(); });
  ReadUnkeptOutputs(view.GetCollection(), places);
}

void EvidenceIndex::ReadUnkeptOutputs(const Collection& collection,
                                      const std::vector<Place>& places) {
  for (const Place& place : places) {
    if (FindUnkeptOutput(place) != nullptr) unkeptLines[place.tool][place.line];
  }
  const CollectedRows rows(collection);
  for (const UnkeptOutput& output : kUnkeptOutputs) {
    const auto wanted = unkeptLines.find(output.tool);
    const auto answers = rows.ListAnswers(output.program, output.arguments);
    if (wanted == unkeptLines.end() || answers.empty()) continue;
    const CollectedAnswer& answer = *answers.back();
    const DecodedText text = rows.Decode(answer.file.empty() ? answer.output : answer.fileText);
    ReportLines lines(text.View());
    for (ReportLine line; lines.Next(line);) {
      const auto quote = wanted->second.find(line.number);
      if (quote != wanted->second.end()) quote->second = KeepBeginning(Trim(line.text));
    }
  }
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
  if (const UnkeptOutput* output = FindUnkeptOutput(place)) {
    if (!tables.contains(output->className)) return evidence;
    Place table;
    table.className = output->className;
    evidence.address = MakeAddress(table);
    const auto lines = unkeptLines.find(place.tool);
    if (lines == unkeptLines.end()) return evidence;
    const auto line = lines->second.find(place.line);
    if (line != lines->second.end()) evidence.quote = line->second;
  } else if (place.row == 0) {
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
