// docs/diff.md, from what is compared.
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string>
#include <string_view>
#include <vector>

#include "host/answers/difference/compared.h"
#include "host/formats/difference/difference_formats.h"
#include "host/formats/difference/rows.h"

namespace host {
namespace {

constexpr char kIntroduction[] = R"(# Differences

Made by `pqhost diff --list-compared`.

`pqhost diff OLD NEW` tells what changed on a machine between two collections: what was added, removed, moved, replaced
or changed, what is new in its logs, and which findings of [health](health.md) came or went.

```
two-socket: 2026-11-14 09:40 -> 2026-11-18 09:41    1 part, 1 cell, 1 log entry, 1 finding
  new critical drive.failed lsi0 69:9: Offln
  ~ drive lsi0 69:9 (Z4K002C9144) state Onln -> Offln
  ~ VERINFO BMC Firmware: '3.62.17' -> '3.63.02'
  log SEL: 1 new, 1 of them warnings or worse:
      2026-11-18T09:00:00 AC lost
  ? not compared: FRUINFO: not read in the second: Cannot open device
```

| sign | change | means |
|---|---|---|
| `~` | changed | |
| `>` | moved | the same serial number in another place |
| `=` | replaced | another serial number, or model, in the same place; its counters are not compared |
| `+` `-` | added, removed | only in NEW, only in OLD |
| `!` | another machine | both tell serial numbers of machine, controllers or drives, and have none in common |
| `?` | not compared | only one of the recordings tells it, since the other could not read it |

- Things are matched by what identifies them. Order and white space are no difference.
- What could not be read is not compared, never removed, and a finding on it is "not checked any more", never gone. A
  cell without a value tells nothing, either; of columns marked with ° nothing is a value, too.
- Readings, temperatures and clocks are no difference. Counters that grow are.
- A controller that has another number now is found by its serial number, and all that is called after it with it. One
  that is not there any more, though another has its name, is called `former`.
- Serial numbers that are shorter than 4 characters, masked with `*`, or of nothing but `x` and `0` identify nothing.

OLD and NEW are recordings, folders or ZIP files, or results: `json`, `sqlite` or a report.

Exit codes: 0 no difference; 1 differences, also when something is not compared; 2 wrong use, unreadable input, Ctrl-C.
If NEW is the older one, standard error says so.

`--ignore PART.COLUMN` leaves a column of a part or a table out (`*` is any text), `--part NAME` compares these parts
and nothing else (`events`: logs), `--table NAME` compares a table by its cells though parts cover it, `--all` shows all
new entries of logs and counts the changed lines of the tools' reports.

## Parts

| part | matched by | compared | left out |
|---|---|---|---|
)";

constexpr char kTables[] = R"(
A drive's `place` and `controller` are where it is: with other values it was moved. A sensor's `status` is no difference
when both recordings have the same `states`, since builds of the tool have other words for them.

Not in the table: `events` are compared as logs, `sources` say what is not compared, `unread` is left out.

## Tables

Tables whose rows are parts are not compared again.

| table | compared | matched by | left out |
|---|---|---|---|
)";

constexpr char kLogsAndFindings[] = R"(
Rows of ARPINFO come and go: only the physical address of one that is in both is compared.

## Logs

A log is what the part table `events` has of one source and controller. An entry is new when no entry of OLD has its
number, time and text. A log without an entry in common was cleared, or has wrapped around, and all of NEW's count. A
log that is empty on one side is not compared. The screen shows of the new entries those from a warning on, at most 20.

## Findings

Both recordings are judged by the same rules, each as of its own time, and their hits compared by rule and part.
Notices count as none.

## Formats

`--format json` is one object ([diff.schema.json](diff.schema.json)). `old` and `new` are the recordings: `name`, `asOf`,
`asOfFrom`, `verdict`. Lists: `findings` (`old` and `new` are severities), `parts` with their `columns`, `cells`,
`reports`, `logs` with all new `entries`, and `notCompared`. A value that is not told is `null`.

`--format html` is a page to read. The report has the same as its section "Changes since", with the old values in its
tables, when it is made with `pqhost collect --compare OLD --format html`, or `--report`.

`--format sqlite` has two tables, and `--format csv` the same with an empty line between them.

)";

std::string JoinColumns(const std::vector<std::string>& columns) {
  return fmt::format("{}", fmt::join(columns, ", "));
}

std::string Mark(const ComparedColumn& column) {
  const char* mark = column.use == ColumnUse::kSign ? "°" : "";
  return fmt::format("`{}`{}", column.name, mark);
}

/// Columns with the reason, those of one reason together.
std::string DescribeLeftOut(const ComparedPart& part) {
  std::vector<std::pair<std::string_view, std::vector<std::string>>> byReason;
  for (const ComparedColumn& column : part.columns) {
    if (column.use != ColumnUse::kLeftOut) continue;
    auto known = byReason.begin();
    while (known != byReason.end() && known->first != column.why) ++known;
    if (known == byReason.end()) known = byReason.insert(known, {column.why, {}});
    known->second.push_back(Mark(column));
  }
  std::vector<std::string> reasons;
  for (const auto& [why, columns] : byReason) {
    reasons.push_back(fmt::format("{} ({})", JoinColumns(columns), why));
  }
  return fmt::format("{}", fmt::join(reasons, "; "));
}

std::string DescribePart(const ComparedPart& part) {
  std::vector<std::string> compared;
  for (const ComparedColumn& column : part.columns) {
    if (column.use != ColumnUse::kLeftOut) compared.push_back(Mark(column));
  }
  return fmt::format("| `{}` | {} | {} | {} |\n", part.table, part.key, JoinColumns(compared),
                     DescribeLeftOut(part));
}

std::string DescribeTurn(const ComparedTable& table) {
  switch (table.turn) {
    case TableTurn::kAlways:
      return "always";
    case TableTurn::kOnRequest:
      return fmt::format("with `--table {}`", table.className);
    default:
      return "no: " + std::string(table.why);
  }
}

std::string DescribeKey(const ComparedTable& table) {
  switch (table.form) {
    case TableForm::kRows:
      return fmt::format("`{}`", fmt::join(table.keys, "`, `"));
    case TableForm::kLabels:
      return "label of the cell";
    case TableForm::kLines:
      return "device and field in the line";
    case TableForm::kNone:
      break;
  }
  return {};
}

std::string DescribeTable(const ComparedTable& table) {
  const std::string leftOut =
      table.leftOut.empty() ? std::string() : fmt::format("`{}`", fmt::join(table.leftOut, "`, `"));
  return fmt::format("| {} | {} | {} | {} |\n", table.className, DescribeTurn(table),
                     DescribeKey(table), leftOut);
}

std::string DescribeRowColumns() {
  std::string text = fmt::format("`{}`: a row for each column that differs\n\n", kDifferences);
  text += "| column | holds |\n|---|---|\n";
  for (const DifferenceRowColumn& column : ListDifferenceRowColumns()) {
    text += fmt::format("| `{}` | {} |\n", column.name, column.description);
  }
  text += fmt::format("\n`{}`: a row for each new entry of a log\n\n", kNewEntries);
  text += "| column | holds |\n|---|---|\n";
  for (const NewEntryColumn& column : ListNewEntryColumns()) {
    text += fmt::format("| `{}` | {} |\n", column.name, column.description);
  }
  return text;
}

}  // namespace

std::string WriteDifferenceDocument() {
  std::string text = kIntroduction;
  for (const ComparedPart& part : ListComparedParts()) text += DescribePart(part);
  text += kTables;
  for (const ComparedTable& table : ListComparedTables()) text += DescribeTable(table);
  return text + kLogsAndFindings + DescribeRowColumns();
}

}  // namespace host
