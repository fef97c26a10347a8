#include "host/formats/shown_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/catalogue/table_sources.h"
#include "host/formats/column_widths.h"
#include "host/formats/shown_cell.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kWidestLabel = 34;

/// How many rows of a log are shown: in columns, and as blocks.
constexpr std::size_t kNewestRows = 20;
constexpr std::size_t kNewestBlocks = 3;

using CellLines = std::vector<std::string>;

/// Of a log only the newest rows are shown.
std::size_t FindFirstShown(const TableView& table, std::size_t most, bool showsAll) {
  const pq::TableDescription* known = FindTableDescription(table.ClassName());
  if (showsAll || known == nullptr || !known->isLog || table.RowCount() <= most) return 0;
  return table.RowCount() - most;
}

void WriteNotes(const TableView& table, StyledScreen& screen) {
  for (const std::string& note : table.Status().notes) {
    for (const std::string& line : WrapText("Note: " + EscapeControls(note), screen.Width())) {
      screen.WriteLine(kDim, line);
    }
  }
}

/// None when the table has to be written in blocks.
std::vector<std::size_t> ChooseWidths(const TableView& table, std::size_t first,
                                      unsigned screenWidth) {
  const std::vector<ColumnView>& columns = table.Columns();
  const bool hasFiles = std::any_of(columns.begin(), columns.end(),
                                    [](const ColumnView& column) { return column.hasFiles; });
  if (!table.IsByRow() || hasFiles) return {};
  std::vector<ColumnNeed> needs(columns.size());
  for (std::size_t column = 0; column < columns.size(); ++column) {
    needs[column].Add(ShowLabel(columns[column].label, columns[column].key));
  }
  for (std::size_t i = first; i < table.RowCount(); ++i) {
    const RowView row = table.RowAt(i);
    for (std::size_t column = 0; column < columns.size(); ++column) {
      const std::optional<CellView> cell = row.FindCell(column);
      if (cell) needs[column].Add(ShowCell(*cell));
    }
  }
  return FitColumns(needs, screenWidth);
}

/// Cells side by side.
void WriteCells(const std::vector<CellLines>& cells, const std::vector<std::size_t>& widths,
                const char* style, StyledScreen& screen) {
  std::size_t height = 1;
  for (const CellLines& cell : cells) height = std::max(height, cell.size());
  for (std::size_t n = 0; n < height; ++n) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) line.append(kColumnGap, ' ');
      line += PadText(n < cells[i].size() ? cells[i][n] : "", widths[i]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    screen.WriteLine(style, line);
  }
}

void WriteColumns(const TableView& table, const std::vector<std::size_t>& widths, std::size_t first,
                  StyledScreen& screen) {
  std::vector<CellLines> head;
  std::vector<CellLines> rule;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const ColumnView& column = table.Columns()[i];
    head.push_back(WrapCell(ShowLabel(column.label, column.key), widths[i]));
    std::string line;
    for (std::size_t n = 0; n < widths[i]; ++n) line += "─";
    rule.push_back({line});
  }
  WriteCells(head, widths, kBold, screen);
  WriteCells(rule, widths, kDim, screen);
  std::vector<CellLines> cells(widths.size());
  for (std::size_t i = first; i < table.RowCount(); ++i) {
    const RowView row = table.RowAt(i);
    for (std::size_t column = 0; column < widths.size(); ++column) {
      const std::optional<CellView> cell = row.FindCell(column);
      cells[column] = cell ? WrapCell(ShowCell(*cell), widths[column]) : CellLines{};
    }
    WriteCells(cells, widths, nullptr, screen);
  }
}

void WriteBlock(const RowView& row, StyledScreen& screen) {
  if (row.CellCount() == 0) screen.Out() << "(no properties)\n";
  std::vector<std::string> labels;
  std::size_t widest = 0;
  for (std::size_t i = 0; i < row.CellCount(); ++i) {
    const CellView cell = row.CellAt(i);
    labels.push_back(ShowLabel(cell.Label(), cell.Key()));
    widest = std::max(widest, MeasureWidth(labels.back()));
  }
  const std::size_t labelWidth =
      std::min({widest, kWidestLabel, static_cast<std::size_t>(screen.Width() / 2)});
  const std::size_t valueWidth = screen.Width() - labelWidth - kColumnGap;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    std::string start = CutText(labels[i], labelWidth) + ":";  // The colon takes part of the gap.
    for (const std::string& line : WrapCell(ShowCell(row.CellAt(i)), valueWidth)) {
      std::string whole = PadText(std::move(start), labelWidth + kColumnGap) + line;
      whole.erase(whole.find_last_not_of(' ') + 1);
      screen.Out() << whole << '\n';
      start.clear();
    }
  }
}

void WriteBlocks(const TableView& table, std::size_t first, StyledScreen& screen) {
  for (std::size_t i = first; i < table.RowCount(); ++i) {
    if (table.RowCount() > 1) {
      if (i > first) screen.Out() << '\n';
      screen.WriteLine(kDim, fmt::format("── {} of {}", i + 1, table.RowCount()));
    }
    WriteBlock(table.RowAt(i), screen);
  }
}

}  // namespace

void WriteTable(const TableView& table, bool showsAll, StyledScreen& screen) {
  const std::string className = EscapeControls(table.ClassName());
  const std::string title = EscapeControls(table.Title());
  std::size_t first = FindFirstShown(table, kNewestRows, showsAll);
  const std::vector<std::size_t> widths = ChooseWidths(table, first, screen.Width());
  if (widths.empty()) first = FindFirstShown(table, kNewestBlocks, showsAll);
  screen.Write(kBold, title);
  if (title != className) screen.Out() << " · " << className;
  screen.Out() << " · " << FormatCount(table.RowCount(), "row");
  if (first > 0) {
    screen.Out() << fmt::format(" · the newest {}; {} before them are not shown (--all shows them)",
                                table.RowCount() - first, first);
  }
  screen.Out() << '\n';
  WriteNotes(table, screen);
  if (widths.empty()) {
    WriteBlocks(table, first, screen);
  } else {
    WriteColumns(table, widths, first, screen);
  }
}

}  // namespace host
