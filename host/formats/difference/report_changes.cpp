#include "host/formats/difference/report_changes.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <vector>

#include "host/answers/difference/logs_comparison.h"
#include "host/answers/parts/part_names.h"
#include "host/formats/difference/difference_words.h"
#include "host/formats/report_areas.h"
#include "host/formats/report_columns.h"
#include "host/formats/report_size.h"
#include "host/text/count_text.h"

namespace host {
namespace {

constexpr std::size_t kMostRows = 200;    ///< of a list
constexpr std::size_t kMostEntries = 50;  ///< of a log, the newest
constexpr std::size_t kMostListBytes = std::size_t{256} << 10;

std::string NameVerdict(const ComparedSide& side) {
  return side.verdict == "ok" ? "OK" : side.verdict;
}

std::string DescribeWhole(const NamedDifference& named) {
  const Difference& difference = named.difference;
  std::string text = difference.IsNone() ? fmt::format("No difference to {}.", named.before)
                                         : fmt::format("Compared with {}: {}.", named.before,
                                                       CountDifferences(difference));
  if (difference.before.verdict == difference.after.verdict) {
    text += fmt::format(" The verdict was {}, as it is now.", NameVerdict(difference.before));
  } else {
    text += fmt::format(" The verdict was {}; now it is {}.", NameVerdict(difference.before),
                        NameVerdict(difference.after));
  }
  if (difference.isOlder) text += " The other collection is the newer one.";
  if (difference.otherMachine) {
    text += " No serial number is in both: these look like two machines.";
  }
  return text;
}

std::string DescribeChange(const FindingDifference& one) {
  const auto name = [](const std::optional<Severity>& severity) {
    return severity ? GetWord(*severity) : "";
  };
  if (one.change == FindingChange::kChanged) {
    return fmt::format("was {}, is {}", name(one.before), name(one.after));
  }
  return fmt::format("{}: {}", GetWord(one.change), name(one.after ? one.after : one.before));
}

std::string ShowValue(const ChangedColumn& column, const OptionalText& value) {
  return value ? ShowPartText(column.column, *value) : std::string();
}

void WriteLog(const LogDifference& log, HtmlWriter& html) {
  const auto serious = static_cast<std::size_t>(std::ranges::count_if(log.entries, &IsSerious));
  html.Add("<details class=\"more\"><summary>").ShortText(log.log, kWidestReportText).Add(": ");
  html.Number(log.entries.size()).Add(" new");
  if (serious > 0) html.Add(", ").Number(serious).Add(" of them warnings or worse");
  if (log.wasCleared) html.Add("; it was cleared or has wrapped around");
  html.Add("</summary><ul>");
  const std::size_t count = std::min(log.entries.size(), kMostEntries);
  // The newest are the last ones.
  for (std::size_t i = log.entries.size() - count; i < log.entries.size(); ++i) {
    const NewEntry& entry = log.entries[i];
    html.Add("<li>");
    if (IsSerious(entry)) html.Add("<b>");
    html.ShortText(DescribeEntry(entry), kWidestReportText);
    if (IsSerious(entry)) html.Add("</b>");
    html.Add("</li>");
  }
  html.Add("</ul>");
  if (count < log.entries.size()) {
    html.Add("<p class=\"cut\">and ").Number(log.entries.size() - count);
    html.Add(" before them, which pqhost diff shows</p>");
  }
  html.Add("</details>");
}

class ChangesWriter {
 public:
  ChangesWriter(const NamedDifference& named, const FindPartAddress& findAddress, HtmlWriter& html)
      : named(named), difference(named.difference), findAddress(findAddress), html(html) {}

  void Write() {
    html.Add("<section id=\"changes\" aria-labelledby=\"changes-title\">");
    html.Add("<h2 class=\"caption\" id=\"changes-title\">Changes since ");
    html.Text(DescribeTime(difference.before)).Add("</h2>");
    html.Add("<div class=\"panel changes\"><p>").Text(DescribeWhole(named)).Add("</p>");
    WriteFindings();
    WriteParts();
    WriteCells();
    WriteReports();
    WriteLogs();
    WriteNotCompared();
    html.Add("</div></section>");
  }

 private:
  /// The first of a list, each by `writeOne`, and how many more there are.
  template <typename List, typename WriteOne>
  void WriteFirst(const List& list, const WriteOne& writeOne) {
    const std::size_t begin = html.CountBytes();
    std::size_t i = 0;
    for (; i < list.size() && i < kMostRows && html.CountBytes() - begin < kMostListBytes; ++i) {
      writeOne(list[i]);
    }
    left = list.size() - i;
  }

  void WriteLeft() {
    if (left == 0) return;
    html.Add("<p class=\"cut\">and ").Number(left).Add(" more, which pqhost diff shows</p>");
  }

  void WriteFindings() {
    if (difference.findings.empty()) return;
    html.Add("<h3>Findings</h3><ul>");
    WriteFirst(difference.findings, [&](const FindingDifference& one) { WriteFinding(one); });
    html.Add("</ul>");
    WriteLeft();
  }

  void WriteFinding(const FindingDifference& one) {
    const bool isGone = !one.after;
    const Tone tone = isGone ? Tone::kAbsent : GetTone(*one.after);
    html.Add("<li><span class=\"chip ").Text(GetStyleClass(tone)).Add("\">");
    html.Text(DescribeChange(one)).Add("</span> ");
    if (isGone && one.change == FindingChange::kGone) {
      html.Add("<del>").ShortText(one.text, kWidestReportText).Add("</del>");
    } else {
      html.ShortText(one.text, kWidestReportText);
    }
    html.Add(" <span class=\"faint\">").ShortText(one.rule, kWidestReportText).Add("</span></li>");
  }

  void BeginTable(std::string_view title, const std::vector<std::string_view>& columns) {
    html.Add("<h3>").Text(title).Add("</h3><div class=\"scroll\" tabindex=\"0\" role=\"region\" ");
    html.Add("aria-label=\"Changes: ").Text(title);
    html.Add("\"><table class=\"joined\"><thead><tr>");
    for (const std::string_view column : columns) {
      html.Add("<th scope=\"col\">").Text(column).Add("</th>");
    }
    html.Add("</tr></thead><tbody>");
  }

  void EndTable() {
    html.Add("</tbody></table></div>");
    WriteLeft();
  }

  void WriteValue(std::string_view text, bool isOld) {
    html.Add("<td>");
    if (isOld && !text.empty()) {
      html.Add("<del>").ShortText(text, kWidestReportText).Add("</del>");
    } else {
      html.ShortText(text, kWidestReportText);
    }
    html.Add("</td>");
  }

  void WriteParts() {
    if (difference.parts.empty()) return;
    BeginTable("Parts", {"Part", "Change", "Value", "Before", "Now"});
    WriteFirst(difference.parts, [&](const PartDifference& part) { WritePart(part); });
    EndTable();
  }

  void WritePart(const PartDifference& part) {
    const std::string address =
        part.change == PartChange::kRemoved ? std::string() : findAddress(part.table, part.id);
    const std::size_t rows = std::max<std::size_t>(part.columns.size(), 1);
    for (std::size_t i = 0; i < rows; ++i) {
      html.Add("<tr><th scope=\"row\">");
      if (!address.empty()) html.Add("<a href=\"#").Text(address).Add("\">");
      html.ShortText(NameParts(part.table, 1) + ' ' + part.id, kWidestReportText);
      if (!address.empty()) html.Add("</a>");
      html.Add("</th><td>").Text(GetWord(part.change)).Add("</td>");
      if (part.columns.empty()) {
        WriteWholePart(part);
      } else {
        const ChangedColumn& column = part.columns[i];
        html.Add("<td>").Text(LabelColumn(column.column)).Add("</td>");
        WriteValue(ShowValue(column, column.before), /*isOld=*/true);
        WriteValue(ShowValue(column, column.after), /*isOld=*/false);
      }
      html.Add("</tr>");
    }
  }

  /// What came or went, by its state and serial number.
  void WriteWholePart(const PartDifference& part) {
    const bool isOld = part.change == PartChange::kRemoved;
    const std::string known = part.state + (part.state.empty() ? "" : " ") + part.serial;
    html.Add("<td></td>");
    WriteValue(isOld ? known : "", /*isOld=*/true);
    WriteValue(isOld ? "" : known, /*isOld=*/false);
  }

  void WriteCells() {
    if (difference.cells.empty()) return;
    BeginTable("Cells that no part covers", {"Table", "Row", "Column", "Before", "Now"});
    WriteFirst(difference.cells, [&](const CellDifference& cell) {
      html.Add("<tr><th scope=\"row\">").ShortText(cell.className, kWidestReportText).Add("</th>");
      WriteValue(cell.key, /*isOld=*/false);
      WriteValue(cell.column, /*isOld=*/false);
      WriteValue(cell.before ? *cell.before : "", /*isOld=*/true);
      WriteValue(cell.after ? *cell.after : "", /*isOld=*/false);
      html.Add("</tr>");
    });
    EndTable();
  }

  void WriteReports() {
    if (difference.reports.empty()) return;
    html.Add("<h3>Raw reports</h3><ul>");
    WriteFirst(difference.reports, [&](const ReportDifference& one) {
      html.Add("<li>").ShortText(one.className + ' ' + one.key, kWidestReportText).Add(": ");
      html.Text(FormatCount(one.linesOfBefore, "line")).Add(" gone, ");
      html.Number(one.linesOfAfter).Add(" new</li>");
    });
    html.Add("</ul>");
    WriteLeft();
  }

  void WriteLogs() {
    if (difference.logs.empty()) return;
    html.Add("<h3>Logs</h3>");
    WriteFirst(difference.logs, [&](const LogDifference& log) { WriteLog(log, html); });
    WriteLeft();
  }

  void WriteNotCompared() {
    if (difference.notCompared.empty()) return;
    html.Add("<h3>Not compared</h3><ul>");
    WriteFirst(GroupNotCompared(difference.notCompared), [&](const NotComparedGroup& group) {
      html.Add("<li>");
      html.ShortText(fmt::format("{}", fmt::join(group.names, ", ")), kWidestReportText);
      html.Add(": not read ");
      html.Text(group.side == DifferenceSide::kBefore ? "then" : "now").Add(": ");
      html.ShortText(group.why, kWidestReportText).Add("</li>");
    });
    html.Add("</ul>");
    WriteLeft();
  }

  const NamedDifference& named;
  const Difference& difference;
  const FindPartAddress& findAddress;
  HtmlWriter& html;
  std::size_t left = 0;  ///< of the list that was written last
};

}  // namespace

ReportChanges::ReportChanges(const Difference& difference) {
  for (const PartDifference& part : difference.parts) {
    if (part.change != PartChange::kRemoved) parts.emplace(PartKey{part.table, part.id}, &part);
  }
  for (const LogDifference& log : difference.logs) {
    for (const NewEntry& entry : log.entries) {
      entries.emplace(log.log, entry.number, entry.time, entry.text);
    }
  }
}

const ChangedColumn* ReportChanges::FindColumn(std::string_view table, std::string_view id,
                                               std::string_view column) const {
  const auto part = parts.find({table, id});
  if (part == parts.end()) return nullptr;
  const std::vector<ChangedColumn>& columns = part->second->columns;
  const auto found = std::ranges::find(columns, column, &ChangedColumn::column);
  return found == columns.end() ? nullptr : &*found;
}

std::string_view ReportChanges::FindMark(std::string_view table, const Part& part) const {
  if (table == "events") {
    const auto& event = static_cast<const Event&>(part);
    const bool isNew = entries.contains(
        {NameLog(event.source, event.controller), event.number, event.time, event.text});
    return isNew ? "new" : "";
  }
  const auto found = parts.find({table, part.id});
  if (found == parts.end() || found->second->change == PartChange::kChanged) return {};
  return found->second->change == PartChange::kAdded ? "new" : GetWord(found->second->change);
}

void WriteChangesSection(const NamedDifference& named, const FindPartAddress& findAddress,
                         HtmlWriter& html) {
  ChangesWriter(named, findAddress, html).Write();
}

}  // namespace host
