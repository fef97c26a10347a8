// Tables for people. A table that wants one instance per line is aligned in columns; when its
// columns do not fit the screen, and when a table wants one property per line, each row becomes a
// block of "label: value" lines.
//
//   ARP table · ARPINFO · 2 rows
//   Internet Address  Physical Address   Type
//   ────────────────  ─────────────────  ───────
//   10.20.0.1         00-1b-21-3c-4d-5e  dynamic

#include <fmt/format.h>

#include <algorithm>

#include "host/collect/table_view.h"
#include "host/formats/column_widths.h"
#include "host/formats/formats.h"
#include "host/formats/shown_cell.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kWidestLabel = 34;
constexpr unsigned kNarrowestScreen = 20;

constexpr char kBold[] = "\x1b[1m";
constexpr char kHeadStyle[] = "\x1b[1;36m";
constexpr char kDim[] = "\x1b[2m";
constexpr char kPlain[] = "\x1b[0m";

class TablesWriter {
 public:
  TablesWriter(const Collection& collection, const Screen& screen, std::ostream& out)
      : collection(collection),
        view(collection),
        width(std::max(screen.width, kNarrowestScreen)),
        colors(screen.colors),
        out(out) {}

  void Write() {
    const char* separator = "";
    for (const CollectedModule& module : collection.modules) {
      out << separator;
      separator = "\n";
      WriteModule(module);
    }
  }

 private:
  using Lines = std::vector<std::string>;  ///< of a cell

  void WriteModule(const CollectedModule& module) {
    const auto [name, description] = view.ViewModule(module);
    const std::string head = EscapeControls(description) + " · " + EscapeControls(name);
    WriteStyled(kHeadStyle, CutText(head, width));
    out << '\n';
    std::string empty;
    for (const CollectedTable& collected : collection.tables) {
      if (collected.module != module.name) continue;
      const TableView table = view.ViewTable(collected);
      if (table.RowCount() == 0 && table.Status().notes.empty()) {
        empty += " " + EscapeControls(table.ClassName());
      } else {
        out << '\n';
        WriteTable(table);
      }
    }
    if (empty.empty()) return;
    out << '\n';
    for (const std::string& line : WrapText("No rows:" + empty, width)) {
      WriteStyled(kDim, line);
      out << '\n';
    }
  }

  void WriteTable(const TableView& table) {
    const std::string className = EscapeControls(table.ClassName());
    const std::string title = EscapeControls(table.Title());
    WriteStyled(kBold, title);
    if (title != className) out << " · " << className;
    out << " · " << FormatCount(table.RowCount(), "row") << '\n';
    WriteNotes(table);
    if (table.RowCount() == 0) return;
    const std::vector<std::size_t> widths = ChooseWidths(table);
    if (widths.empty()) {
      WriteBlocks(table);
    } else {
      WriteColumns(table, widths);
    }
  }

  void WriteNotes(const TableView& table) {
    for (const std::string& note : table.Status().notes) {
      for (const std::string& line : WrapText("Note: " + EscapeControls(note), width)) {
        WriteStyled(kDim, line);
        out << '\n';
      }
    }
  }

  /// None when the table has to be written in blocks.
  std::vector<std::size_t> ChooseWidths(const TableView& table) const {
    const std::vector<ColumnView>& columns = table.Columns();
    const bool hasFiles = std::any_of(columns.begin(), columns.end(),
                                      [](const ColumnView& column) { return column.hasFiles; });
    if (!table.IsByRow() || hasFiles) return {};
    std::vector<ColumnNeed> needs(columns.size());
    for (std::size_t column = 0; column < columns.size(); ++column) {
      needs[column].Add(ShowLabel(columns[column].label, columns[column].key));
    }
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      const RowView row = table.RowAt(i);
      for (std::size_t column = 0; column < columns.size(); ++column) {
        const std::optional<CellView> cell = row.FindCell(column);
        if (cell) needs[column].Add(ShowCell(*cell));
      }
    }
    return FitColumns(needs, width);
  }

  void WriteColumns(const TableView& table, const std::vector<std::size_t>& widths) {
    std::vector<Lines> head;
    std::vector<Lines> rule;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const ColumnView& column = table.Columns()[i];
      head.push_back(WrapCell(ShowLabel(column.label, column.key), widths[i]));
      std::string line;
      for (std::size_t n = 0; n < widths[i]; ++n) line += "─";
      rule.push_back({line});
    }
    WriteCells(head, widths, kBold);
    WriteCells(rule, widths, kDim);
    std::vector<Lines> cells(widths.size());
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      const RowView row = table.RowAt(i);
      for (std::size_t column = 0; column < widths.size(); ++column) {
        const std::optional<CellView> cell = row.FindCell(column);
        cells[column] = cell ? WrapCell(ShowCell(*cell), widths[column]) : Lines{};
      }
      WriteCells(cells, widths, nullptr);
    }
  }

  /// Cells side by side.
  void WriteCells(const std::vector<Lines>& cells, const std::vector<std::size_t>& widths,
                  const char* style) {
    std::size_t height = 1;
    for (const Lines& cell : cells) height = std::max(height, cell.size());
    for (std::size_t n = 0; n < height; ++n) {
      std::string line;
      for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) line.append(kColumnGap, ' ');
        line += PadText(n < cells[i].size() ? cells[i][n] : "", widths[i]);
      }
      line.erase(line.find_last_not_of(' ') + 1);
      WriteStyled(style, line);
      out << '\n';
    }
  }

  void WriteBlocks(const TableView& table) {
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      if (table.RowCount() > 1) {
        if (i > 0) out << '\n';
        WriteStyled(kDim, fmt::format("── {} of {}", i + 1, table.RowCount()));
        out << '\n';
      }
      WriteBlock(table.RowAt(i));
    }
  }

  void WriteBlock(const RowView& row) {
    if (row.CellCount() == 0) out << "(no properties)\n";
    std::vector<std::string> labels;
    std::size_t widest = 0;
    for (std::size_t i = 0; i < row.CellCount(); ++i) {
      const CellView cell = row.CellAt(i);
      labels.push_back(ShowLabel(cell.Label(), cell.Key()));
      widest = std::max(widest, MeasureWidth(labels.back()));
    }
    const std::size_t labelWidth =
        std::min({widest, kWidestLabel, static_cast<std::size_t>(width / 2)});
    const std::size_t valueWidth = width - labelWidth - kColumnGap;
    for (std::size_t i = 0; i < labels.size(); ++i) {
      std::string start = CutText(labels[i], labelWidth) + ":";  // The colon takes part of the gap.
      for (const std::string& line : WrapCell(ShowCell(row.CellAt(i)), valueWidth)) {
        std::string whole = PadText(std::move(start), labelWidth + kColumnGap) + line;
        whole.erase(whole.find_last_not_of(' ') + 1);
        out << whole << '\n';
        start.clear();
      }
    }
  }

  void WriteStyled(const char* style, const std::string& text) {
    if (colors && style != nullptr) {
      out << style << text << kPlain;
    } else {
      out << text;
    }
  }

  const Collection& collection;
  CollectionView view;
  unsigned width;
  bool colors;
  std::ostream& out;
};

}  // namespace

void WriteTables(const Collection& collection, const Screen& screen, std::ostream& out) {
  TablesWriter(collection, screen, out).Write();
}

}  // namespace host
