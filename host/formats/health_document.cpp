// docs/health.md, from the rules.
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/answers/health/finding_tables.h"
#include "host/formats/health_formats.h"

namespace host {
namespace {

constexpr char kIntroduction[] = R"(# Health

Made by `pqhost health --list-rules`.

`pqhost health` tells whether a machine is well, how that is known, and what to do next. It reads the machine's parts
out of the tools' reports and asks rules of them. A rule's answer is a hit; hits on one part, or with one cause, are one
finding, which is called after what a person acts on: the failed drive, not the array that it degraded.

| severity | means | verdict | exit code |
|---|---|---|---|
| notice | worth knowing; never an alarm | OK | 0 |
| warning | redundancy or reserve is going: act this week | WARNING | 1 |
| critical | failed, or data at risk: act now | CRITICAL | 2 |
| unknown | could not be looked at, or is not understood; also wrong use, unreadable input, Ctrl-C | UNKNOWN | 3 |

The verdict is that of the worst finding: critical, then warning, then unknown. What is comes before what was: an entry
of a log alarms only when it is recent, when nothing later ended it, and when the part itself does not say that it is
well. What is not understood is never OK. A tool that is not there is no alarm, unless `--require` names its source.

Recent is what the logs have of the last `recent_days` before the collection: of a recording the time that it was made
at, else the clock that a controller tells, else the newest entry of the logs; `--as-of DATE` overrides. The verdict tells
which. Entries of a later time count as recent, and `collection.clock-ahead` tells of them. Times of logs are taken as the machine's own.

A collection has the verdict too: `pqhost collect` begins with it on a screen, and its JSON, databases and folders of
CSV hold it, by the program's own rules and usual settings.

A report that is cut off, or one of several that failed, makes its source `failed` although the rest of it was read and
is judged: `collection.failed` names the report. Known by what the tools print: a table of storcli without its last rule,
fewer drives or volumes than the controller counts, a configuration of arcconf without "Command completed successfully"
(or, where its first line is gone as well, one that ends with a drive), a listing of ipmiutil without its last line, a log
with fewer entries than it announces, an empty file, an exit code. A log that was cut between two of its entries, or a
report between two of its parts, looks like a whole one where nothing of that kind is printed.

## Several machines

`--replay` can be given several times, and can name a folder of recordings. Each is judged by itself, one after the other;
the exit code is that of the worst. One that cannot be read, or that is too much for a rule of your own, is unknown, with
the reason (`collection.not-judged`), and the others are judged all the same. So is a folder in a folder of recordings
that has files and no `recording.json`: half of a recording may be on its way. Empty ones, and those whose names begin
with a dot, are left out. Where one file is asked for, such as JSON, the form follows from what was named, not from
how many recordings a folder happens to have.

## Formats

| `--format` | of one machine | of several |
|---|---|---|
| `table` | verdict, findings with evidence, why and what next; `--brief`: a line for each finding | a line for all, then the same for each machine, the worst first |
| `json` | one object, below | `verdict` and `exit` of the worst, `counts` of machines by verdict, and `machines` in the order that was asked for |
| `nagios` | a plug-in's output: what alarms in the first line, then all hits | counts and the worst machine's first finding in the first line, then a line for each machine |
| `csv` | a row for each finding, and one with a verdict alone for a machine without findings | the same |
| `sqlite` | the database of a collection ([sql.md](sql.md)) with this verdict | one database, whose tables begin with a column `machine` |

A machine that cannot be read at all has a verdict, too, `unknown` with the reason, in all formats but `table` and
`sqlite`, where standard error alone tells. Doubts about a recording, as in its `submission.json`, or that it is not as it
was made (`--unverified`), are a notice (`collection.doubt`) and on standard error. A finding quotes up to 500 bytes of
what a tool printed, and says how much it leaves out; the parts have all of it.

The object of a machine ([health.schema.json](health.schema.json)) has `verdict`, `exit`, `asOf`, `asOfFrom`,
`counts` of findings by severity, `checked` (how many parts of each kind; burners and the like are `optical_drives`,
and missing drives and cache backups that are not there do not count), `sources`, and `findings`. A finding has `key`
(the same in the next collection), `severity`, `area`, `part` and `id`, `serial`, `rule`, `observed`, `text` (a sentence
for whoever has to act), `why`, `next` and `evidence`: its hits, each with the `place` where it was read. Each of
`machines` has `machine` (the name of the recording's folder or file), `name`, `serial` and `recordedAt`, empty where
not known, and its object as `health`.

CSV begins with `machine`, `machine_name`, `machine_serial`, `verdict` and `as_of`; the columns of `findings` follow.
Databases have both of these tables, as folders of CSV have both files:
)";

constexpr char kSettings[] = R"(
## Settings

`--set NAME=VALUE`, or lines of that form in a file for `--settings`; # begins a comment.

| setting | usual | is |
|---|---|---|
)";

constexpr char kOwnRules[] = R"(
## Rules of your own

`--rules FILE` adds rules; one with the id of another takes its place. Rules only read: parts, the class tables and all
that [sql.md](sql.md) tells. `setting('NAME')` is a setting; `recent(TIME)` is 1 for a recent time, `ahead(TIME)` for
one more than a day after the collection.

```
-- @rule volume.write-through
-- @part volumes
-- @why Databases are to run with write-back.
-- @next storcli /cX/vY set wrcache=wb
-- @source a ticket, or who decided so
SELECT 'warning', id, 'cache ' || cache FROM volumes WHERE cache LIKE '%WT%';
```

A rule answers `severity`, `id` (of a row of its `@part`), `observed` and, if it likes, `because` (ids of the parts that
are the cause, with ; between them) and `text`; further columns may be called `part`, `area` and `event`. `@area` and
`@column`, the part's column that shows it, may be left away; `@log` marks a rule about what was. A text goes on in the
next line where that begins with `--` and three blanks. An error names file and line, and nothing is judged.

## What is known already

`--suppress FILE` has lines `RULE ID [until=DATE] # REASON`; * is any text, an id with blanks is in quotation marks, and
the reason has to be there, and the rule as well. ID is the part's id or its serial number, which a new drive does not have. What is suppressed
is a notice; after the date it alarms again.

```
drive.media-errors "lsi0 69:9" until=2026-12-31 # spare is ordered
```

## Rules
)";

const char* GetTypeName(PartType type) { return type == PartType::kText ? "text" : "integer"; }

/// What is between the cells of a table, and a line's end, would end the cell.
std::string MakeCell(std::string_view text) {
  std::string cell(text);
  for (std::size_t bar = cell.find('|'); bar != std::string::npos; bar = cell.find('|', bar + 2)) {
    cell.insert(bar, 1, '\\');
  }
  return cell;
}

/// Areas in the order in which rules name them first.
std::vector<std::string> ListAreas(const std::vector<Rule>& rules) {
  std::vector<std::string> areas;
  for (const Rule& rule : rules) {
    if (std::find(areas.begin(), areas.end(), rule.area) == areas.end()) {
      areas.push_back(rule.area);
    }
  }
  return areas;
}

/// The first column of a SELECT.
std::string_view GetFirstColumn(std::string_view sql) {
  int depth = 0;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    if (sql[i] == '(') ++depth;
    if (sql[i] == ')') --depth;
    if (sql[i] == ',' && depth == 0) return sql.substr(0, i);
  }
  return sql;
}

/// The severities that a rule's SELECT gives; some it takes from a table of words.
std::string ListSeverities(const Rule& rule) {
  const std::string_view column = GetFirstColumn(rule.sql);
  std::string list;
  const auto add = [&](std::string_view word) {
    if (!list.empty()) list += ", ";
    list += word;
  };
  for (const Severity severity :
       {Severity::kCritical, Severity::kWarning, Severity::kUnknown, Severity::kNotice}) {
    const auto gives = [&](const char* before) {
      return column.find(fmt::format("{} '{}'", before, GetWord(severity))) !=
             std::string_view::npos;
    };
    if (gives("SELECT") || gives("THEN") || gives("ELSE")) add(GetWord(severity));
  }
  const bool takesWord =
      column.find("severity") != std::string_view::npos || column == "SELECT condition";
  if (takesWord) add(list.empty() ? "as the state is" : "or as the state is");
  return list;
}

}  // namespace

std::string WriteHealthDocument() {
  const std::vector<Rule>& rules = GetBuiltInRules().rules;
  std::string text = kIntroduction;
  for (const FindingTable& table : GetFindingTables()) {
    text += fmt::format("\n`{}`, {}:\n\n| column | type | holds |\n|---|---|---|\n", table.name,
                        table.description);
    for (const FindingColumn& column : table.columns) {
      text += fmt::format("| `{}` | {} | {} |\n", column.name, GetTypeName(column.type),
                          MakeCell(column.description));
    }
  }
  text += kSettings;
  for (const HealthSetting& setting : ListHealthSettings()) {
    text += fmt::format("| `{}` | {} | {} |\n", setting.name, setting.value, setting.description);
  }
  text += kOwnRules;
  for (const std::string& area : ListAreas(rules)) {
    text += fmt::format(
        "\n### {}\n\n| rule | severity | why | next | source |\n|---|---|---|---|---|\n", area);
    for (const Rule& rule : rules) {
      if (rule.area != area) continue;
      text += fmt::format("| `{}` | {} | {} | {} | {} |\n", rule.id, ListSeverities(rule),
                          MakeCell(rule.why), MakeCell(rule.next), MakeCell(rule.source));
    }
  }
  return text;
}

}  // namespace host
