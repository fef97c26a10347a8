// arcconf savesupportarchive leaves a folder of files. The configuration report among them:
//
//   Controller information
//   ----------------------------------------------------------------------
//      Controller Status                          : Optimal
//      ...
//      Firmware                                   : 03.01.24.082-p
//      Driver                                     : Windows 1010.84.0.1012

#include "pqmodules/rsamplemodule1/microchip_archive.h"

#include <memory>
#include <utility>

#include "frame/attachment.h"
#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

const std::string kArchiveFolder = "c:\\Support\\Firmware";

// The reports pad all labels to one width; a value begins this far behind its label's start.
constexpr std::size_t kValueAt = 45;

LabelledColumn Padded(std::string_view label, Column column) {
  return {label, kValueAt, std::move(column)};
}

constexpr std::string_view kMode = "Controller Mode";
constexpr std::string_view kFirmware = "Firmware";
constexpr std::string_view kDriver = "Driver";

// Stands in lines that hold the mode's label too.
const LabelledColumn kModel = Padded("Controller Model", {"Model", "Controller Model"});

/// A file of the archive that is attached whole.
struct AttachedReport {
  const char* file;
  const char* property;
  const char* shownAs;
  const char* openFailure;
};

constexpr AttachedReport kAttachedReports[] = {
    {"Controller_1_Config.txt", "Controller_Config", "Controller_1_Config",
     "Failed to open Controller_1_Config.txt file!"},
    {"Controller_1_Debug_Log.txt", "Controller_Debug_Log", "Controller_1_Debug_Log",
     "Failed to open Controller_1_Debug_Log.txt file!"},
    {"Controller_1_Event_Log.txt", "Controller_Event_Log", "Controller_1_Event_Log",
     "Failed to open Controller_1_Event_Log.txt file!"},
    {"Controller_1_Log.txt", "Controller_Log", "Controller_1_Log",
     "Failed to open Controller_1_Log.txt file!"},
    {"Controller_1_SmartStats.xml", "Controller_SmartStats", "Controller_1_SmartStats",
     "Failed to open Controller_1_SmartStats.xml file!"},
};

constexpr char kTool[] = "\\utilities\\arcconf\\arcconf.exe";
constexpr char kArguments[] = "savesupportarchive c:\\";
constexpr char kCopyName[] = "Firmware";  ///< of the copied folder in the log folder

/// Whether a fact belongs to the row of versions.
bool IsVersion(std::string_view label) { return label == kFirmware || label == kDriver; }

/// Has arcconf write the archive and copies it into the log folder, for the host's own log
/// collection. False when a command could not be started.
bool SaveArchive(const std::string& logFolder) {
  const std::string folder = GetExeFolder();
  CheckFolderFits(folder, 4);
  const std::string copy = logFolder + kCopyName;
  if (!RunLogged(kInventoryLog, "/c \"" + folder + kTool + " " + kArguments + "\"")) {
    return false;
  }
  if (!RunLogged(kInventoryLog, "/c \"md \"" + copy + "\"\"")) return false;
  if (!Machine().PathExists(kArchiveFolder)) return true;
  return RunLogged(kInventoryLog, "/c \"copy \"" + kArchiveFolder + "\" \"" + copy + "\"\"");
}

/// A link for a page in the log folder.
std::string ComposeLink(const std::string& target) {
  return "\n<pre>\n<a href='" + target + "' target='_blank'>" + target + "</a>\n<pre>\n";
}

/// The last of the parts between backslashes.
std::string LastPart(std::string folder) {
  while (folder.ends_with('\\')) folder.pop_back();
  return folder.substr(folder.rfind('\\') + 1);
}

/// Ends at the driver's version; what follows it describes parts of the controller.
void ReadConfig(TextFile* file, RowBuffer& controller, RowBuffer& versions) {
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    const LabelledFact fact = ReadMicrochipConfigFact(line);
    if (!fact) continue;
    const std::string_view label = fact.source->label;
    RowBuffer& row = IsVersion(label) ? versions : controller;
    row.Set(fact.source->column, fact.value);
    if (label == kDriver) return;
  }
}

void AttachReports(RInstance& links) {
  for (const AttachedReport& report : kAttachedReports) {
    const auto file =
        OpenReport(kInventoryLog, kArchiveFolder + "\\" + report.file, report.openFailure);
    if (!file) continue;
    std::unique_ptr<char[]> text = ReadWholeReport(kInventoryLog, *file);
    if (!text) continue;
    AddAttachment(links, report.property, report.property, std::move(text), report.shownAs);
  }
}

}  // namespace

const LabelledColumns& MicrochipConfigFacts() {
  // Hosts know the columns by these keys, as uneven as they are.
  static const LabelledColumns facts{
      Padded("Controller Status", {"Status", "Controller Status"}),
      Padded(kMode, {"Mode", "Controller Mode"}),
      Padded("Channel description", {"description", "Channel description"}),
      Padded("Controller Serial Number", {"SerialNumber", "Controller Serial Number"}),
      Padded("Controller World Wide Name", {"WorldWideName", "Controller World Wide Name"}),
      Padded("Physical Slot", {"Physical_slot", "Physical Slot"}),
      Padded("Temperature", {"Temperature", "Temperature"}),
      Padded("Host bus type", {"type", "Host bus type"}),
      Padded("Host bus speed", {"speed", "Host bus speed"}),
      Padded("Host bus link width", {"width", "Host bus link width"}),
      Padded("Defunct disk drive count", {"Defunct_disk", "Defunct disk drive count"}),
      Padded("NCQ status", {"NCQ", "NCQ status"}),
      Padded("Statistics data collection mode", {"Statistics", "Statistics data collection mode"}),
      Padded("Driver Name", {"Driver_Name", "Driver Name"}),
      Padded("Driver Supports SSD I/O Bypass", {"Bypass", "Driver Supports SSD I/O Bypass"}),
      Padded("NVMe Supported", {"NVMe_Supported", "NVMe Supported"}),
      Padded("Manufacturing Part Number", {"ManPN", "Manufacturing Part Number"}),
      Padded("Logical devices/Failed/Degraded", {"Logical", "Logical devices/Failed/Degraded"}),
      Padded(kFirmware, {"Firmware", "Firmware"}),
      Padded(kDriver, {"Driver", "Driver"}),
  };
  return facts;
}

LabelledFact ReadMicrochipConfigFact(std::string_view line) {
  LabelledFact fact = MicrochipConfigFacts().FindIn(line);
  if (fact && fact.source->label == kMode && Holds(line, kModel.label)) fact.source = &kModel;
  return fact;
}

void CollectMicrochipArchive(RRepository& repo) {
  const std::string logFolder = GetLogFolder();
  if (!SaveArchive(logFolder)) return;
  auto config = OpenReport(kInventoryLog, kArchiveFolder + "\\Controller_1_Config.txt",
                           "Failed to open PMC Controller file");
  if (!config) return;
  // The copied folder as a page in the log folder would link it. No row carries the link: the
  // files themselves are attached instead.
  [[maybe_unused]] const std::string reportFolder = LastPart(logFolder);
  [[maybe_unused]] const std::string link = ComposeLink("..\\Firmware");

  RowBuffer controller(repo, kPmcInfo, "MCHP Controller information");
  RowBuffer versions(repo, kPmcVer, "MCHP Controller Version Info");
  RInstance links(kPmcLink, "MCHP other info link", kInstanceNumber);
  ReadConfig(config.get(), controller, versions);
  AttachReports(links);
  controller.Commit();
  versions.Commit();
  links.AddToRepository(repo);
  config.reset();
}

TableSources DescribeMicrochipArchive() {
  const ToolCommand archive{kTool, kArguments, kCopyName};
  TableSource controller{kPmcInfo, {archive}, {}};
  TableSource versions{kPmcVer, {archive}, {}};
  for (const LabelledColumn& fact : MicrochipConfigFacts().All()) {
    (IsVersion(fact.label) ? versions : controller).columns.push_back(fact.column);
    if (fact.label == kMode) controller.columns.push_back(kModel.column);
  }
  TableSource links{kPmcLink, {archive}, {}};
  for (const AttachedReport& report : kAttachedReports) {
    links.columns.push_back({report.property, report.property});
  }
  return {std::move(controller), std::move(versions), std::move(links)};
}

}  // namespace pq
