// What changed between two collections, for people and programs (docs/diff.md).
#pragma once

#include <ostream>
#include <string>

#include "host/answers/difference/difference.h"
#include "host/text/screen.h"

namespace host {

/// A difference, and what to call its two collections. UTF-8.
struct NamedDifference {
  std::string before;
  std::string after;
  Difference difference;
};

/// A line that counts, then a line for each difference; "no difference" alone when there is none.
/// Of logs the entries from a warning on, at most 20; `screen.showsAll`: all.
void WriteDifferenceTable(const NamedDifference& named, const Screen& screen, std::ostream& out);
/// One JSON object.
void WriteDifferenceJson(const NamedDifference& named, const Screen& screen, std::ostream& out);
/// RFC 4180: the table `differences`, an empty line, and the table `new_entries`.
void WriteDifferenceCsv(const NamedDifference& named, const Screen& screen, std::ostream& out);
/// An SQLite file with these two tables.
void WriteDifferenceSqlite(const NamedDifference& named, const Screen& screen, std::ostream& out);

/// A page of its own with the section that the report has of it; opens offline, runs no script.
void WriteDifferenceHtml(const NamedDifference& named, const Screen& screen, std::ostream& out);

/// docs/diff.md: what is compared, by which keys, what is left out, and the formats.
std::string WriteDifferenceDocument();

}  // namespace host
