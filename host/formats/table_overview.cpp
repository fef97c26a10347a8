#include "host/formats/table_overview.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "host/answers/assessment.h"
#include "host/catalogue/table_sources.h"
#include "host/formats/collection_summary.h"
#include "host/formats/column_widths.h"
#include "host/formats/health_formats.h"
#include "host/formats/machine_summary.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

/// Beside the names of a table there has to be room for so much of its status.
constexpr std::size_t kLeastStatus = 24;

void WriteFacts(const Collection& collection, StyledScreen& screen) {
  const std::vector<std::pair<std::string, std::string>> facts = ListMachineFacts(collection);
  std::size_t widest = 0;
  for (const auto& [name, value] : facts) widest = std::max(widest, MeasureWidth(name));
  for (const auto& [name, value] : facts) {
    const std::string start = PadText(name + ":", widest + kColumnGap);
    screen.Out() << start;
    screen.WriteParagraph(EscapeControls(value), start.size());
  }
}

void WriteVerdict(const Collection& collection, StyledScreen& screen) {
  const Health health = Assess(collection).health;
  // Who asked for the ARP table alone is not told that nobody knows how the drives are.
  if (collection.isSelection && health.checked.empty()) return;
  screen.Out() << '\n';
  WriteHealthSummary(health, {.colors = screen.HasColors(), .width = screen.Width()}, screen.Out());
  screen.Out() << '\n';
}

void WriteProblems(const Collection& collection, StyledScreen& screen) {
  if (collection.problems.empty()) return;
  screen.Out() << '\n';
  screen.WriteLine(kRedStyle, FormatCount(collection.problems.size(), "problem"));
  for (const std::string& problem : collection.problems) {
    screen.Out() << "  ";
    screen.WriteParagraph(EscapeControls(problem), 4);
  }
}

/// Of a table with rows its notes are shown with these; whoever reads no further is told of them.
std::string MentionNotes(const TableStatus& status) {
  std::string text = status.text;
  if (!status.oldFiles.empty()) text += "; " + status.oldFiles;
  if (!status.unfitLabels.empty()) return text + "; columns do not fit";
  const std::size_t others = status.notes.size() - (status.oldFiles.empty() ? 0 : 1);
  if (others > 0) text += others == 1 ? " (see its note)" : " (see its notes)";
  return text;
}

/// The status after the names or, where these leave too little room, below them.
void WriteStatus(std::string line, const std::string& status, const char* style,
                 StyledScreen& screen) {
  std::size_t indent = MeasureWidth(line);
  if (indent + kLeastStatus > screen.Width()) {
    screen.WriteLine(style, line.substr(0, line.find_last_not_of(' ') + 1));
    indent = 4;
    line.assign(indent, ' ');
  }
  for (const std::string& part : WrapText(status, screen.Width() - indent)) {
    line += part;
    screen.WriteLine(style, line.substr(0, line.find_last_not_of(' ') + 1));
    line.assign(indent, ' ');
  }
}

/// A line for each table: its class, its title and its status below each other's.
class StatusLines {
 public:
  StatusLines(const CollectionView& view, StyledScreen& screen) : view(view), screen(screen) {
    for (const CollectedTable& table : view.GetCollection().tables) {
      nameWidth = std::max(nameWidth, 2 + MeasureWidth(ShowClass(table)) + kColumnGap);
      titleWidth = std::max(titleWidth, MeasureWidth(ShowTitle(table)) + kColumnGap);
    }
  }

  void Write(const TableGroup& group) {
    screen.WriteLine(kBold, CutText(EscapeControls(view.Excerpt(group.area)), screen.Width()));
    for (const std::size_t i : group.tables) {
      const CollectedTable& table = view.GetCollection().tables[i];
      const bool hasRows = table.RowCount() > 0;
      std::string line = PadText(CutText("  " + ShowClass(table), screen.Width()), nameWidth);
      if (nameWidth + titleWidth + kLeastStatus <= screen.Width()) {
        line = PadText(std::move(line.append(ShowTitle(table))), nameWidth + titleWidth);
      }
      WriteStatus(
          line, EscapeControls(hasRows ? MentionNotes(table.status) : DescribeStatus(table.status)),
          hasRows ? nullptr : kDim, screen);
    }
  }

 private:
  std::string ShowClass(const CollectedTable& table) const {
    return EscapeControls(view.Excerpt(table.className));
  }
  std::string ShowTitle(const CollectedTable& table) const {
    return EscapeControls(view.Excerpt(TitleOf(table.className)));
  }

  const CollectionView& view;
  StyledScreen& screen;
  // Columns that all tables' names and titles take, with the gaps around them.
  std::size_t nameWidth = 0;
  std::size_t titleWidth = 0;
};

}  // namespace

void WriteOverview(const CollectionView& view, const std::vector<TableGroup>& groups,
                   StyledScreen& screen) {
  const Collection& collection = view.GetCollection();
  screen.WriteHead(NameMachine(collection));
  WriteFacts(collection, screen);
  WriteVerdict(collection, screen);
  screen.WriteParagraph(DescribeOutcome(collection), 0);
  WriteProblems(collection, screen);
  screen.Out() << '\n';
  StatusLines lines(view, screen);
  for (const TableGroup& group : groups) lines.Write(group);
}

}  // namespace host
