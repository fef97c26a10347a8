#include "tests/support/bmc_machine.h"

#include <algorithm>
#include <stdexcept>

namespace test {
namespace {

struct IpmiAnswer {
  const char* arguments;
  const char* output;
};

constexpr IpmiAnswer kIpmiAnswers[] = {
    {"korvaxoem mc", "Firmware Revision : 1.94\r\nIPMI Version : 2.0\r\n"},
    {"korvaxoem selftest", "Selftest : 55h 00h\r\nall passed\r\n"},
    {"korvaxoem ver", "BMC : 1.94\r\nCPLD\r\n"},
    {"korvaxoem psu", "PSU 1 ok\r\n\r\nPSU 2 absent\r\n"},
    {"lan",
     "Lan Param(2) Auth type: 14 \r\n"
     "Lan Param(6) Subnet mask: 255.255.0.0\r\n"
     "Lan Param(5) MAC addr: 5e:10:7b\r\n"
     "SOL(3) Enable: 01\r\n"},
    {"korvaxoem led", "Power LED on\r\nFan LED off\r\n"},
    {"sensor -s -q",
     "P0 Temp | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n"
     "K\xfchler 1|5400|RPM|ok|600|900|1200|na|na|na|\r\n"
     " \r\n"
     "P1 Temp|42\r\n"},
    {"sensor", "0001 P0 Temp = 41\r\n\r\n0002 K\xfchler 1 = 5400\r\n"},
    {"korvaxoem fru", "Board : NG\r\nSerial : 7\r\n"},
    {"sel", "0001 INF Log Cleared\r\n"},
    {"sel -r", "01 00 02 ff\r\n"},
};

}  // namespace

host::Recording MakeBmcMachine(std::uint32_t detection) {
  host::Recording machine;
  machine.commands.push_back({"check_amt_bmc.exe", "bmc", "", "", detection});
  for (const IpmiAnswer& answer : kIpmiAnswers) {
    machine.commands.push_back({"ipmiutilnh.exe", answer.arguments, answer.output, ""});
  }
  return machine;
}

host::RecordedCommand& AnswerOf(host::Recording& machine, const std::string& arguments) {
  const auto answer =
      std::ranges::find(machine.commands, arguments, &host::RecordedCommand::arguments);
  if (answer == machine.commands.end()) throw std::invalid_argument(arguments);
  return *answer;
}

Collected CollectBmcWith(const std::string& arguments, const std::string& output,
                         std::uint32_t detection) {
  host::Recording machine = MakeBmcMachine(detection);
  AnswerOf(machine, arguments).standardOutput = output;
  return Collect(machine, "BMC_Info", {"MCINFO"});
}

std::vector<std::string> GetLogBetween(const Collected& collected, const std::string& first,
                                       const std::string& end) {
  const std::vector<std::string> texts = collected.LogTexts();
  const auto from = std::ranges::find(texts, first);
  return {from, std::find(from, texts.end(), end)};
}

std::vector<std::string> ListValues(const Collected& collected, const std::string& className) {
  std::vector<std::string> values;
  const auto table = collected.Tables().find(className);
  if (table == collected.Tables().end()) return values;
  for (const host::Row& row : table->second.rows) {
    if (row.ValueCount() != 1) throw std::logic_error(className + " has more than one property");
    values.emplace_back(row.Value(0));
  }
  return values;
}

}  // namespace test
