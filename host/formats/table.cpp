// A screen for people: the machine, its verdict and what is wrong with it, problems of the
// collection and a line for each table; then the tables. A table that wants one instance per line
// is aligned in columns; when its columns do not fit the screen, and when a table wants one
// property per line, each row becomes a block of "label: value" lines.
//
//   ARP table · ARPINFO · 2 rows
//   Internet Address  Physical Address   Type
//   ────────────────  ─────────────────  ───────
//   10.20.0.1         00-1b-21-3c-4d-5e  dynamic

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/answers/assessment.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/table_view.h"
#include "host/formats/collection_summary.h"
#include "host/formats/column_widths.h"
#include "host/formats/formats.h"
#include "host/formats/health_formats.h"
#include "host/formats/machine_summary.h"
#include "host/formats/shown_cell.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kWidestLabel = 34;
constexpr unsigned kNarrowestScreen = 20;
/// Beside the names of a table there has to be room for so much of its status.
constexpr std::size_t kLeastStatus = 24;

/// How many rows of a log are shown: in columns, and as blocks.
constexpr std::size_t kNewestRows = 20;
constexpr std::size_t kNewestBlocks = 3;

constexpr char kBold[] = "\x1b[1m";
constexpr char kHeadStyle[] = "\x1b[1;36m";
constexpr char kDim[] = "\x1b[2m";
constexpr char kRed[] = "\x1b[31m";
constexpr char kPlain[] = "\x1b[0m";

class TablesWriter {
 public:
  TablesWriter(const Collection& collection, const Screen& screen, std::ostream& out)
      : collection(collection),
        view(collection, ChooseAttachments(screen)),
        width(std::max(screen.width, kNarrowestScreen)),
        colors(screen.colors),
        showsAll(screen.showsAll),
        out(out) {}

  void Write() {
    const std::vector<TableGroup> groups = GroupTables(collection);
    if (collection.machineIsKnown) WriteOverview(groups);
    const char* separator = collection.machineIsKnown ? "\n" : "";
    for (const TableGroup& group : groups) {
      const auto isShown = [&](std::size_t i) {
        return !collection.machineIsKnown || collection.tables[i].RowCount() > 0;
      };
      if (std::ranges::none_of(group.tables, isShown)) continue;
      out << separator;
      separator = "\n";
      WriteHead(view.Excerpt(group.area));
      for (const std::size_t i : group.tables) {
        if (!isShown(i)) continue;
        out << '\n';
        WriteTable(view.ViewTable(collection.tables[i]));
      }
    }
  }

 private:
  using Lines = std::vector<std::string>;  ///< of a cell

  void WriteHead(std::string_view text) {
    WriteStyled(kHeadStyle, CutText(EscapeControls(text), width));
    out << '\n';
  }

  /// Lines of at most the screen's width; those after the first are `indent` columns in.
  void WriteParagraph(const char* style, const std::string& text, std::size_t indent) {
    std::string before;
    for (const std::string& line : WrapText(text, width - indent)) {
      WriteStyled(style, before + line);
      out << '\n';
      before.assign(indent, ' ');
    }
  }

  void WriteOverview(const std::vector<TableGroup>& groups) {
    WriteHead(NameMachine(collection));
    WriteFacts();
    WriteVerdict();
    WriteParagraph(nullptr, DescribeOutcome(collection), 0);
    WriteProblems();
    out << '\n';
    MeasureNames();
    for (const TableGroup& group : groups) WriteStatusLines(group);
  }

  void WriteFacts() {
    const std::vector<std::pair<std::string, std::string>> facts = ListMachineFacts(collection);
    std::size_t widest = 0;
    for (const auto& [name, value] : facts) widest = std::max(widest, MeasureWidth(name));
    for (const auto& [name, value] : facts) {
      const std::string start = PadText(name + ":", widest + kColumnGap);
      out << start;
      WriteParagraph(nullptr, EscapeControls(value), start.size());
    }
  }

  void WriteVerdict() {
    const Health health = Assess(collection).health;
    // Who asked for the ARP table alone is not told that nobody knows how the drives are.
    if (collection.isSelection && health.checked.empty()) return;
    out << '\n';
    WriteHealthSummary(health, {.colors = colors, .width = width}, out);
    out << '\n';
  }

  void WriteProblems() {
    if (collection.problems.empty()) return;
    out << '\n';
    WriteStyled(kRed, FormatCount(collection.problems.size(), "problem"));
    out << '\n';
    for (const std::string& problem : collection.problems) {
      out << "  ";
      WriteParagraph(nullptr, EscapeControls(problem), 4);
    }
  }

  void WriteStatusLines(const TableGroup& group) {
    WriteStyled(kBold, CutText(EscapeControls(view.Excerpt(group.area)), width));
    out << '\n';
    for (const std::size_t i : group.tables) {
      const CollectedTable& table = collection.tables[i];
      const bool hasRows = table.RowCount() > 0;
      std::string line = PadText(CutText("  " + ShowClass(table), width), nameWidth);
      if (nameWidth + titleWidth + kLeastStatus <= width) {
        line = PadText(std::move(line.append(ShowTitle(table))), nameWidth + titleWidth);
      }
      WriteStatus(
          line, EscapeControls(hasRows ? MentionNotes(table.status) : DescribeStatus(table.status)),
          hasRows ? nullptr : kDim);
    }
  }

  /// Of a table with rows its notes are shown with these; whoever reads no further is told of them.
  static std::string MentionNotes(const TableStatus& status) {
    std::string text = status.text;
    if (!status.oldFiles.empty()) text += "; " + status.oldFiles;
    if (!status.unfitLabels.empty()) return text + "; columns do not fit";
    const std::size_t others = status.notes.size() - (status.oldFiles.empty() ? 0 : 1);
    if (others > 0) text += others == 1 ? " (see its note)" : " (see its notes)";
    return text;
  }

  /// The status after the names or, where these leave too little room, below them.
  void WriteStatus(std::string line, const std::string& status, const char* style) {
    std::size_t indent = MeasureWidth(line);
    if (indent + kLeastStatus > width) {
      WriteStyled(style, line.substr(0, line.find_last_not_of(' ') + 1));
      out << '\n';
      indent = 4;
      line.assign(indent, ' ');
    }
    for (const std::string& part : WrapText(status, width - indent)) {
      line += part;
      WriteStyled(style, line.substr(0, line.find_last_not_of(' ') + 1));
      out << '\n';
      line.assign(indent, ' ');
    }
  }

  std::string ShowClass(const CollectedTable& table) const {
    return EscapeControls(view.Excerpt(table.className));
  }
  std::string ShowTitle(const CollectedTable& table) const {
    return EscapeControls(view.Excerpt(TitleOf(table.className)));
  }

  void MeasureNames() {
    for (const CollectedTable& table : collection.tables) {
      nameWidth = std::max(nameWidth, 2 + MeasureWidth(ShowClass(table)) + kColumnGap);
      titleWidth = std::max(titleWidth, MeasureWidth(ShowTitle(table)) + kColumnGap);
    }
  }

  void WriteTable(const TableView& table) {
    const std::string className = EscapeControls(table.ClassName());
    const std::string title = EscapeControls(table.Title());
    std::size_t first = FindFirstShown(table, kNewestRows);
    const std::vector<std::size_t> widths = ChooseWidths(table, first);
    if (widths.empty()) first = FindFirstShown(table, kNewestBlocks);
    WriteStyled(kBold, title);
    if (title != className) out << " · " << className;
    out << " · " << FormatCount(table.RowCount(), "row");
    if (first > 0) {
      out << fmt::format(" · the newest {}; {} before them are not shown (--all shows them)",
                         table.RowCount() - first, first);
    }
    out << '\n';
    WriteNotes(table);
    if (widths.empty()) {
      WriteBlocks(table, first);
    } else {
      WriteColumns(table, widths, first);
    }
  }

  /// Of a log only the newest rows are shown.
  std::size_t FindFirstShown(const TableView& table, std::size_t most) const {
    const pq::TableDescription* known = FindTableDescription(table.ClassName());
    if (showsAll || known == nullptr || !known->isLog || table.RowCount() <= most) return 0;
    return table.RowCount() - most;
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
  std::vector<std::size_t> ChooseWidths(const TableView& table, std::size_t first) const {
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
    return FitColumns(needs, width);
  }

  void WriteColumns(const TableView& table, const std::vector<std::size_t>& widths,
                    std::size_t first) {
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
    for (std::size_t i = first; i < table.RowCount(); ++i) {
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

  void WriteBlocks(const TableView& table, std::size_t first) {
    for (std::size_t i = first; i < table.RowCount(); ++i) {
      if (table.RowCount() > 1) {
        if (i > first) out << '\n';
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
  bool showsAll;
  // Columns that all tables' names and titles take in the overview, with the gaps around them.
  std::size_t nameWidth = 0;
  std::size_t titleWidth = 0;
  std::ostream& out;
};

}  // namespace

void WriteTables(const Collection& collection, const Screen& screen, std::ostream& out) {
  TablesWriter(collection, screen, out).Write();
}

}  // namespace host
