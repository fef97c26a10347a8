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

#include "host/pqhost/formats.h"
#include "host/pqhost/row_cells.h"
#include "host/pqhost/screen_text.h"
#include "host/pqhost/table_sources.h"
#include "host/pqhost/text.h"

namespace host {
namespace {

constexpr std::size_t kColumnGap = 2;
constexpr std::size_t kWidestWord = 20;  ///< a longer one may be broken
constexpr std::size_t kWidestLabel = 34;
constexpr std::size_t kMostLines = 12;         ///< of one cell
constexpr std::size_t kMostShownBytes = 1600;  ///< of one cell
constexpr unsigned kNarrowestScreen = 20;

constexpr char kBold[] = "\x1b[1m";
constexpr char kHead[] = "\x1b[1;36m";
constexpr char kDim[] = "\x1b[2m";
constexpr char kPlain[] = "\x1b[0m";

std::string CountOf(std::size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string SizeText(std::size_t bytes) {
  if (bytes < 1024) return CountOf(bytes, "byte");
  if (bytes < std::size_t{1024} * 1024)
    return fmt::format("{:.1f} KiB", static_cast<double>(bytes) / 1024);
  return fmt::format("{:.1f} MiB", static_cast<double>(bytes) / (1024 * 1024));
}

/// Keeps whole characters.
std::string_view CutBytes(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return text.substr(0, most);
}

class TablesWriter {
 public:
  TablesWriter(const Collection& collection, const Screen& screen, std::ostream& out)
      : collection(collection),
        decode(collection.machine.codePage),
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
  using Cell = std::vector<std::string>;  ///< its lines

  void WriteModule(const CollectedModule& module) {
    const std::string name = EscapeControls(decode(module.name));
    const std::string words = EscapeControls(decode(module.description));
    WriteStyled(kHead, CutText(words + " · " + name, width));
    out << '\n';
    std::vector<std::string> empty;
    for (const CollectedTable& table : collection.tables) {
      if (table.module != module.name) continue;
      if (table.RowCount() == 0) {
        empty.push_back(EscapeControls(decode(table.className)));
        continue;
      }
      out << '\n';
      WriteTable(table);
    }
    if (empty.empty()) return;
    std::string line = "No rows:";
    for (const std::string& className : empty) line += " " + className;
    out << '\n';
    for (const std::string& part : WrapText(line, width)) {
      WriteStyled(kDim, part);
      out << '\n';
    }
  }

  void WriteTable(const CollectedTable& table) {
    const std::string className = EscapeControls(decode(table.className));
    const std::string title = EscapeControls(decode(TitleOf(table.className)));
    WriteStyled(kBold, title);
    if (title != className) out << " · " << className;
    out << " · " << CountOf(table.RowCount(), "row") << '\n';
    const std::vector<std::string> labels = Labels(*table.rows);
    const bool inColumns = table.layout.byRow && !HasAttachments(*table.rows);
    const std::vector<std::size_t> widths =
        inColumns ? FitColumns(*table.rows, labels) : std::vector<std::size_t>{};
    if (widths.empty()) {
      WriteBlocks(*table.rows);
    } else {
      WriteColumns(*table.rows, labels, widths);
    }
  }

  static bool HasAttachments(const Table& table) {
    return std::any_of(table.rows.begin(), table.rows.end(), [](const Row& row) {
      return std::any_of(row.shape->columns.begin(), row.shape->columns.end(),
                         [&](const Column& c) { return IsAttachment(*row.shape, c.key); });
    });
  }

  std::string Label(const Column& column) const {
    const std::string& words = column.label.empty() ? column.key : column.label;
    return EscapeControls(TrimForDisplay(decode(words)));
  }

  std::vector<std::string> Labels(const Table& table) const {
    std::vector<std::string> labels;
    for (const Column& column : table.columns) labels.push_back(Label(column));
    return labels;
  }

  /// The value as it is shown: without the blanks and line ends around it, a whole file as a note.
  std::string Shown(const Row& row, std::size_t place) const {
    const std::string& value = row.Values()[place];
    const std::string& key = row.shape->columns[place].key;
    if (IsAttachment(*row.shape, key)) {
      const std::string* name = FindAttribute(*row.shape, key, "filename");
      const std::string size = SizeText(value.size());
      if (name == nullptr) return fmt::format("[file, {}]", size);
      return fmt::format("[file {}, {}]", EscapeControls(decode(*name)), size);
    }
    const std::string text = decode(value);
    const std::string_view trimmed = TrimForDisplay(text);
    const std::string_view cut = CutBytes(trimmed, kMostShownBytes);
    std::string shown = EscapeControlsButLineFeeds(WithLineFeeds(cut));
    if (cut.size() < trimmed.size()) shown += fmt::format("… [{} in all]", SizeText(value.size()));
    return shown;
  }

  /// CR LF as LF.
  static std::string WithLineFeeds(std::string_view text) {
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
      lines += text[i];
    }
    return lines;
  }

  static Cell WrapCell(const std::string& shown, std::size_t cellWidth) {
    Cell lines;
    std::size_t begin = 0;
    while (begin <= shown.size()) {
      const std::size_t end = std::min(shown.find('\n', begin), shown.size());
      for (std::string& line : WrapText(shown.substr(begin, end - begin), cellWidth)) {
        lines.push_back(std::move(line));
      }
      begin = end + 1;
    }
    if (lines.size() > kMostLines) {
      const std::size_t hidden = lines.size() - kMostLines + 1;
      lines.resize(kMostLines - 1);
      lines.push_back(CutText(fmt::format("… [{} more]", CountOf(hidden, "line")), cellWidth));
    }
    return lines;
  }

  static std::size_t WidestLine(std::string_view shown) {
    std::size_t widest = 0;
    while (!shown.empty()) {
      const std::size_t end = std::min(shown.find('\n'), shown.size());
      widest = std::max(widest, MeasureWidth(shown.substr(0, end)));
      shown.remove_prefix(std::min(end + 1, shown.size()));
    }
    return widest;
  }

  static std::size_t LongestWord(std::string_view shown) {
    std::size_t longest = 0;
    while (!shown.empty()) {
      const std::size_t end = std::min(shown.find_first_of(" \n"), shown.size());
      longest = std::max(longest, MeasureWidth(shown.substr(0, end)));
      shown.remove_prefix(std::min(end + 1, shown.size()));
    }
    return longest;
  }

  /// What a column takes: in one line per cell, and with every line broken where a word ends.
  struct Need {
    std::size_t whole = 1;
    std::size_t broken = 1;

    void Add(std::string_view shown) {
      whole = std::max(whole, WidestLine(shown));
      if (broken < kWidestWord) broken = std::max(broken, LongestWord(shown));
    }
    /// The column's width when columns may be at most `most` wide.
    std::size_t WidthAt(std::size_t most) const {
      return std::min(whole, std::max(most, std::min(broken, kWidestWord)));
    }
  };

  /// A width for each column, or none when they do not fit: the widest columns give way, as long as
  /// no word has to be broken.
  std::vector<std::size_t> FitColumns(const Table& table, const std::vector<std::string>& labels) {
    if (labels.empty()) return {};
    std::vector<Need> needs(labels.size());
    for (std::size_t i = 0; i < labels.size(); ++i) needs[i].Add(labels[i]);
    RowCells cells(table);
    for (const Row& row : table.rows) {
      const std::vector<std::size_t>& places = cells.PlacesIn(row);
      for (std::size_t i = 0; i < places.size(); ++i) {
        if (places[i] != RowCells::kMissing) needs[i].Add(Shown(row, places[i]));
      }
    }
    const std::size_t gaps = kColumnGap * (needs.size() - 1);
    for (std::size_t most = width; most > 0; --most) {
      std::size_t total = gaps;
      for (const Need& need : needs) total += need.WidthAt(most);
      if (total > width) continue;
      std::vector<std::size_t> widths;
      for (const Need& need : needs) widths.push_back(need.WidthAt(most));
      Widen(widths, needs, width - total);
      return widths;
    }
    return {};
  }

  /// Deals out the `spare` columns of the screen: first to those who need fewest.
  static void Widen(std::vector<std::size_t>& widths, const std::vector<Need>& needs,
                    std::size_t spare) {
    while (spare > 0) {
      std::size_t poorest = widths.size();
      for (std::size_t i = 0; i < widths.size(); ++i) {
        const std::size_t missing = needs[i].whole - widths[i];
        const bool fewer =
            poorest == widths.size() || missing < needs[poorest].whole - widths[poorest];
        if (missing > 0 && fewer) poorest = i;
      }
      if (poorest == widths.size()) return;
      const std::size_t given = std::min(spare, needs[poorest].whole - widths[poorest]);
      widths[poorest] += given;
      spare -= given;
    }
  }

  void WriteColumns(const Table& table, const std::vector<std::string>& labels,
                    const std::vector<std::size_t>& widths) {
    std::vector<Cell> head;
    std::vector<Cell> rule;
    for (std::size_t i = 0; i < labels.size(); ++i) {
      head.push_back(WrapCell(labels[i], widths[i]));
      std::string line;
      for (std::size_t n = 0; n < widths[i]; ++n) line += "─";
      rule.push_back({line});
    }
    WriteLines(head, widths, kBold);
    WriteLines(rule, widths, kDim);
    RowCells cells(table);
    std::vector<Cell> line(labels.size());
    for (const Row& row : table.rows) {
      const std::vector<std::size_t>& places = cells.PlacesIn(row);
      for (std::size_t i = 0; i < places.size(); ++i) {
        const bool there = places[i] != RowCells::kMissing;
        line[i] = there ? WrapCell(Shown(row, places[i]), widths[i]) : Cell{};
      }
      WriteLines(line, widths, nullptr);
    }
  }

  void WriteLines(const std::vector<Cell>& cells, const std::vector<std::size_t>& widths,
                  const char* style) {
    std::size_t height = 1;
    for (const Cell& cell : cells) height = std::max(height, cell.size());
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

  void WriteBlocks(const Table& table) {
    std::size_t number = 0;
    for (const Row& row : table.rows) {
      ++number;
      if (table.rows.size() > 1) {
        if (number > 1) out << '\n';
        WriteStyled(kDim, fmt::format("── {} of {}", number, table.rows.size()));
        out << '\n';
      }
      WriteBlock(row);
    }
  }

  void WriteBlock(const Row& row) {
    const std::vector<Column>& columns = row.shape->columns;
    if (columns.empty()) out << "(no properties)\n";
    std::size_t widest = 0;
    for (const Column& column : columns) widest = std::max(widest, MeasureWidth(Label(column)));
    const std::size_t labelWidth =
        std::min({widest, kWidestLabel, static_cast<std::size_t>(width / 2)});
    const std::size_t valueWidth = width - labelWidth - kColumnGap;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::string label = CutText(Label(columns[i]), labelWidth);
      std::string start = label + ":";  // The colon takes part of the gap.
      for (const std::string& line : WrapCell(Shown(row, i), valueWidth)) {
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
  TextDecoder decode;
  unsigned width;
  bool colors;
  std::ostream& out;
};

}  // namespace

void WriteTables(const Collection& collection, const Screen& screen, std::ostream& out) {
  TablesWriter(collection, screen, out).Write();
}

}  // namespace host
