// Output formats, one writer per --format name.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/collect/collection.h"
#include "host/collect/table_view.h"
#include "host/formats/difference/difference_formats.h"
#include "host/text/screen.h"

namespace host {

struct Format {
  const char* name;
  const char* description;
  void (*write)(const Collection& collection, const Screen& screen, std::ostream& out);
  bool wantsLog = false;  ///< needs Collection::log
  bool isBinary = false;  ///< never written to a terminal
  /// It shows the problems and the status of each table to people, who need not be told again.
  bool tellsStatus = false;
  bool isOfMachine = false;            ///< has nothing to show of an answer to a query
  const char* resultName = "Results";  ///< for people, of a file in this format
  /// What the format leaves out of a collection, a line of UTF-8 each; null: never anything.
  std::vector<std::string> (*describeCuts)(const Collection& collection) = nullptr;
  /// As `write`, of a known machine's collection, in less memory: lets go of what its tools printed
  /// once that is read. Null: there is nothing to be gained.
  void (*writeLast)(Collection& collection, const Screen& screen, std::ostream& out) = nullptr;
};

/// All formats; the first is the default.
const std::vector<Format>& Formats();

Attachments ChooseAttachments(const Screen& screen);

/// Null when no format has that name.
const Format* FindFormat(const std::string& name);

/// A screen for people: machine, verdict, problems and a line for each table, then the tables:
/// aligned, as wide as the screen, by area.
void WriteTables(const Collection& collection, const Screen& screen, std::ostream& out);
/// One JSON object (docs/json.md).
void WriteJson(const Collection& collection, const Screen& screen, std::ostream& out);
/// One JSON object per row, each in a line (docs/json.md).
void WriteJsonLines(const Collection& collection, const Screen& screen, std::ostream& out);
/// RFC 4180 (docs/csv.md).
void WriteCsv(const Collection& collection, const Screen& screen, std::ostream& out);
/// The report: one HTML file that opens offline.
void WriteHtml(const Collection& collection, const Screen& screen, std::ostream& out);
/// The same with what has changed since an earlier collection; null: nothing is said of it.
void WriteReport(const Collection& collection, const NamedDifference* changes, const Screen& screen,
                 std::ostream& out);
/// An SQLite file (docs/sql.md).
void WriteSqlite(const Collection& collection, const Screen& screen, std::ostream& out);
void WriteSqliteLast(Collection& collection, const Screen& screen, std::ostream& out);
/// Metrics in Prometheus' text format 0.0.4 (docs/metrics.md).
void WritePrometheus(const Collection& collection, const Screen& screen, std::ostream& out);
/// Nothing, for those who want the trace or the log files alone.
void WriteNothing(const Collection& collection, const Screen& screen, std::ostream& out);

}  // namespace host
