#include "tests/support/step_scenarios.h"

#include <ostream>
#include <sstream>

#include "tests/support/bmc_machine.h"
#include "tests/support/collected.h"
#include "tests/support/raid_tools.h"

namespace test {
namespace {

constexpr char kEtc[] = "C:\\Windows\\System32\\drivers\\etc\\";
constexpr char kArchive[] = "c:\\Support\\Firmware\\";

host::Recording MakeWindowsMachine(std::uint32_t language) {
  host::Recording machine;
  machine.languageId = language;
  machine.commands = {
      {"arp.exe", "-a",
       "\r\nInterface: 192.0.2.1 --- 0x4\r\n"
       "  Internet Address      Physical Address      Type\r\n"
       "  192.0.2.7             00-00-5e-00-53-01     dynamic   \r\n"
       "  192.0.2.8             00-00-5e-00-53-02     dynamic   \r\n",
       ""},
      {"netstat.exe", "", "\r\nActive Connections\r\n\r\n  Proto  ...\r\n  TCP a b UP\r\n", ""}};
  for (const char* file : {"hosts.ics", "hosts", "protocol", "lmhosts.sam"}) {
    machine.files[std::string(kEtc) + file] = "x\r\n";
  }
  return machine;
}

host::Recording MakeAmtMachine() {
  host::Recording machine;
  machine.console = "192.0.2.9 keeper Q7-secret\n";
  machine.commands = {{"check_amt_bmc.exe", "amt", "", "", 1},
                      {"amt_log.exe", "192.0.2.9 keeper Q7-secret", "one\r\ntwo\r\n", ""}};
  return machine;
}

/// The controller query meets an error, the LED query cannot start.
host::Recording MakeAilingBmcMachine() {
  host::Recording machine = MakeBmcMachine(5);
  AnswerOf(machine, "korvaxoem mc").standardOutput = "Error\r\n";
  AnswerOf(machine, "korvaxoem ver").pipeError = 8;
  for (const char* query : {"korvaxoem led", "sensor -s -q", "sensor", "sel", "sel -r"}) {
    AnswerOf(machine, query).startError = 5;
  }
  return machine;
}

/// RST's tool fails, VROC's answers.
host::Recording MakeInventoryMachine() {
  RaidTools tools("Controller Count = 1\n");
  tools.Storcli("/c0 show", "Product Name = ACME\nFunction Number = 0\n");
  tools.Answer("rstcli64_5.exe", "-I", "no driver\n", 2);
  tools.Answer("IntelVROCCli.exe", "-I", "0\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n");
  tools.Answer("arcconf.exe", "savesupportarchive c:\\", "");
  tools.recording.files[std::string(kArchive) + "Controller_1_Config.txt"] =
      "Controller Status : Optimal\nDriver : 1\n";
  tools.recording.files[std::string(kArchive) + "Controller_1_Log.txt"] = "log\n";
  return tools.recording;
}

host::Recording MakeLogsMachine() {
  RaidTools tools("Controller Count = 1\n");
  tools.Storcli("/c0 show",
                "TOPOLOGY :\n1\n2\n3\n4\n5\n"
                "0 1 - 134:1 16 DRIVE Onln N 371.597 GB dsbl N N dflt N\n");
  tools.Storcli("/c0 show events", "seqNum: 1\nTime: now\nController = 0\n");
  tools.Storcli("/c0 show termlog", "Firmware Term Log Information\nT10\n");
  tools.Storcli("/c0/eall/sall show all", "SN = 7\nNeeds EKM Attention = No\n");
  tools.Answer("sas2ircu.exe", "0 logir upload", "x");
  tools.Answer("SAS2IR_windows_x64.exe", "logir.log", "Time: 1\nLocale: 2\n");
  tools.Answer("rstcli64_5.exe", "-I",
               "END DEVICE\nID: 1\nModel: X\n"
               "ARRAY INFORMATION\n2\n3\n4\n5\n6\n7\n8\n"
               "VOLUME INFORMATION\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n");
  return tools.recording;
}

/// Nothing to report on, and the exit code of RST's tool cannot be read.
host::Recording MakeBareRaidMachine() {
  RaidTools tools;
  tools.HideExitCode("rstcli64_5.exe", "-I", 6);
  return tools.recording;
}

const std::vector<StepScenario> kStepScenarios = {
    {"windows_us_english", "Windows_Related_Info", "ARPINFO",
     [] { return MakeWindowsMachine(pq::kUsEnglish); }, 2},
    {"windows_german", "Windows_Related_Info", "ARPINFO", [] { return MakeWindowsMachine(1031); }},
    {"amt", "AMT_Info", "AMTLOG", MakeAmtMachine, 2},
    {"bmc_family_5", "BMC_Info", "MCINFO", [] { return MakeBmcMachine(5); }, 2},
    {"bmc_family_9", "BMC_Info", "MCINFO", [] { return MakeBmcMachine(9); }},
    {"bmc_ailing", "BMC_Info", "MCINFO", MakeAilingBmcMachine},
    {"raid_inventory", "sampleModule1", "RAIDINFO", MakeInventoryMachine, 2},
    {"raid_inventory_bare", "sampleModule1", "RAIDINFO", MakeBareRaidMachine},
    {"raid_logs", "sampleModule2", "TINFO", MakeLogsMachine, 2},
    {"raid_logs_bare", "sampleModule2", "TINFO", MakeBareRaidMachine},
};

}  // namespace

const std::vector<StepScenario>& ListStepScenarios() { return kStepScenarios; }

void PrintTo(const StepScenario& scenario, std::ostream* out) { *out << scenario.name; }

std::string ReadList(const std::string& file) {
  std::istringstream stored(TestData(file));
  std::string list;
  for (std::string line; std::getline(stored, line);) {
    if (!line.starts_with('#')) list += line + "\n";
  }
  return list;
}

}  // namespace test
