// How much memory a result takes at its peak, in sizes of what was read.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <boost/algorithm/string/replace.hpp>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/recording/recording_writer.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace {

/// Bytes that `pqhost` had in memory at most.
double MeasurePeak(const std::vector<std::string>& arguments) {
  std::string line = test::FindBuiltProgram("measure_peak").string() + " " +
                     test::FindBuiltProgram("pqhost").string();
  for (const std::string& argument : arguments) line += " '" + argument + "'";
  return std::stod(test::RunShellCommand(line));
}

/// What a tool prints, `bytes` long or a little more.
using MakeText = std::string (*)(std::size_t bytes);

std::string MakeConnections(std::size_t bytes) {
  std::string text =
      "\r\nActive Connections\r\n\r\n"
      "  Proto  Local Address          Foreign Address        State\r\n";
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    text += fmt::format("  TCP    10.24.{}.{}:445         client-{:07}:50112     ESTABLISHED\r\n",
                        i / 200 % 200, i % 200 + 1, i);
  }
  return text;
}

std::string MakeSel(std::size_t bytes) {
  std::string text = "ipmiutil sel version 3.18\r\n";
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    text += fmt::format(
        "{:04x} 03/21/22 08:{:02}:{:02} MIN BMC  Memory #0e  ECC, DIMM(C{}) "
        "6f [00 ff 08]\r\n",
        i % 0x10000, i / 60 % 60, i % 60, i % 8);
  }
  return text + "ipmiutil sel, completed successfully\r\n";
}

std::string MakeEvents(std::size_t bytes) {
  std::string text = "Controller = 0\r\nStatus = Success\r\nDescription = None\r\n\r\n\r\n";
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    text += fmt::format(
        "seqNum: 0x{:08x}\r\nTime: Tue Jun  2 18:{:02}:{:02} 2015\r\n\r\nCode: 0x00000067\r\n"
        "Class: 0\r\nLocale: 0x02\r\nEvent Description: Command timeout on PD {:02x}(e0x45/s{}), "
        "CDB: {:x}\r\nEvent Data:\r\n===========\r\nDevice ID: {}\r\n\r\n\r\n",
        i + 1, i / 60 % 60, i % 60, i % 24, i % 24, i, i % 24);
  }
  return text;
}

std::string MakeArpTable(std::size_t bytes) {
  std::string text =
      "\r\nInterface: 10.24.8.31 --- 0x11\r\n"
      "  Internet Address      Physical Address      Type\r\n";
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    text += fmt::format("  {:<21} 02-1c-73-{:02x}-{:02x}-{:02x}     dynamic   \r\n",
                        fmt::format("10.{}.{}.{}", i / 40000 % 200, i / 200 % 200, i % 200 + 1),
                        i >> 16U & 0xFFU, i >> 8U & 0xFFU, i & 0xFFU);
  }
  return text;
}

std::string MakeListOfDrives(std::size_t bytes) {
  std::string text =
      "Controller = 0\r\nStatus = Success\r\nProduct Name = KORVA MR-24i\r\n\r\nPD LIST :\r\n"
      "=======\r\n\r\n-------------------------------\r\n"
      "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model             Sp Type\r\n"
      "-------------------------------\r\n";
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    text += fmt::format(
        "{}:{:<6} {:>3} Onln   0 446.625 GB SATA SSD N   N  512B KORVA NS480M2     U  -\r\n",
        i / 200, i % 200, i % 1000);
  }
  return text + "-------------------------------\r\n";
}

std::string MakeSensors(std::size_t bytes) {
  std::string text;
  for (std::size_t i = 0; text.size() < bytes; ++i) {
    text += fmt::format(
        "T{:07} Temp | {:3}.00 | C | ok | na | na | na | 85.00 | 92.00 | 100.00\r\n", i, i % 90);
  }
  return text;
}

std::string Repeat(std::string_view text, std::size_t bytes) {
  std::string all;
  while (all.size() < bytes) all += text;
  return all;
}

std::string MakeShortLines(std::size_t bytes) { return Repeat("ab\n", bytes); }

/// The sample's drives, again and again, each time in another enclosure.
std::string RepeatDrives(std::string_view sample, std::size_t bytes) {
  std::string all;
  for (std::size_t i = 0; all.size() < bytes; ++i) {
    std::string drives(sample);
    boost::replace_all(drives, "/e69/", fmt::format("/e{}/", 69 + i));
    boost::replace_all(drives, "\n69:", fmt::format("\n{}:", 69 + i));
    all += drives;
  }
  return all;
}

struct Output {
  const char* name;
  const char* tool;  ///< its file's name, or how that begins
  const char* arguments;
  MakeText make;  ///< null: RepeatDrives
  std::size_t bytes = 3'000'000;
};
constexpr std::array<Output, 8> kOutputs{{
    {"ListOfConnections", "netstat", "", &MakeConnections},
    {"ArpTable", "arp", "-a", &MakeArpTable},
    {"Sel", "ipmiutil", "sel", &MakeSel},
    {"ListOfEvents", "storcli", "/c0 show events", &MakeEvents},
    {"DrivesWithAllFacts", "storcli", "/c0/eall/sall show all", nullptr, 6'000'000},
    {"ListOfDrives", "storcli", "/c0 show", &MakeListOfDrives},
    {"Sensors", "ipmiutil", "sensor -s -q", &MakeSensors},
    {"SensorsOfThreeCharacters", "ipmiutil", "sensor -s -q", &MakeShortLines},
}};

class PeakMemory : public testing::TestWithParam<Output> {
 protected:
  void WriteRecording(const std::string& name, std::size_t bytes) {
    host::Recording machine = test::LoadSamples().at("two-socket-server");
    for (host::RecordedCommand& command : machine.commands) {
      const auto& [unused, tool, arguments, make, alsoUnused] = GetParam();
      if (!command.tool.starts_with(tool) || command.arguments != arguments) continue;
      command.standardOutput =
          make == nullptr ? RepeatDrives(command.standardOutput, bytes) : make(bytes);
    }
    host::RecordingOutput output(folder.Path() / name, "--record");
    output.Write(machine);
  }

  const test::TemporaryFolder folder;
};

/// Sizes of the input that an answer may take.
constexpr double kMost = 4;

// What the program takes by itself, and what it takes in any case, does not count: how much more it
// takes for so much more of a report.
TEST_P(PeakMemory, GrowsByAFewTimesTheInput) {
  if (PQ_HAS_ADDRESS_SANITIZER) return;
  const auto bytes = static_cast<double>(GetParam().bytes);
  WriteRecording("small", GetParam().bytes);
  WriteRecording("large", 2 * GetParam().bytes);
  const std::string out = folder / "out";
  const std::vector<std::pair<std::string, std::vector<std::string>>> works = {
      {"json", {"collect", "--format", "json"}},
      {"metrics", {"collect", "--format", "prometheus"}},
      {"html", {"collect", "--format", "html", "--output", out}},
      {"sqlite", {"collect", "--format", "sqlite", "--output", out}},
      {"trace", {"collect", "--format", "none", "--trace", "-"}},
      {"query", {"query", "SELECT count(*) FROM log"}},
      {"health", {"health"}},
      {"health in a database", {"health", "--format", "sqlite", "--output", out}},
  };
  for (const auto& [answer, work] : works) {
    const auto measure = [&, &work = work](const std::string& name) {
      std::vector<std::string> words = work;
      words.insert(words.begin() + 1, {"--replay", folder / name});
      const double peak = MeasurePeak(words);
      std::filesystem::remove(out);
      return peak;
    };
    const double growth = (measure("large") - measure("small")) / bytes;
    EXPECT_LE(growth, kMost) << answer;
    EXPECT_GT(growth, 0.2) << answer << " took next to nothing: was it made?";
  }
}

INSTANTIATE_TEST_SUITE_P(OfALong, PeakMemory, testing::ValuesIn(kOutputs),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
