// storcli's reports on one controller, each kept in the log folder and attached whole.

#include "pqmodules/rsamplemodule2/log_links.h"

#include <array>
#include <memory>
#include <utility>

#include "frame/attachment.h"
#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"

namespace pq {
namespace {

/// N stands for the controller's number.
struct LinkedReport {
  std::string arguments;  ///< behind /cN
  std::string fileTag;    ///< behind cN_; the file's name without its ".txt"
  const char* pathMessage;
  const char* openFailure;
  const char* contentMessage;  ///< before the whole text in the log; null: it is not logged
  Column column;
};

const std::array<LinkedReport, 4> kReports{{
    {" show",
     "showall",
     "Lsi show all log path: ",
     "Failed to open file!",
     "Lsi show all log content: ",
     {"lsishowall", "LSI Info Link"}},
    {" show events",
     "raidevents",
     "Lsi show event log path: ",
     "Failed to open event log file!",
     nullptr,
     {"lsieventlog", "LSI Event Log Link"}},
    {" show termlog",
     "fwtermlog",
     "Lsi show FWterm log path: ",
     "Failed to open FWterm log file!",
     nullptr,
     {"lsifwtermlog", "LSI FWTerm Log Link"}},
    {"/eall/sall show all",
     "pdlist",
     "Lsi show pdlist log path: ",
     "Failed to open pdlist log file!",
     nullptr,
     {"pdlist", "LSI PDList Link"}},
}};

const Column kIndex{"index", "Index"};

std::string FileTag(const LinkedReport& report, const std::string& number) {
  return "c" + number + "_" + report.fileTag;
}

/// The report's whole text; null after a failure, which is logged.
std::unique_ptr<char[]> ReadReport(const RaidLogsCollection& collection, const LinkedReport& report,
                                   const std::string& number) {
  const std::string path = GetLogFolder() + FileTag(report, number) + ".txt";
  collection.log(kDetail, report.pathMessage, path);
  const std::string command =
      ReportCommand(collection.hostFolder + kStorcli, "/c" + number + report.arguments, path);
  if (!RunLogged(collection.log, command)) return nullptr;
  const auto file = Machine().OpenText(path);  // Opened by the path as it is.
  if (!file) {
    collection.log(kDetail, report.openFailure);
    return nullptr;
  }
  std::unique_ptr<char[]> text = ReadWholeReport(collection.log, *file);
  if (text && report.contentMessage != nullptr) {
    collection.log(kDetail, report.contentMessage);
    collection.log(kDetail, text.get());
  }
  return text;
}

}  // namespace

void CollectLogLinks(const RaidLogsCollection& collection, int controller) {
  const std::string number = std::to_string(controller);
  std::array<std::unique_ptr<char[]>, kReports.size()> texts;
  for (std::size_t i = 0; i < kReports.size(); ++i) {
    texts[i] = ReadReport(collection, kReports[i], number);
    if (!texts[i]) return;
  }
  RInstance row(kLsiLink, "LSI Controller info link", kInstanceNumber);
  row.AddProperty(kIndex.key, kIndex.label, "Controller" + number, kPropertyFlag);
  for (std::size_t i = 0; i < kReports.size(); ++i) {
    const Column& column = kReports[i].column;
    AddAttachment(row, column.key, column.label, std::move(texts[i]), FileTag(kReports[i], number));
  }
  row.AddToRepository(collection.repo);
}

TableSource DescribeLogLinks() {
  TableSource source{kLsiLink, {}, {kIndex}};
  for (const LinkedReport& report : kReports) {
    source.commands.push_back({kStorcli, "/c0" + report.arguments, FileTag(report, "0") + ".txt"});
    source.columns.push_back(report.column);
  }
  return source;
}

}  // namespace pq
