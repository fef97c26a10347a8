// The whole AMT module on what an operator types and what the log tool prints. The input's first
// line says how each enumeration's presence test ends (y: AMT is there, n: it is not, s: no start,
// u: no exit code) and what the log tool meets (x: no start, r: a report that cannot be written).
// Then come the typed lines, a line "--", and the log.
//
// A second, plainer reading of the typed lines foretells the console, the log lines and the command
// lines; so the password stands in no log line and on no console. There is one row for each line of
// the report.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "host/recorded/stored_text.h"
#include "tests/support/collected.h"

namespace {

using fuzz::Require;

constexpr char kReport[] = "C:\\Halyard\\logs\\amtlog.txt";
constexpr char kPrompt[] =
    "Please input the AMT IP/UserName/Password seperated with blank space,if give up this module, "
    "just press Enter:";

struct AmtInput {
  std::string answers;
  std::string typed;
  std::string log;
};

AmtInput ReadAmtInput(std::string_view text) {
  constexpr std::string_view kSeparator = "\n--\n";
  AmtInput input;
  input.answers = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), input.answers.size() + 1));
  const std::size_t end = std::min(text.find(kSeparator), text.size());
  input.typed = text.substr(0, end);
  text.remove_prefix(std::min(text.size(), end + kSeparator.size()));
  input.log = text;
  return input;
}

/// What a run must leave behind.
struct AmtForetold {
  std::vector<std::string> log;
  std::vector<std::string> commandLines;
  std::string console;
  std::string arguments;  ///< of the log tool
};

std::vector<std::string> SplitPlainly(const std::string& line) {
  std::vector<std::string> parts(1);
  for (const char c : line) {
    if (c == '\0') break;
    if (c == ' ' || c == '\r') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  std::erase(parts, "");
  return parts;
}

/// What the operator is told about `parts`; empty when they are complete.
std::string ComplaintAbout(const std::vector<std::string>& parts) {
  constexpr const char* kNames[] = {"IP", "user name", "password"};
  for (std::size_t i = 0; i < std::min<std::size_t>(3, parts.size()); ++i) {
    if (parts[i].size() > 31) {
      return std::string("The AMT ") + kNames[i] +
             " is longer than 31 characters. Please input all three again.\n";
    }
  }
  if (parts.size() == 1) return "Still need AMT user name and password!\n";
  if (parts.size() == 2) return "Still need AMT password!\n";
  return "";
}

/// The collection: what happens between its two log lines.
void ForetellCollection(const AmtInput& input, AmtForetold& foretold) {
  for (std::string rest = input.typed;;) {
    foretold.console += kPrompt;
    std::string line = rest.substr(0, rest.find('\n'));
    rest.erase(0, line.size() + 1);
    if (line.ends_with('\r')) line.pop_back();
    if (line.size() > 127) {
      foretold.console +=
          "The line is longer than 127 characters and was discarded. Please input it again.\n";
      continue;
    }
    if (line.empty() || line[0] == '\0') {
      foretold.log.push_back("3 AMT module, no parameter inputed!");
      return;
    }
    const std::vector<std::string> parts = SplitPlainly(line);
    if (parts.empty()) {
      foretold.log.push_back("3 Get AMT IP failed");
      return;
    }
    const std::string complaint = ComplaintAbout(parts);
    foretold.console += complaint;
    if (!complaint.empty()) continue;
    foretold.log.insert(foretold.log.end(), {"4 AMT IP:" + parts[0], "4 AMT User:" + parts[1]});
    foretold.arguments = parts[0] + " " + parts[1] + " " + parts[2];
    foretold.commandLines.push_back("/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" " +
                                    foretold.arguments + ">\"" + kReport + "\"\"");
    return;
  }
}

bool HasLetter(const std::string& text, char c) { return text.find(c) != std::string::npos; }

/// The presence tests as one character each.
std::string PresenceOf(const AmtInput& input) {
  std::string tests;
  for (const char c : input.answers.substr(0, 16)) {
    if (std::string_view("ynsu").find(c) != std::string_view::npos) tests += c;
  }
  return tests;
}

AmtForetold ForetellAmt(const AmtInput& input) {
  AmtForetold foretold;
  bool collected = false;
  for (const char test : PresenceOf(input)) {
    foretold.commandLines.push_back("/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt");
    foretold.log.push_back("3 Enter EnumAMTInstances");
    if (test == 's') {
      foretold.log.push_back("4 CreateProcess failed (5)");
    } else {
      foretold.log.push_back(std::string("3 check_amt function return:") +
                             (test == 'y' ? "1" : "0"));
      foretold.log.push_back(test == 'y' ? "3 Has AMT, return 0" : "3 Has no AMT, return 1");
    }
    if (test == 'y' && !collected) {
      foretold.log.push_back("3 Enter CollectData-AMT related info");
      ForetellCollection(input, foretold);
      foretold.log.push_back("3 Exit CollectData-AMT related info");
      collected = true;
    }
    foretold.log.push_back("3 Exit EnumAMTInstances");
  }
  return foretold;
}

host::Recording RecordingOf(const AmtInput& input, const AmtForetold& foretold) {
  host::Recording recording;
  recording.console = input.typed;
  for (const char test : PresenceOf(input)) {
    host::RecordedCommand presence;
    presence.tool = "check_amt_bmc.exe";
    presence.arguments = "amt";
    presence.exitCode = test == 'n' ? 0 : 1;
    presence.startError = test == 's' ? 5 : 0;
    presence.exitCodeError = test == 'u' ? 6 : 0;
    recording.commands.push_back(presence);
  }
  host::RecordedCommand log;
  log.tool = "amt_log.exe";
  log.arguments = foretold.arguments;
  log.standardOutput = input.log;
  log.startError = HasLetter(input.answers, 'x') ? 8 : 0;
  recording.commands.push_back(log);
  if (HasLetter(input.answers, 'r')) recording.readOnly = {kReport};
  return recording;
}

/// The one row for each line of the report that the run left.
std::vector<std::vector<std::string>> RowsOfReport(const test::Collected& collected) {
  std::vector<std::vector<std::string>> rows;
  const auto report = collected.files.find(kReport);
  if (report == collected.files.end()) return rows;
  host::StoredText text(report->second);
  char line[512];
  while (text.ReadLine(line, sizeof(line))) rows.push_back({std::string("AMTLOG=") + line});
  return rows;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const AmtInput input = ReadAmtInput({reinterpret_cast<const char*>(data), size});
  const std::vector<std::string> tables(PresenceOf(input).size(), "AMTLOG");
  if (tables.empty()) return 0;
  AmtForetold foretold = ForetellAmt(input);
  const test::Collected collected = test::Collect(RecordingOf(input, foretold), "AMT_Info", tables);

  Require(collected.commandLines == foretold.commandLines);
  Require(collected.console == foretold.console);
  Require(collected.Rows("AMTLOG") == RowsOfReport(collected));
  Require(collected.openHandles == 0);
  // Whether the log tool starts and its report opens is the interpreter's to say: what is typed can
  // hold its own signs. These two lines alone are not foretold.
  std::vector<std::string> log = collected.LogTexts();
  std::erase_if(log, [](const std::string& line) {
    return line == "4 CreateProcess failed (8)" || line == "4 Failed to open AMT log file";
  });
  Require(log == foretold.log);
  return 0;
}
