#include "host/formats/formats.h"

#include "host/formats/database.h"
#include "host/formats/report_size.h"

namespace host {

const std::vector<Format>& Formats() {
  static const std::vector<Format> kFormats = {
      {"table", "aligned tables for people", WriteTables},
      {"json", "one JSON object with machine, modules and tables", WriteJson},
      {"ndjson", "one JSON object per row, each in a line", WriteJsonLines},
      {"csv", "comma-separated values", WriteCsv},
      {"html", "a report in one file, to read in a browser and to send", WriteHtml, false, false,
       DescribeReportCuts},
      {"sqlite", "an SQLite database, to query", WriteSqlite, true, true, DescribeDatabaseCuts},
      {"none", "no results; for a trace or log files alone", WriteNothing},
  };
  return kFormats;
}

const Format* FindFormat(const std::string& name) {
  for (const Format& format : Formats()) {
    if (name == format.name) return &format;
  }
  return nullptr;
}

void WriteNothing(const Collection& /*collection*/, const Screen& /*screen*/,
                  std::ostream& /*out*/) {}

}  // namespace host
