//   two-socket: 2026-11-14 09:40 -> 2026-11-18 09:41    1 part, 1 cell, 1 log entry, 1 finding
//     new critical drive.failed lsi0 69:9: Offln
//     ~ drive lsi0 69:9 (Z4K002C9144) state Onln -> Offln
//     ~ VERINFO BMC Firmware: '3.62.17' -> '3.63.02'
//     log SEL: 1 new
//     ? not compared: FRUINFO: not read in the second: no answer
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/part_names.h"
#include "host/formats/difference/difference_formats.h"
#include "host/formats/difference/difference_words.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kMostShownEntries = 20;

char GetSign(PartChange change) {
  constexpr char kSigns[] = {'~', '>', '=', '+', '-'};
  return kSigns[static_cast<std::size_t>(change)];
}

const char* ChooseColor(const FindingDifference& finding) {
  if (!finding.after) return "";
  return *finding.after == Severity::kCritical ? "\x1b[31m" : "\x1b[33m";
}

std::string OrNothing(const OptionalText& text) { return text ? *text : "nothing"; }

std::string Quote(const OptionalText& text) {
  return text ? fmt::format("'{}'", *text) : "nothing";
}

class LinesWriter {
 public:
  LinesWriter(const Screen& screen, std::ostream& out) : screen(screen), out(out) {}

  void Write(std::size_t indent, std::string_view text, std::string_view color = "") {
    constexpr std::size_t kLeast = 20;
    constexpr std::size_t kHang = 4;
    const std::size_t width =
        std::max(kLeast, static_cast<std::size_t>(screen.width) - indent - kHang);
    const bool isColored = screen.colors && !color.empty();
    for (const std::string& line : WrapText(EscapeControls(text), width)) {
      out << std::string(indent, ' ') << (isColored ? color : "") << line
          << (isColored ? "\x1b[0m" : "") << '\n';
      if (indent < kHang) indent += kHang;
    }
  }

 private:
  const Screen& screen;
  std::ostream& out;
};

std::string DescribeFinding(const FindingDifference& one) {
  const char* before = one.before ? GetWord(*one.before) : "";
  const char* after = one.after ? GetWord(*one.after) : "";
  std::string what = fmt::format("{} {}: {}", one.rule, one.id, one.observed);
  switch (one.change) {
    case FindingChange::kNew:
      return fmt::format("new {} {}", after, what);
    case FindingChange::kGone:
      return fmt::format("gone {} {}", before, what);
    case FindingChange::kChanged:
      return fmt::format("was {}, {} {}", before, after, what);
    case FindingChange::kNotCheckedBefore:
      return fmt::format("not checked before: {} {}", after, what);
    case FindingChange::kNotCheckedAnyMore:
      return fmt::format("not checked any more: {} {}", before, what);
  }
  return what;
}

std::string DescribePart(const PartDifference& part) {
  std::string text =
      fmt::format("{} {} {}", GetSign(part.change), NameParts(part.table, 1), part.id);
  if (!part.serial.empty()) text += fmt::format(" ({})", part.serial);
  if (!part.state.empty()) text += " " + part.state;
  std::vector<std::string> columns;
  for (const ChangedColumn& column : part.columns) {
    columns.push_back(fmt::format("{} {} -> {}", column.column, OrNothing(column.before),
                                  OrNothing(column.after)));
  }
  if (!columns.empty()) text += fmt::format(" {}", fmt::join(columns, ", "));
  return text;
}

std::string DescribeCell(const CellDifference& cell) {
  std::string name = cell.className + " " + cell.key;
  if (!cell.column.empty()) name += " " + cell.column;
  if (!cell.before) return fmt::format("+ {}: {}", name, Quote(cell.after));
  if (!cell.after) return fmt::format("- {}: {}", name, Quote(cell.before));
  return fmt::format("~ {}: {} -> {}", name, Quote(cell.before), Quote(cell.after));
}

std::string DescribeReport(const ReportDifference& report) {
  return fmt::format("~ {} {}: {} gone, {} new", report.className, report.key,
                     FormatCount(report.linesOfBefore, "line"), report.linesOfAfter);
}

void WriteLog(const LogDifference& log, const Screen& screen, LinesWriter& lines) {
  std::vector<const NewEntry*> shown;
  for (const NewEntry& entry : log.entries) {
    if (screen.showsAll || IsSerious(entry)) shown.push_back(&entry);
  }
  std::string text = fmt::format("log {}: {} new", log.log, log.entries.size());
  if (log.wasCleared) text += ", it was cleared or has wrapped around";
  if (!screen.showsAll && !shown.empty()) {
    text += fmt::format(", {} of them warnings or worse:", shown.size());
  }
  lines.Write(2, text);
  const std::size_t count =
      screen.showsAll ? shown.size() : std::min(shown.size(), kMostShownEntries);
  // The newest are the last ones.
  for (std::size_t i = shown.size() - count; i < shown.size(); ++i) {
    lines.Write(6, DescribeEntry(*shown[i]));
  }
  if (count < shown.size()) {
    lines.Write(6, fmt::format("and {} before them (--all)", shown.size() - count));
  }
}

void WriteNotCompared(const std::vector<NotCompared>& all, LinesWriter& lines) {
  for (const NotComparedGroup& group : GroupNotCompared(all)) {
    lines.Write(
        2, fmt::format("? not compared: {}: not read in the {}: {}", fmt::join(group.names, ", "),
                       group.side == DifferenceSide::kBefore ? "first" : "second", group.why));
  }
}

std::string DescribeHead(const NamedDifference& named) {
  const Difference& difference = named.difference;
  const std::string before = DescribeTime(difference.before);
  const std::string after = DescribeTime(difference.after);
  const std::string sides =
      named.before == named.after
          ? fmt::format("{}: {} -> {}", named.after, before, after)
          : fmt::format("{} {} -> {} {}", named.before, before, named.after, after);
  return fmt::format("{}    {}", sides, CountDifferences(difference));
}

}  // namespace

void WriteDifferenceTable(const NamedDifference& named, const Screen& screen, std::ostream& out) {
  const Difference& difference = named.difference;
  if (difference.IsNone()) {
    out << "no difference\n";
    return;
  }
  LinesWriter lines(screen, out);
  lines.Write(0, DescribeHead(named));
  if (difference.otherMachine) {
    lines.Write(2, "! no serial number in common: these look like two machines");
  }
  for (const FindingDifference& one : difference.findings) {
    lines.Write(2, DescribeFinding(one), ChooseColor(one));
  }
  for (const PartDifference& part : difference.parts) lines.Write(2, DescribePart(part));
  for (const CellDifference& cell : difference.cells) lines.Write(2, DescribeCell(cell));
  for (const ReportDifference& one : difference.reports) lines.Write(2, DescribeReport(one));
  for (const LogDifference& log : difference.logs) WriteLog(log, screen, lines);
  WriteNotCompared(difference.notCompared, lines);
}

}  // namespace host
