// Two tools answer for AMT: check_amt_bmc.exe tells by its exit code whether the machine has it,
// amt_log.exe prints its event log, one event a line, for an address and an account that only the
// operator knows. The password goes into the command line of amt_log.exe and nowhere else.

#include "pqmodules/ramtinfo.h"

#include <array>
#include <memory>
#include <string_view>

#include "frame/error_entries.h"
#include "frame/platform.h"
#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/ramtinfo/login_line.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/ramtinfo"};

const std::string kAmtLog = "AMTLOG";
const Column kLine{kAmtLog, "AMT Log Info"};
constexpr char kLogTool[] = "\\pq_tools\\amt_log.exe";
constexpr char kReportName[] = "amtlog.txt";

/// What check_amt_bmc.exe exits with on a machine that has AMT: not the usual 0.
constexpr std::uint32_t kAmtPresent = 1;

constexpr char kPrompt[] =
    "Please input the AMT IP/UserName/Password seperated with blank space,if give up this module, "
    "just press Enter:";

constexpr char kLineTooLong[] =
    "The line is longer than 127 characters and was discarded. Please input it again.\n";

/// What the operator is told before being asked again.
std::string_view ComplaintOf(LoginLine line) {
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

/// Asks until the operator gives all three parts, none at all, or only blanks. The parts stand in
/// `buffer`.
LoginLine AskForLogin(std::array<char, kLoginLineRoom>& buffer, AmtLogin& login) {
  for (;;) {
    Machine().WriteConsole(kPrompt);
    if (Machine().ReadConsoleLine(buffer.data(), buffer.size()) == ConsoleLine::kTooLong) {
      Machine().WriteConsole(kLineTooLong);
      continue;
    }
    const LoginLine line = ParseLoginLine(buffer.data(), login);
    const std::string_view complaint = ComplaintOf(line);
    if (complaint.empty()) return line;
    Machine().WriteConsole(complaint);
  }
}

std::string LogCommand(const AmtLogin& login, const std::string& reportPath) {
  std::string command = "/c \"\"" + GetExeFolder() + kLogTool + "\" ";
  command.append(login.address).append(" ").append(login.userName).append(" ");
  // The redirection follows at once: a blank before it would be handed to the tool behind the
  // password.
  command.append(login.password).append(">\"");
  return command + reportPath + "\"\"";
}

/// One instance grows with the log: it is added after every line, each time with that line under
/// the same key. What becomes of repeated keys and repeated adds is the repository's to decide.
void AddLines(LineReader lines, RRepository& repo) {
  RowBuffer log(repo, kAmtLog, "AMT Log Information");
  while (const char* line = lines.Next()) {
    log.Set(kLine, line);
    log.Commit();
  }
}

}  // namespace

std::string RAMTInfo::GetName() { return "AMT_Info"; }
std::string RAMTInfo::GetDescription() { return "AMT Log"; }

void RAMTInfo::RegisterTables() {
  RegisterTable(kAmtLog, &RAMTInfo::EnumAMTInstances, &RAMTInfo::FormatAMTLogTable);
}

void RAMTInfo::FormatAMTLogTable(RInstancesWrapper& table) { FormatRowTable(table); }

// AMT can be switched on while the host runs, so a machine without it is tested again each time.
void RAMTInfo::EnumAMTInstances(RRepository& repo) {
  kLog(kProgress, "Enter EnumAMTInstances");
  if (CheckAMT() == 0 && !collected) {
    kLog(kProgress, "Enter CollectData-AMT related info");
    CollectAMTData(repo);
    kLog(kProgress, "Exit CollectData-AMT related info");
    collected = true;
  }
  kLog(kProgress, "Exit EnumAMTInstances");
}

int RAMTInfo::CheckAMT() {
  constexpr std::string_view kBegin = "/c \"";
  const std::string folder = GetExeFolder();
  GetLogFolder();  // The test writes no file, but the host is asked in every step alike.
  CheckFolderFits(folder, kBegin.size());
  const ToolExit test =
      RunForExitCode(std::string(kBegin) + folder + "\\pq_tools\\check_amt_bmc.exe\" amt");
  if (!test.started) {
    kLog(kDetail, kStartFailure, test.startError, ")");
    return 1;
  }
  kLog(kProgress, "check_amt function return:", test.exitCode);
  if (test.exitCode != kAmtPresent) {
    kLog(kProgress, "Has no AMT, return 1");
    return 1;
  }
  kLog(kProgress, "Has AMT, return 0");
  return 0;
}

int RAMTInfo::CollectAMTData(RRepository& repo) {
  std::array<char, kLoginLineRoom> typed{};
  AmtLogin login;
  const LoginLine line = AskForLogin(typed, login);
  if (line == LoginLine::kEmpty) {
    kLog(kProgress, "AMT module, no parameter inputed!");
    return 0;
  }
  if (line == LoginLine::kBlank) {
    kLog(kProgress, "Get AMT IP failed");
    return 1;
  }
  kLog(kDetail, "AMT IP:", login.address);
  kLog(kDetail, "AMT User:", login.userName);

  const std::string reportPath = GetLogFolder() + kReportName;
  if (!RunLogged(kLog, LogCommand(login, reportPath))) return 1;
  std::unique_ptr<TextFile> report = OpenReport(kLog, reportPath, "Failed to open AMT log file");
  if (!report) return 1;
  AddLines(LineReader(report.get()), repo);
  return 0;
}

TableSources RAMTInfo::DescribeTables() {
  return {{kAmtLog, {{kLogTool, "ADDRESS USER PASSWORD", kReportName, true}}, {kLine}}};
}

}  // namespace pq
