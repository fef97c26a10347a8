// The whole RAID inventory module on what its tools print. The input's first line says which steps
// fail; then come, each behind a line "--", the LSI summary, Intel's report, the Microchip
// configuration and the Microchip event log. The letters of the first line:
//
//   s the count cannot be asked for      w its report cannot be written
//   k the LSI tool cannot be started     z its report cannot be written
//   i RST cannot be started              u its exit code cannot be read
//   r RST fails                          v VROC fails
//   a arcconf cannot be started          c there is no archive     e there is no event log
//
// A second, plainer reading of the texts foretells all log lines and all rows.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/checks.h"
#include "host/recorded/stored_text.h"
#include "tests/support/collected.h"
#include "tests/support/label_reference.h"

namespace {

using fuzz::Require;

struct Raid1Input {
  std::string faults;
  std::string summary;
  std::string intel;
  std::string config;
  std::string events;
};

bool Has(const Raid1Input& input, char fault) {
  return input.faults.find(fault) != std::string::npos;
}

Raid1Input ReadRaid1Input(std::string_view text) {
  const auto next = [&text](std::string_view separator) {
    std::string part(text.substr(0, text.find(separator)));
    text.remove_prefix(std::min(text.size(), part.size() + separator.size()));
    return part;
  };
  Raid1Input input;
  input.faults = next("\n");
  input.summary = next("\n--\n");
  input.intel = next("\n--\n");
  input.config = next("\n--\n");
  input.events = text;
  return input;
}

/// What the modules see of a stored text.
std::vector<std::string> LinesOf(const std::string& stored) {
  std::vector<std::string> lines;
  host::StoredText text(stored);
  char line[512];
  while (text.ReadLine(line, sizeof(line))) lines.emplace_back(line);
  return lines;
}

using Cells = std::vector<std::string>;

/// A row in the making: setting a key again replaces its value in its old place.
class PlainRow {
 public:
  void Set(const std::string& key, const std::string& value) {
    for (auto& [known, old] : properties) {
      if (known == key) {
        old = value;
        return;
      }
    }
    properties.emplace_back(key, value);
  }
  Cells Cut() const {
    Cells cells;
    for (const auto& [key, value] : properties)
      cells.push_back(std::string(key).append("=").append(value));
    return cells;
  }

 private:
  std::vector<std::pair<std::string, std::string>> properties;
};

std::string From(const std::string& line, std::size_t at) {
  return at < line.size() ? line.substr(at) : "";
}

std::vector<Cells> ForetellSummary(const std::string& summary) {
  static const std::vector<std::string_view> kLabels{
      "Product Name =",  "Serial Number =",   "SAS Address =",      "Mfg. Date =",
      "System Time =",   "Controller Time =", "FW Package Build =", "BIOS Version =",
      "FW Version =",    "Driver Name =",     "Driver Version =",   "Bus Number =",
      "Device Number =", "Function Number ="};
  static const Cells kKeys{"ProductName",  "SerialNumber",   "SASAddress",     "MfgDate",
                           "SystemTime",   "ControllerTime", "FWPackageBuild", "BIOSVersion",
                           "FWVersion",    "DriverName",     "DriverVersion",  "BusNumber",
                           "DeviceNumber", "FunctionNumber"};
  std::vector<Cells> rows;
  PlainRow row;
  for (const std::string& line : LinesOf(summary)) {
    const pq::LabelMatch match = test::FindLabelPlainly(kLabels, line);
    if (!match) continue;
    const auto index = static_cast<std::size_t>(match.index);
    row.Set(kKeys[index], From(line, match.position + kLabels[index].size()));
    if (index + 1 == kKeys.size()) rows.push_back(row.Cut());
  }
  return rows;
}

std::vector<Cells> ForetellController(const std::string& report) {
  PlainRow row;
  int counter = 0;
  for (const std::string& line : LinesOf(report)) {
    switch (counter++) {
      case 0:
      case 1:
      case 2:
        row.Set("Name", From(line, 5));
        if (line.find("Name") != std::string::npos) ++counter;
        break;
      case 3:
        row.Set("Name", From(line, 5));
        break;
      case 4:
        row.Set("Type", From(line, 5));
        break;
      case 5:
        row.Set("SupportedRAID", From(line, 15));
        break;
      case 6:
        row.Set("Max", From(line, 16));
        break;
      case 7:
        row.Set("HWInformation", From(line, 15));
        break;
      case 8:
        row.Set("VendorID", From(line, 10));
        break;
      case 9:
        row.Set("DeviceID", From(line, 10));
        break;
      case 10:
        row.Set("HWRevision", From(line, 12));
        return {row.Cut()};
      default:
        break;
    }
  }
  return {};
}

struct PlainArchive {
  PlainRow controller;
  PlainRow versions;
  PlainRow links;
};

std::string WholeText(const std::string& stored) {
  std::string text;
  for (const std::string& line : LinesOf(stored)) text += line;
  return text;
}

PlainArchive ForetellArchive(const Raid1Input& input) {
  static const std::vector<std::string_view> kLabels{"Controller Status",
                                                     "Controller Mode",
                                                     "Channel description",
                                                     "Controller Serial Number",
                                                     "Controller World Wide Name",
                                                     "Physical Slot",
                                                     "Temperature",
                                                     "Host bus type",
                                                     "Host bus speed",
                                                     "Host bus link width",
                                                     "Defunct disk drive count",
                                                     "NCQ status",
                                                     "Statistics data collection mode",
                                                     "Driver Name",
                                                     "Driver Supports SSD I/O Bypass",
                                                     "NVMe Supported",
                                                     "Manufacturing Part Number",
                                                     "Logical devices/Failed/Degraded",
                                                     "Firmware",
                                                     "Driver"};
  static const Cells kKeys{"Status",        "Mode",          "description",  "SerialNumber",
                           "WorldWideName", "Physical_slot", "Temperature",  "type",
                           "speed",         "width",         "Defunct_disk", "NCQ",
                           "Statistics",    "Driver_Name",   "Bypass",       "NVMe_Supported",
                           "ManPN",         "Logical",       "Firmware",     "Driver"};
  PlainArchive archive;
  for (const std::string& line : LinesOf(input.config)) {
    const pq::LabelMatch match = test::FindLabelPlainly(kLabels, line);
    if (!match) continue;
    std::string key = kKeys[static_cast<std::size_t>(match.index)];
    if (key == "Mode" && line.find("Controller Model") != std::string::npos) key = "Model";
    const bool isVersion = key == "Firmware" || key == "Driver";
    (isVersion ? archive.versions : archive.controller).Set(key, From(line, match.position + 45));
    if (key == "Driver") break;
  }
  archive.links.Set("Controller_Config", WholeText(input.config));
  if (!Has(input, 'e')) archive.links.Set("Controller_Event_Log", WholeText(input.events));
  return archive;
}

/// What a run must leave behind.
struct Raid1Foretold {
  Cells log{"3 Enter EnumPQ1Instances", "3 Enter EnumXFirmwareInstancesCallback",
            "3 the exepath:C:\\Halyard"};
  std::vector<Cells> raidInfo;
  std::vector<Cells> controller;
  std::vector<Cells> pmcInfo;
  std::vector<Cells> pmcVer;
  std::vector<Cells> pmcLink;
  int openHandles = 0;
};

void ForetellIntel(const Raid1Input& input, Raid1Foretold& foretold) {
  const auto attempt = [&](const std::string& tool) {
    foretold.log.push_back("3 rstcli raw path:/c \"\"C:\\Halyard\\" + tool +
                           "\" -I > \"C:\\Halyard\\logs\\rstcli64.txt\"\"");
  };
  attempt("pq_tools\\rstcli64_5.exe");
  if (Has(input, 'i')) {
    foretold.log.push_back("4 CreateProcess failed (8)");
    return;
  }
  if (Has(input, 'u')) {
    foretold.log.push_back("4 GetExitCodeProcess() failed: 6");
    return;
  }
  if (Has(input, 'r')) {
    foretold.log.push_back("4 rstcli64 -I command error level: 3");
    attempt("utilities\\vroc\\IntelVROCCli.exe");
    if (Has(input, 'v')) {
      foretold.log.push_back("4 rstcli64 -I command error level: 4");
      return;
    }
  }
  foretold.log.push_back("4 rstcli64 -I command error level: 0");
  foretold.controller = ForetellController(input.intel);
}

void ForetellMicrochip(const Raid1Input& input, Raid1Foretold& foretold) {
  if (Has(input, 'a')) {
    foretold.log.push_back("4 CreateProcess failed (9)");
    return;
  }
  if (Has(input, 'c')) {
    foretold.log.push_back("4 Failed to open PMC Controller file");
    return;
  }
  const PlainArchive archive = ForetellArchive(input);
  foretold.pmcInfo = {archive.controller.Cut()};
  foretold.pmcVer = {archive.versions.Cut()};
  foretold.pmcLink = {archive.links.Cut()};
  foretold.log.push_back("4 Size:" + std::to_string(input.config.size()));
  foretold.log.push_back("4 Failed to open Controller_1_Debug_Log.txt file!");
  foretold.log.push_back(Has(input, 'e') ? "4 Failed to open Controller_1_Event_Log.txt file!"
                                         : "4 Size:" + std::to_string(input.events.size()));
  foretold.log.push_back("4 Failed to open Controller_1_Log.txt file!");
  foretold.log.push_back("4 Failed to open Controller_1_SmartStats.xml file!");
}

Raid1Foretold ForetellRaid1(const Raid1Input& input) {
  Raid1Foretold foretold;
  const auto lsiLog = [&](char noStart, char noReport, const char* startFailure) {
    if (Has(input, noStart)) {
      foretold.log.push_back(startFailure);
    } else if (Has(input, noReport)) {
      foretold.log.push_back("4 Failed to open raid log file");
    } else {
      return true;
    }
    return false;
  };
  if (lsiLog('s', 'w', "4 CreateProcess failed (5)")) {
    foretold.openHandles = 1;
    if (lsiLog('k', 'z', "4 CreateProcess failed (7)")) {
      foretold.raidInfo = ForetellSummary(input.summary);
    }
    ForetellIntel(input, foretold);
    ForetellMicrochip(input, foretold);
    foretold.log.push_back("3 Exit EnumXFirmwareInstancesCallback");
  }
  foretold.log.push_back("3 Exit EnumPQ1Instances");
  return foretold;
}

host::RecordedCommand Command(const std::string& tool, const std::string& arguments,
                              const std::string& output, std::uint32_t startError) {
  host::RecordedCommand command;
  command.tool = tool;
  command.arguments = arguments;
  command.standardOutput = output;
  command.startError = startError;
  return command;
}

host::Recording RecordingOf(const Raid1Input& input) {
  host::Recording recording;
  recording.commands = {
      Command("storcli.exe", "show ctrlcount", "", Has(input, 's') ? 5 : 0),
      Command("storcli.exe", "/c0 show", input.summary, Has(input, 'k') ? 7 : 0),
      Command("rstcli64_5.exe", "-I", Has(input, 'r') ? "no\n" : input.intel,
              Has(input, 'i') ? 8 : 0),
      Command("IntelVROCCli.exe", "-I", input.intel, 0),
      Command("arcconf.exe", "savesupportarchive c:\\", "", Has(input, 'a') ? 9 : 0)};
  recording.commands[2].exitCode = Has(input, 'r') ? 3 : 0;
  recording.commands[2].exitCodeError = Has(input, 'u') ? 6 : 0;
  recording.commands[3].exitCode = Has(input, 'v') ? 4 : 0;
  if (Has(input, 'w')) recording.readOnly.push_back(recording.logFolder + "ctrlcount.txt");
  if (Has(input, 'z')) recording.readOnly.push_back(recording.logFolder + "c0_showall.txt");
  const std::string archive = "C:\\Support\\Firmware\\Controller_1_";
  if (!Has(input, 'c')) recording.files[archive + "Config.txt"] = input.config;
  if (!Has(input, 'e')) recording.files[archive + "Event_Log.txt"] = input.events;
  return recording;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Raid1Input input = ReadRaid1Input({reinterpret_cast<const char*>(data), size});
  const Raid1Foretold foretold = ForetellRaid1(input);
  const test::Collected collected =
      test::Collect(RecordingOf(input), "sampleModule1", {"RAIDINFO"});

  Require(collected.LogTexts() == foretold.log);
  Require(collected.Rows("RAIDINFO") == foretold.raidInfo);
  Require(collected.Rows("CONTROLLER") == foretold.controller);
  Require(collected.Rows("PMCINFO") == foretold.pmcInfo);
  Require(collected.Rows("PMCVER") == foretold.pmcVer);
  Require(collected.Rows("PMCLINK") == foretold.pmcLink);
  Require(collected.openHandles == foretold.openHandles);
  return 0;
}
