// The whole BMC module. The input's first line holds the exit code of the detection tool and
// letters: a to k, the start of that query fails; A to K, its pipe cannot be created; x, the
// detection cannot start; y, its exit code cannot be read; r and s, the FRU and the SEL file cannot
// be written. Then come the outputs of the eleven queries, with a "--" and a line
// feed between them.
//
// A second, plainer reading of the outputs foretells the rows of all ten tables, the two dumps and
// what is left open.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "tests/support/bmc_machine.h"
#include "tests/support/strtok_reference.h"

namespace {

using fuzz::Require;

using Rows = std::vector<std::vector<std::string>>;

enum Query { kMc, kSelfTest, kVersions, kPsu, kLan, kLed, kSensors, kSdr, kFru, kSel, kSelRaw };

constexpr std::array<const char*, 11> kBmcArguments = {
    "korvaxoem mc",  "korvaxoem selftest", "korvaxoem ver", "korvaxoem psu", "lan",
    "korvaxoem led", "sensor -s -q",       "sensor",        "korvaxoem fru", "sel",
    "sel -r"};

constexpr char kLogFolder[] = "C:\\Halyard\\logs\\";

struct BmcInput {
  std::string options;
  std::array<std::string, kBmcArguments.size()> outputs;

  bool Has(char option) const { return options.find(option) != std::string::npos; }
  bool Starts(Query query) const { return !Has(static_cast<char>('a' + query)); }
  bool HasPipe(Query query) const { return !Has(static_cast<char>('A' + query)); }
  /// Whether the query's tool runs, read through a pipe or into a file.
  bool Runs(Query query) const { return Starts(query) && (query >= kFru || HasPipe(query)); }
  unsigned Detection() const {
    return static_cast<unsigned>(std::strtoul(options.c_str(), nullptr, 10) & 0xFFFFFFFF);
  }
};

BmcInput ReadBmcInput(std::string_view text) {
  constexpr std::string_view kSeparator = "--\n";
  BmcInput input;
  input.options = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), input.options.size() + 1));
  for (std::string& output : input.outputs) {
    const std::size_t end = std::min(text.find(kSeparator), text.size());
    output = text.substr(0, end);
    text.remove_prefix(std::min(text.size(), end + kSeparator.size()));
  }
  return input;
}

host::Recording MachineOf(const BmcInput& input) {
  host::Recording machine = test::MakeBmcMachine(input.Detection());
  host::RecordedCommand& detection = test::AnswerOf(machine, "bmc");
  detection.startError = input.Has('x') ? 5 : 0;
  detection.exitCodeError = input.Has('y') ? 6 : 0;
  for (std::size_t i = 0; i < kBmcArguments.size(); ++i) {
    host::RecordedCommand& answer = test::AnswerOf(machine, kBmcArguments[i]);
    answer.standardOutput = input.outputs[i];
    answer.startError = input.Starts(static_cast<Query>(i)) ? 0 : 8;
    answer.pipeError = input.HasPipe(static_cast<Query>(i)) ? 0 : 4;
  }
  if (input.Has('r')) machine.readOnly.push_back(std::string(kLogFolder) + "fruinfo.txt");
  if (input.Has('s')) machine.readOnly.push_back(std::string(kLogFolder) + "selinfo.txt");
  return machine;
}

bool HoldsError(const std::string& output, std::initializer_list<const char*> errors) {
  return std::ranges::any_of(
      errors, [&](const char* error) { return std::strstr(output.c_str(), error) != nullptr; });
}

bool IsScreened(const std::string& output) {
  return HoldsError(output, {"Error", "Bad response", "Cannot open an IPMI driver"});
}

std::string WithJoinedLines(std::string output) {
  if (std::ranges::count(output, '\r') != 2) return output;
  const std::size_t first = output.find('\r', 1);
  output.resize(std::max(output.size(), first + 2));
  output[first] = output[first + 1] = ' ';
  return output;
}

std::string Property(std::string key, const std::string& value) {
  return std::move(key.append("=").append(value));
}

Rows PairRows(const std::string& output, const std::string& family, std::size_t keyCount) {
  const std::vector<std::string> tokens = test::SplitWithStrtok(output, ":\n\r");
  if (tokens.empty()) return {};
  std::vector<std::string> row;
  for (std::size_t i = 0; i < tokens.size() && i / 2 < keyCount; i += 2) {
    row.push_back(Property(family + std::to_string(i / 2 + 1),
                           i + 1 < tokens.size() ? tokens[i + 1] : std::string()));
  }
  return {row};
}

Rows LineRows(const std::string& output, const std::string& key) {
  Rows rows;
  for (const std::string& line : test::SplitWithStrtok(output, "\n\r")) {
    rows.push_back({Property(key, line)});
  }
  return rows;
}

Rows SensorRows(const std::string& output) {
  Rows rows;
  if (HoldsError(output, {"Error in", "Error:"})) return rows;
  std::size_t count = 0;
  for (const std::string& field : test::SplitWithStrtok(output, "|\n\r")) {
    if (count > 0 && field == " ") break;
    if (count % 10 == 0) {
      rows.emplace_back();
      for (int i = 1; i <= 10; ++i) rows.back().push_back(Property("item" + std::to_string(i), ""));
    }
    rows.back()[count++ % 10] += field;
  }
  return rows;
}

/// The lines of a text file through a buffer of 512 bytes.
Rows FileRows(const std::string& stored, const std::string& key) {
  std::string text;
  for (std::size_t i = 0; i < stored.size() && stored[i] != '\x1a'; ++i) {
    if (stored[i] != '\r' || i + 1 == stored.size() || stored[i + 1] != '\n') text += stored[i];
  }
  Rows rows;
  while (!text.empty()) {
    const std::string line = text.substr(0, std::min<std::size_t>(text.find('\n'), 510) + 1);
    rows.push_back({Property(key, line.substr(0, line.find('\0')))});
    text.erase(0, line.size());
  }
  return rows;
}

/// What the LAN query's two filters let through.
std::string FilteredLan(const std::string& output) {
  std::string filtered;
  for (std::size_t at = 0; at < output.size();) {
    const std::size_t end = std::min(output.find('\n', at), output.size());
    std::string line = output.substr(at, end - at);
    if (line.ends_with('\r')) line.pop_back();
    at = end + 1;
    const auto holds = [&](const char* text) { return line.find(text) != std::string::npos; };
    if (holds("Param") &&
        (holds("(3)") || holds("(5)") || holds("(6)") || holds("(12)") || holds("(13)"))) {
      filtered += line + "\r\n";
    }
  }
  return filtered;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const BmcInput input = ReadBmcInput({reinterpret_cast<const char*>(data), size});
  const test::Collected collected = test::Collect(MachineOf(input), "BMC_Info");

  const unsigned family = input.Has('x') ? 255 : input.Has('y') ? 0 : input.Detection();
  const bool hasVersions = family == 5 || family == 7;
  const bool hasBmc = hasVersions || family == 9 || family == 11;
  // What each query has for its table; nothing when it is not asked, does not run or is screened.
  std::array<std::string, kBmcArguments.size()> outputs;
  int abandoned = 0;
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const auto query = static_cast<Query>(i);
    const bool isOfTwo = query == kVersions || query == kPsu || query == kSdr;
    const bool isAsked = query == kLed ? family == 5 : isOfTwo ? hasVersions : hasBmc;
    if (!isAsked || !input.Runs(query)) continue;
    outputs[i] = query == kLan ? FilteredLan(input.outputs[i]) : input.outputs[i];
    if (query <= kLed && IsScreened(outputs[i])) {
      outputs[i].clear();
      ++abandoned;
    }
  }
  if (input.Has('r')) outputs[kFru].clear();
  if (input.Has('s')) outputs[kSel].clear();

  const std::map<std::string, Rows> foretold = {
      {"MCINFO", PairRows(outputs[kMc], "MC", 12)},
      {"SELFINFO", PairRows(WithJoinedLines(outputs[kSelfTest]), "self", 2)},
      {"VERINFO", PairRows(outputs[kVersions], "VER", 16)},
      {"PSUINFO", LineRows(outputs[kPsu], "PSUINFO")},
      {"LANINFO", PairRows(outputs[kLan], "LAN", 12)},
      {"LEDINFO", LineRows(outputs[kLed], "LEDINFO")},
      {"SENSORINFO", SensorRows(outputs[kSensors])},
      {"SDRINFO", LineRows(outputs[kSdr], "SDRINFO")},
      {"FRUINFO", FileRows(outputs[kFru], "FRUINFO")},
      {"SELINFO", FileRows(outputs[kSel], "SELINFO")},
  };
  for (const auto& [table, rows] : foretold) Require(collected.Rows(table) == rows);
  Require(collected.openHandles == abandoned);
  const auto dump = collected.files.find(std::string(kLogFolder) + "SEL_Hex.txt");
  Require((dump != collected.files.end()) == (hasBmc && input.Starts(kSelRaw)));
  if (dump != collected.files.end()) Require(dump->second == input.outputs[kSelRaw]);
  return 0;
}
