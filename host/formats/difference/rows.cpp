#include "host/formats/difference/rows.h"

#include <utility>

namespace host {
namespace {

constexpr DifferenceRowColumn kColumns[] = {
    {"kind", "`finding`, `part`, `cell`, `report`, `log` or `not compared`",
     [](const DifferenceRow& row) -> OptionalText { return row.kind; }},
    {"part", "table of parts, class, or log; what is not compared",
     [](const DifferenceRow& row) -> OptionalText { return row.part; }},
    {"id", "of the part, or the cell's row", [](const DifferenceRow& row) { return row.id; }},
    {"serial", "serial number of the part", [](const DifferenceRow& row) { return row.serial; }},
    {"change", "what happened to it, in a word",
     [](const DifferenceRow& row) -> OptionalText { return row.change; }},
    {"column",
     "that differs; of a finding its rule; of what is not compared the side that could "
     "not be read, `old` or `new`",
     [](const DifferenceRow& row) { return row.column; }},
    {"old", "value in the first collection; of a finding its severity there",
     [](const DifferenceRow& row) { return row.before; }},
    {"new", "value in the second collection; of a log the number of new entries",
     [](const DifferenceRow& row) { return row.after; }},
    {"text", "what was observed, or why it is not compared",
     [](const DifferenceRow& row) { return row.text; }},
};

OptionalText MakeNumber(const Integer& number) {
  if (!number) return std::nullopt;
  return std::to_string(*number);
}

constexpr NewEntryColumn kEntryColumns[] = {
    {"log", false, "which log, with its controller",
     [](const LogDifference& log, const NewEntry&) -> OptionalText { return log.log; }},
    {"number", true, "the log's number of the entry",
     [](const LogDifference&, const NewEntry& entry) { return MakeNumber(entry.number); }},
    {"time", false, "when",
     [](const LogDifference&, const NewEntry& entry) -> OptionalText { return entry.time; }},
    {"level", true, "how grave, as in the part table `events`",
     [](const LogDifference&, const NewEntry& entry) { return MakeNumber(entry.level); }},
    {"text", false, "the entry in words",
     [](const LogDifference&, const NewEntry& entry) -> OptionalText { return entry.text; }},
};

OptionalText NameSeverity(const std::optional<Severity>& severity) {
  if (!severity) return std::nullopt;
  return GetWord(*severity);
}

OptionalText UnlessEmpty(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return text;
}

const char* NameChange(const CellDifference& cell) {
  if (!cell.before) return "added";
  return cell.after ? "changed" : "removed";
}

using Take = std::function<void(const DifferenceRow&)>;

void TakePart(const PartDifference& part, const Take& take) {
  DifferenceRow row{"part", part.table, part.id, UnlessEmpty(part.serial), GetWord(part.change), {},
                    {},     {},         {}};
  for (const ChangedColumn& column : part.columns) {
    row.column = column.column;
    row.before = column.before;
    row.after = column.after;
    take(row);
  }
  if (!part.columns.empty()) return;
  (part.change == PartChange::kRemoved ? row.before : row.after) = UnlessEmpty(part.state);
  take(row);
}

}  // namespace

std::span<const DifferenceRowColumn> ListDifferenceRowColumns() { return kColumns; }
std::span<const NewEntryColumn> ListNewEntryColumns() { return kEntryColumns; }

void ForEachDifferenceRow(const Difference& difference, const Take& take) {
  for (const FindingDifference& one : difference.findings) {
    take({"finding", one.part, one.id, UnlessEmpty(one.serial), GetWord(one.change), one.rule,
          NameSeverity(one.before), NameSeverity(one.after), one.observed});
  }
  for (const PartDifference& part : difference.parts) TakePart(part, take);
  for (const CellDifference& cell : difference.cells) {
    take({"cell",
          cell.className,
          cell.key,
          {},
          NameChange(cell),
          UnlessEmpty(cell.column),
          cell.before,
          cell.after,
          {}});
  }
  for (const ReportDifference& report : difference.reports) {
    take({"report",
          report.className,
          report.key,
          {},
          "changed",
          "lines",
          std::to_string(report.linesOfBefore),
          std::to_string(report.linesOfAfter),
          {}});
  }
  for (const LogDifference& log : difference.logs) {
    take({"log",
          log.log,
          {},
          {},
          log.wasCleared ? "cleared" : "changed",
          {},
          {},
          std::to_string(log.entries.size()),
          {}});
  }
  for (const NotCompared& one : difference.notCompared) {
    take({"not compared",
          one.what,
          {},
          {},
          "not compared",
          one.side == DifferenceSide::kBefore ? "old" : "new",
          {},
          {},
          one.why});
  }
}

}  // namespace host
