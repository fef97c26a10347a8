#include "host/formats/formats.h"

#include "host/database/database_cuts.h"
#include "host/formats/report_size.h"

namespace host {

const std::vector<Format>& Formats() {
  static const std::vector<Format> kFormats = {
      {.name = "table",
       .description = "aligned tables for people",
       .write = WriteTables,
       .tellsStatus = true},
      {.name = "json",
       .description = "one JSON object with machine, modules and tables",
       .write = WriteJson},
      {.name = "ndjson",
       .description = "one JSON object per row, each in a line",
       .write = WriteJsonLines},
      {.name = "csv", .description = "comma-separated values", .write = WriteCsv},
      {.name = "html",
       .description = "a report in one file, to read in a browser and to send",
       .write = WriteHtml,
       .resultName = "Report",
       .describeCuts = DescribeReportCuts},
      {.name = "sqlite",
       .description = "an SQLite database, to query",
       .write = WriteSqlite,
       .wantsLog = true,
       .isBinary = true,
       .resultName = "Database",
       .describeCuts = DescribeDatabaseCuts,
       .writeLast = WriteSqliteLast},
      {.name = "prometheus",
       .description = "metrics for a textfile collector",
       .write = WritePrometheus,
       .isOfMachine = true,
       .resultName = "Metrics"},
      {.name = "none",
       .description = "no results; for a trace or log files alone",
       .write = WriteNothing},
  };
  return kFormats;
}

Attachments ChooseAttachments(const Screen& screen) {
  return screen.leavesAttachmentsOut ? Attachments::kLeftOut : Attachments::kShown;
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
