// The RAID logs module on long reports: each report alone from 1,000 to 1,000,000 lines, and all of
// them together.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "bench/support/collection_cost.h"

namespace bench {
namespace {

/// `text` has been filled up to `lines` lines by `append`, which takes a running number and returns
/// how many lines it has added.
template <typename Append>
std::string Fill(std::string text, std::int64_t lines, const Append& append) {
  std::int64_t count = 0;
  for (std::int64_t number = 0; count < lines; ++number) count += append(text, number);
  return text;
}

std::string Number(std::int64_t number, const char* format) {
  std::array<char, 32> digits{};
  const int length =
      std::snprintf(digits.data(), digits.size(), format, static_cast<unsigned>(number));
  return {digits.data(), static_cast<std::size_t>(length)};
}

void Append(std::string& text, std::initializer_list<std::string_view> pieces) {
  for (const std::string_view piece : pieces) text += piece;
}

std::string EventText(std::int64_t lines) {
  return Fill("CLI Version = 1\r\nController = 0\r\n\r\n\r\n\r\n", lines,
              [](std::string& text, std::int64_t number) {
                Append(text,
                       {"seqNum: 0x", Number(number, "%08x"),
                        "\r\nTime: Wed Nov 18 09:36:06 2026\r\n\r\nCode: 0x00000067\r\n"
                        "Class: -1\r\nLocale: 0x02\r\n"
                        "Event Description: Rebuild progress on PD 20(e0x45/s14) is ",
                        Number(number % 100, "%u"),
                        ".00%(5766s)\r\nEvent Data:\r\n===========\r\n"
                        "Device ID: 32\r\nEnclosure Index: 69\r\nSlot Number: 14\r\n\r\n\r\n"});
                return 14;
              });
}

std::string TermLogText(std::int64_t lines) {
  return Fill("Firmware Term Log Information on controller 0:\r\n", lines,
              [](std::string& text, std::int64_t number) {
                Append(text, {"T", Number(number, "%u"),
                              ": C0:DM_DeviceInserted: tempdevId[51], DevHandle[a], enclHandle 1, "
                              "sasAddr=5a4c2d07b8140167\r\n"});
                return 1;
              });
}

std::string DriveDetailsText(std::int64_t lines) {
  return Fill("", lines, [](std::string& text, std::int64_t number) {
    Append(text,
           {"Drive /c0/e69/s", Number(number, "%u"), " State :\r\n=======================\r\n",
            "Shield Counter = 0\r\nMedia Error Count = 0\r\nOther Error Count = 0\r\n"
            "Drive Temperature =  31C (87.80 F)\r\nPredictive Failure Count = 0\r\n"
            "S.M.A.R.T alert flagged by drive = No\r\n\r\n\r\n"
            "SN = Z4K",
            Number(number, "%08X"),
            "\r\nManufacturer Id = KORVA\r\n"
            "Model Number = HY8000NX0045\r\nNAND Vendor = NA\r\n"
            "WWN = 5A4C2D07",
            Number(number, "%08X"),
            "\r\nFirmware Revision = HN07\r\n"
            "Raw size = 7.277 TB [0x3a3812ab0 Sectors]\r\n"
            "Coerced size = 7.276 TB [0x3a3800000 Sectors]\r\n"
            "Non Coerced size = 7.276 TB [0x3a3712ab0 Sectors]\r\nDevice Speed = 12.0Gb/s\r\n"
            "Link Speed = 12.0Gb/s\r\nNCQ setting = N/A\r\nWrite Cache = N/A\r\n"
            "Logical Sector Size = 512B\r\nPhysical Sector Size = 4 KB\r\n"
            "Connector Name = C0 & C1\r\n\r\n\r\nDrive position = DriveGroup:1, Span:0, Row:7\r\n"
            "Enclosure position = 1\r\nConnected Port Number = 1(path0) \r\n"
            "Sequence Number = 2\r\nCommissioned Spare = No\r\nEmergency Spare = No\r\n"
            "FDE Type = None\r\nSED Capable = No\r\nSecured = No\r\nLocked = No\r\n"
            "Needs EKM Attention = No\r\nPI Eligible = No\r\nCertified = Yes\r\n\r\n"});
    return 42;
  });
}

std::string DriveListText(std::int64_t lines) {
  const std::string rule = std::string(78, '-') + "\r\n";
  return Fill("PD LIST :\r\n=======\r\n\r\n" + rule +
                  "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model  Sp Type\r\n" + rule,
              lines,
              [](std::string& text, std::int64_t number) {
                Append(text,
                       {"69:", Number(number, "%-5u"), Number(number, "%6u"),
                        " Onln   1   7.276 TB SAS  HDD N   N  512B HY8000NX0045      U  -\r\n"});
                return 1;
              }) +
         rule;
}

std::string Sas2LogText(std::int64_t lines) {
  return Fill("", lines, [](std::string& text, std::int64_t number) {
    Append(text, {"Time: 0d 00:07:13.037\r\nLogSequence: ", Number(number, "%u"),
                  "\r\nLogEntryQualifier: 0x0011\r\nLogEntryDescription: Physical disk inserted\r\n"
                  "LogEntryValue: 0x20000001\r\nvf_id: 1\r\nvp_id: 0\r\nLogCode: 0x31110001\r\n"
                  "LogDataDescription: Device handle\r\nLogDataValue: 0x000a\r\nLogClass: 0\r\n"
                  "ArgumentType: 1\r\nLocale: 0x0002\r\n\r\n"});
    return 14;
  });
}

std::string IntelText(std::int64_t lines) {
  return Fill(
      "--END DEVICE INFORMATION--\r\n\r\n", lines, [](std::string& text, std::int64_t number) {
        Append(text, {"ID:                     ", Number(number, "%u"),
                      "-0-0-0\r\nType:                   Disk\r\n"
                      "Disk Type:              PCIE SSD\r\nState:                  Normal\r\n"
                      "Size:                   1863 GB\r\nFree Size:              621 GB\r\n"
                      "System Disk:            False\r\nUsage:                  Array member\r\n"
                      "Serial Number:          PV71C0A03\r\n"
                      "Model:                  KORVA_PX2000_NVME\r\n\r\n"});
        return 11;
      });
}

/// A machine of which the RAID tools say no more than `controllers` and what is added.
CollectionCase RaidMachine(const char* controllers) {
  CollectionCase machine;
  machine.module = "sampleModule2";
  machine.table = "TINFO";
  machine.machine.commands.resize(1);
  machine.machine.commands[0].tool = "storcli.exe";
  machine.machine.commands[0].arguments = "show ctrlcount";
  machine.machine.commands[0].standardOutput = controllers;
  return machine;
}

/// The tool answers with `text`, which the module reads `passes` times.
void AddReport(CollectionCase& machine, const char* tool, const char* arguments, std::string text,
               int passes = 1) {
  for (int pass = 0; pass < passes; ++pass) machine.text += text;
  host::RecordedCommand command;
  command.tool = tool;
  command.arguments = arguments;
  command.standardOutput = std::move(text);
  machine.machine.commands.push_back(std::move(command));
}

void MeasureReport(benchmark::State& state, const char* tool, const char* arguments,
                   const char* table, std::string text) {
  CollectionCase measured = RaidMachine("Controller Count = 0\r\n");
  AddReport(measured, tool, arguments, std::move(text));
  measured.table = table;
  measured.lineCount = state.range(0);
  MeasureCollection(state, measured);
}

void BM_EventLog(benchmark::State& state) {
  MeasureReport(state, "storcli.exe", "/c0 show events", "EVENTLOG5", EventText(state.range(0)));
}
void BM_TermLog(benchmark::State& state) {
  MeasureReport(state, "storcli.exe", "/c0 show termlog", "FWTERMLOG", TermLogText(state.range(0)));
}
void BM_DriveDetails(benchmark::State& state) {
  MeasureReport(state, "storcli.exe", "/c0/eall/sall show all", "PDLIST",
                DriveDetailsText(state.range(0)));
}
void BM_DriveLists(benchmark::State& state) {
  MeasureReport(state, "storcli.exe", "/c0 show", "PINFO", DriveListText(state.range(0)));
}
void BM_Sas2Log(benchmark::State& state) {
  MeasureReport(state, "SAS2IR_windows_x64.exe", "logir.log", "SAS2IRLOG",
                Sas2LogText(state.range(0)));
}
void BM_IntelDevices(benchmark::State& state) {
  MeasureReport(state, "rstcli64_5.exe", "-I", "ENDDEVICEINFO", IntelText(state.range(0)));
}

/// One controller with one drive for every 1,000 lines of events and as many lines of its
/// firmware's log, so that all sizes have the same mixture. Each of storcli's four reports is read
/// twice, from two files: as rows, and whole.
void BM_RaidLogs(benchmark::State& state) {
  CollectionCase measured = RaidMachine("Controller Count = 1\r\n");
  const std::int64_t drives = state.range(0) / 1000;
  AddReport(measured, "storcli.exe", "/c0 show", DriveListText(drives), 2);
  AddReport(measured, "storcli.exe", "/c0 show events", EventText(state.range(0)), 2);
  AddReport(measured, "storcli.exe", "/c0 show termlog", TermLogText(state.range(0)), 2);
  AddReport(measured, "storcli.exe", "/c0/eall/sall show all", DriveDetailsText(42 * drives), 2);
  AddReport(measured, "SAS2IR_windows_x64.exe", "logir.log", Sas2LogText(14 * drives));
  AddReport(measured, "rstcli64_5.exe", "-I", IntelText(11 * drives));
  measured.table = "FWTERMLOG";
  measured.lineCount = 4 * state.range(0) + (2 * 43 + 14 + 11) * drives;
  MeasureCollection(state, measured);
}

void SetRaidLines(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(1'000, 1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_EventLog)->Apply(SetRaidLines);
BENCHMARK(BM_TermLog)->Apply(SetRaidLines);
BENCHMARK(BM_DriveDetails)->Apply(SetRaidLines);
BENCHMARK(BM_DriveLists)->Apply(SetRaidLines);
BENCHMARK(BM_Sas2Log)->Apply(SetRaidLines);
BENCHMARK(BM_IntelDevices)->Apply(SetRaidLines);
BENCHMARK(BM_RaidLogs)->Apply(SetRaidLines);

}  // namespace
}  // namespace bench
