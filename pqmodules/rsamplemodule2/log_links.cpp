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
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

struct LinkedReport {
  const char* arguments;  ///< after /cN, where N is the controller's number
  const char* fileTag;    ///< after cN_; the file's name without its ".txt"
  Sentence pathMessage;
  Sentence openFailure;
  Sentence contentMessage;  ///< before the whole text in the log; null: it is not logged
  Column column;
};

constexpr std::array<LinkedReport, 4> kReports{{
    {" show",
     "showall",
     "Lsi show all log path: ",
     "Failed to open file!",
     "Lsi show all log content: ",
     {"lsishowall", "LSI Info Link", "summary of the controller, whole"}},
    {" show events",
     "raidevents",
     "Lsi show event log path: ",
     "Failed to open event log file!",
     nullptr,
     {"lsieventlog", "LSI Event Log Link", "event log of the controller, whole"}},
    {" show termlog",
     "fwtermlog",
     "Lsi show FWterm log path: ",
     "Failed to open FWterm log file!",
     nullptr,
     {"lsifwtermlog", "LSI FWTerm Log Link", "terminal log of the firmware, whole"}},
    {"/eall/sall show all",
     "pdlist",
     "Lsi show pdlist log path: ",
     "Failed to open pdlist log file!",
     nullptr,
     {"pdlist", "LSI PDList Link", "details of all drives of the controller, whole"}},
}};

constexpr Column kIndex{"index", "Index", "which controller, counted from Controller0"};

std::string MakeFileTag(const LinkedReport& report, const std::string& number) {
  return "c" + number + "_" + report.fileTag;
}

/// The report's whole text; null after a failure, which is logged.
std::unique_ptr<char[]> ReadReport(const RaidLogsCollection& collection, const LinkedReport& report,
                                   const std::string& number) {
  const std::string path = GetLogFolder() + MakeFileTag(report, number) + ".txt";
  collection.log(kDetail, report.pathMessage, path);
  const std::string command =
      BuildReportCommand(collection.hostFolder + kStorcli, "/c" + number + report.arguments, path);
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
  row.AddProperty(std::string(kIndex.key), std::string(kIndex.label), "Controller" + number,
                  kPropertyFlag);
  for (std::size_t i = 0; i < kReports.size(); ++i) {
    AddAttachment(row, kReports[i].column, std::move(texts[i]), MakeFileTag(kReports[i], number));
  }
  row.AddToRepository(collection.repo);
}

void DescribeLogLinks(ModuleDescription& module) {
  TableDescription table{.className = kLsiLink, .title = "LSI controller reports, raw"};
  table.AddColumn(kIndex);
  for (const LinkedReport& report : kReports) {
    table.commands.push_back(
        {kStorcli, std::string("/c0") + report.arguments, MakeFileTag(report, "0") + ".txt"});
    table.AddColumn(report.column);
    module.AddFailures(StepFailure::kOutputNotOpened, {report.openFailure});
  }
  table.leavesOut = {{.text = "Of the number of controllers only the first digit is read, so that "
                              "of ten or more most are missing.",
                      .note = "storcli counts {} controllers, of which only the first digit is "
                              "read: reports are missing",
                      .sign = OmissionSign::kCount,
                      // Named, as in reports.cpp.
                      .command = ToolCommand{kStorcli, kCountArguments, kCountReportName},
                      .label = std::string(kCountLabel),
                      .most = 9}};
  table.hasHollowRows = true;
  module.tables.push_back(table);
  module.versionLines.push_back({"storcli", kLsiLink, kStorcliVersion});
}

}  // namespace pq
