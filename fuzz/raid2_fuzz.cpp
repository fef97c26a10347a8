// The whole RAID logs module. The input's first line holds letters: a to g, the start of that tool
// fails; A to G, its report cannot be written; r, Intel RST ends badly and VROC answers in its
// place; x, its exit code cannot be read. Then come the outputs of the seven tools, with a "--" and
// a line feed between them.
//
// A second, plainer reading of the outputs foretells the rows of all tables and what is logged at
// the end.
#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "tests/support/collected.h"
#include "tests/support/raid_reference.h"

namespace {

using fuzz::Require;

enum Output { kCount, kSummary, kEvents, kTermLog, kDrives, kSas2, kIntel };
constexpr std::size_t kOutputCount = 7;

constexpr std::array<const char*, kOutputCount> kTools = {"storcli.exe",   "storcli.exe",
                                                          "storcli.exe",   "storcli.exe",
                                                          "storcli.exe",   "SAS2IR_windows_x64.exe",
                                                          "rstcli64_5.exe"};
constexpr std::array<const char*, kOutputCount> kRaid2Arguments = {
    "show ctrlcount", "/c0 show", "/c0 show events", "/c0 show termlog", "/c0/eall/sall show all",
    "logir.log",      "-I"};
constexpr std::array<const char*, kOutputCount> kReports = {
    "ctrlcount.txt", "c0_showall.txt", "raidevents.txt", "fwtermlog.txt",
    "pdlist.txt",    "ir.txt",         "rstcli64.txt"};

struct Raid2Input {
  std::string options;
  std::array<std::string, kOutputCount> outputs;

  bool Has(char option) const { return options.find(option) != std::string::npos; }
  bool Starts(Output output) const { return !Has(static_cast<char>('a' + output)); }
  /// Whether there is a report to open.
  bool IsThere(Output output) const {
    return Starts(output) && !Has(static_cast<char>('A' + output));
  }
};

Raid2Input ReadRaid2Input(std::string_view text) {
  constexpr std::string_view kSeparator = "--\n";
  Raid2Input input;
  input.options = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), input.options.size() + 1));
  for (std::string& output : input.outputs) {
    // Dashes are a rule of a list as well: only a line of exactly two separates.
    const auto endsAt = [&](std::size_t at) {
      return (at == 0 || text[at - 1] == '\n') && text.substr(at).starts_with(kSeparator);
    };
    std::size_t end = 0;
    while (end < text.size() && !endsAt(end)) ++end;
    output = text.substr(0, end);
    text.remove_prefix(std::min(text.size(), end + kSeparator.size()));
  }
  return input;
}

host::Recording MachineOf(const Raid2Input& input) {
  host::Recording machine;
  for (std::size_t i = 0; i < kOutputCount; ++i) {
    const auto output = static_cast<Output>(i);
    host::RecordedCommand command;
    command.tool = kTools[i];
    command.arguments = kRaid2Arguments[i];
    command.standardOutput = input.outputs[i];
    command.startError = input.Starts(output) ? 0 : 8;
    if (output == kIntel) {
      command.exitCodeError = input.Has('x') ? 6 : 0;
      if (input.Has('r')) {
        host::RecordedCommand second = command;
        second.tool = "IntelVROCCli.exe";
        second.startError = 0;
        second.exitCodeError = 0;
        machine.commands.push_back(second);
        command.exitCode = 4;
        command.standardOutput = "no driver\n";
      }
    }
    machine.commands.push_back(command);
    if (input.Has(static_cast<char>('A' + i))) {
      machine.readOnly.push_back(machine.logFolder + kReports[i]);
    }
  }
  return machine;
}

/// One row per controller, as long as none of its reports fails; only controller 0 has any text.
test::PlainRows ReadLinks(const Raid2Input& input, int count) {
  test::PlainRows rows;
  const bool canStart = input.Starts(kSummary) && input.Starts(kEvents) && input.Starts(kTermLog) &&
                        input.Starts(kDrives);
  for (int controller = 0; controller < count; ++controller) {
    const std::string index = std::string("index=Controller") + std::to_string(controller);
    if (controller > 0) {
      rows.push_back({index, "lsishowall=", "lsieventlog=", "lsifwtermlog=", "pdlist="});
    } else if (canStart && input.IsThere(kSummary)) {  // The other three have files of their own.
      const auto text = [&](const char* key, Output output) {
        return key + test::ReadWholePlainly(input.outputs[output]);
      };
      rows.push_back({index, text("lsishowall=", kSummary), text("lsieventlog=", kEvents),
                      text("lsifwtermlog=", kTermLog), text("pdlist=", kDrives)});
    }
  }
  return rows;
}

using Tables = std::map<std::string, test::PlainRows>;

Tables ForetellRaid2(const Raid2Input& input) {
  std::string eventData;
  Tables tables;
  if (!input.IsThere(kCount)) return tables;
  const auto lines = [&](Output output) { return test::ReadLinesPlainly(input.outputs[output]); };
  tables["LSILINK"] = ReadLinks(input, test::ReadCountPlainly(lines(kCount)));
  if (input.IsThere(kEvents)) {
    const auto pages = test::ApplyEventSteps(test::ReadEventsPlainly(lines(kEvents), eventData));
    for (std::size_t i = 0; i < pages.size(); ++i) {
      tables[std::string("EVENTLOG") + std::to_string(i + 1)] = pages[i];
    }
  }
  if (input.IsThere(kTermLog)) tables["FWTERMLOG"] = test::ReadTermLogPlainly(lines(kTermLog));
  if (input.IsThere(kDrives)) tables["PDLIST"] = test::ReadDriveDetailsPlainly(lines(kDrives));
  if (input.IsThere(kSummary)) {
    const auto lists = test::ReadDriveListsPlainly(lines(kSummary));
    tables["TINFO"] = lists[0];
    tables["VINFO"] = lists[1];
    tables["PINFO"] = lists[2];
  }
  if (input.IsThere(kSas2)) tables["SAS2IRLOG"] = test::ReadSas2LogPlainly(lines(kSas2));
  if (input.IsThere(kIntel) && !input.Has('x')) {
    tables["ENDDEVICEINFO"] = test::ReadEndDevicesPlainly(lines(kIntel));
    tables["ARRAY"] = test::ReadArraysPlainly(lines(kIntel));
    tables["VOLUME"] = test::ReadVolumesPlainly(lines(kIntel));
  }
  return tables;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Raid2Input input = ReadRaid2Input({reinterpret_cast<const char*>(data), size});
  const test::Collected collected =
      test::Collect(MachineOf(input), "sampleModule2", {"VOLUME", "LSILINK"});
  Tables tables = ForetellRaid2(input);
  for (const char* name :
       {"EVENTLOG1", "EVENTLOG2", "EVENTLOG3", "EVENTLOG4", "EVENTLOG5", "FWTERMLOG", "PDLIST",
        "TINFO", "VINFO", "PINFO", "SAS2IRLOG", "ENDDEVICEINFO", "ARRAY", "VOLUME", "LSILINK"}) {
    Require(collected.Rows(name) == tables[name]);
  }
  Require(collected.Rows("S2TABLE1").size() == 6 && collected.Rows("S2TABLE2").size() == 1);
  Require(collected.openHandles == 0);
  // The collection ran to its end, or stopped at the count; it did not run twice.
  const std::vector<std::string> log = collected.LogTexts();
  const auto ends = std::count(log.begin(), log.end(), "3 Exit CollectData");
  Require(ends == (input.IsThere(kCount) ? 1 : 0));
  Require(log[log.size() - 2] == "3 Enter EnumPQ2Instances" &&
          log.back() == "3 Exit EnumPQ2Instances");
  return 0;
}
