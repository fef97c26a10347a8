// amt_log.exe prints the log, one event a line, for an address and an account that only the
// operator knows. The password goes into the command line of amt_log.exe and nowhere else.

#include "pqmodules/ramtinfo/amt_log.h"

#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "frame/platform.h"
#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/ramtinfo/login_line.h"
#include "pqmodules/ramtinfo/tables.h"

namespace pq {
namespace {

constexpr Column kLine{kAmtLog, "AMT Log Info", "one event of the log, as the tool prints it"};
constexpr char kLogTool[] = "\\pq_tools\\amt_log.exe";
constexpr char kReportName[] = "amtlog.txt";

constexpr char kPrompt[] =
    "Please input the AMT IP/UserName/Password seperated with blank space,if give up this module, "
    "just press Enter:";

constexpr char kLineTooLong[] =
    "The line is longer than 127 characters and was discarded. Please input it again.\n";

// Logged when there is no login, or no log.
constexpr Sentence kDeclined = "AMT module, no parameter inputed!";
constexpr Sentence kNoAddress = "Get AMT IP failed";
constexpr Sentence kNoLog = "Failed to open AMT log file";

/// The words for the operator before the next prompt; none for a line that needs no other.
std::string_view FindComplaint(LoginLine line) {
  switch (line) {
    case LoginLine::kAddressTooLong:
      return "The AMT IP is longer than 31 characters. Please input all three again.\n";
    case LoginLine::kUserNameTooLong:
      return "The AMT user name is longer than 31 characters. Please input all three again.\n";
    case LoginLine::kPasswordTooLong:
      return "The AMT password is longer than 31 characters. Please input all three again.\n";
    case LoginLine::kOnlyAddress:
      return "Still need AMT user name and password!\n";
    case LoginLine::kNoPassword:
      return "Still need AMT password!\n";
    default:
      return {};
  }
}

/// Asks until the operator gives all three parts, none at all, or only blanks. The parts are
/// in `buffer`.
LoginLine AskForLogin(std::array<char, kLoginLineRoom>& buffer, AmtLogin& login) {
  for (;;) {
    Machine().WriteConsole(kPrompt);
    if (Machine().ReadConsoleLine(buffer.data(), buffer.size()) == ConsoleLine::kTooLong) {
      Machine().WriteConsole(kLineTooLong);
      continue;
    }
    const LoginLine line = ParseLoginLine(buffer.data(), login);
    const std::string_view complaint = FindComplaint(line);
    if (complaint.empty()) return line;
    Machine().WriteConsole(complaint);
  }
}

std::string BuildLogCommand(const std::string& hostFolder, const AmtLogin& login,
                            const std::string& reportPath) {
  std::string command = "/c \"\"" + hostFolder + kLogTool + "\" ";
  command.append(login.address).append(" ").append(login.userName).append(" ");
  // The redirection follows at once: a blank before it would be handed to the tool after the
  // password.
  command.append(login.password).append(">\"");
  return command + reportPath + "\"\"";
}

/// One instance grows with the log: it is added after every line, each time with that line under
/// the same key. The repository decides the meaning of repeated keys and adds.
void AddLines(std::unique_ptr<TextFile> report, RRepository& repo) {
  RowBuffer log(repo, kAmtLog, "AMT Log Information");
  LineReader lines(report.get());
  while (const char* line = lines.Next()) {
    log.Set(kLine, line);
    log.Commit();
  }
  report.reset();
}

}  // namespace

int CollectAmtLog(const AmtCollection& collection) {
  const ModuleLog& log = collection.log;
  std::array<char, kLoginLineRoom> typed{};
  AmtLogin login;
  const LoginLine line = AskForLogin(typed, login);
  if (line == LoginLine::kEmpty) {
    log(kProgress, kDeclined);
    return 0;
  }
  if (line == LoginLine::kBlank) {
    log(kProgress, kNoAddress);
    return 1;
  }
  log(kDetail, "AMT IP:", login.address);
  log(kDetail, "AMT User:", login.userName);

  const std::string reportPath = GetLogFolder() + kReportName;
  if (!RunLogged(log, BuildLogCommand(collection.hostFolder, login, reportPath))) return 1;
  std::unique_ptr<TextFile> report = OpenReport(log, reportPath, kNoLog);
  if (!report) return 1;
  AddLines(std::move(report), collection.repo);
  return 0;
}

void DescribeAmtLog(ModuleDescription& module) {
  TableDescription table{.className = kAmtLog,
                         .title = "AMT event log",
                         .commands = {{kLogTool, "ADDRESS USER PASSWORD", kReportName, true}},
                         .isLog = true};
  table.AddColumn(kLine);
  module.tables.push_back(table);
  module.tools.push_back({kLogTool, {}, {}});
  module.unloggedProgram = kLogTool;
  module.AddFailures(StepFailure::kOutputNotOpened, {kNoLog});
  module.AddFailures(StepFailure::kBeforeTool, {kNoAddress});
  module.explanations.push_back(
      {kDeclined.text, "declined", "no AMT address and credentials were given"});
  module.explanations.push_back({kNoAddress.text, "declined", "no AMT address was given"});
}

}  // namespace pq
