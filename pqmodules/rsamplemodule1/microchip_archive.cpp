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

constexpr char kArchiveFolder[] = "c:\\Support\\Firmware";

// The reports pad all labels to one width; a value begins this far from its label's start.
constexpr std::size_t kValueAt = 45;

constexpr LabelledColumn MakePaddedColumn(std::string_view label, const Column& column) {
  return {label, kValueAt, column};
}

constexpr std::string_view kMode = "Controller Mode";
constexpr std::string_view kFirmware = "Firmware";
constexpr std::string_view kDriver = "Driver";

// Hosts know the columns by these keys, as uneven as they are.
constexpr LabelledColumn kConfigFacts[] = {
    MakePaddedColumn("Controller Status",
                     {"Status", "Controller Status", "state of the controller, such as Optimal"}),
    MakePaddedColumn(kMode, {"Mode", "Controller Mode",
                             "whether it shows the system RAID volumes, plain drives or both"}),
    MakePaddedColumn("Channel description",
                     {"description", "Channel description", "kind of its channels"}),
    MakePaddedColumn("Controller Serial Number", {"SerialNumber", "Controller Serial Number",
                                                  "serial number of the controller"}),
    MakePaddedColumn("Controller World Wide Name", {"WorldWideName", "Controller World Wide Name",
                                                    "world-wide name, in hexadecimal"}),
    MakePaddedColumn("Physical Slot", {"Physical_slot", "Physical Slot",
                                       "PCI slot that it is plugged into", ValueKind::kNumber}),
    MakePaddedColumn("Temperature",
                     {"Temperature", "Temperature", "in degrees Celsius and Fahrenheit"}),
    MakePaddedColumn("Host bus type",
                     {"type", "Host bus type", "bus between controller and machine"}),
    MakePaddedColumn("Host bus speed", {"speed", "Host bus speed", "speed of that bus, in MB/s"}),
    MakePaddedColumn("Host bus link width",
                     {"width", "Host bus link width", "width of that bus, in bits or lanes"}),
    MakePaddedColumn("Defunct disk drive count", {"Defunct_disk", "Defunct disk drive count",
                                                  "number of failed drives", ValueKind::kNumber}),
    MakePaddedColumn("NCQ status",
                     {"NCQ", "NCQ status", "whether drives may reorder their commands"}),
    MakePaddedColumn("Statistics data collection mode",
                     {"Statistics", "Statistics data collection mode",
                      "whether the controller counts what its drives do"}),
    MakePaddedColumn("Driver Name", {"Driver_Name", "Driver Name", "file of the Windows driver"}),
    MakePaddedColumn("Driver Supports SSD I/O Bypass",
                     {"Bypass", "Driver Supports SSD I/O Bypass",
                      "whether the driver can reach SSDs past the RAID firmware"}),
    MakePaddedColumn("NVMe Supported",
                     {"NVMe_Supported", "NVMe Supported", "whether NVMe drives can be connected"}),
    MakePaddedColumn("Manufacturing Part Number",
                     {"ManPN", "Manufacturing Part Number", "part number of the controller"}),
    MakePaddedColumn("Logical devices/Failed/Degraded",
                     {"Logical", "Logical devices/Failed/Degraded",
                      "numbers of RAID volumes: all, failed, degraded"}),
    MakePaddedColumn(kFirmware, {"Firmware", "Firmware", "version of the firmware"}),
    MakePaddedColumn(kDriver, {"Driver", "Driver", "version of the Windows driver"}),
};

// Occurs in lines that hold the mode's label too.
constexpr LabelledColumn kModel =
    MakePaddedColumn("Controller Model", {"Model", "Controller Model", "model of the controller"});

/// Comes before the number of controllers in what the tool says and in its reports.
constexpr char kControllersLabel[] = "Controllers found:";

constexpr char kConfigName[] = "Controller_1_Config.txt";

/// There only where there is another controller.
constexpr char kNextConfig[] = "Controller_2_Config.txt";

/// A file of the archive that is attached whole.
struct AttachedReport {
  const char* file;
  Column column;
  const char* shownAs;
  Sentence openFailure;
};

constexpr AttachedReport kAttachedReports[] = {
    {kConfigName,
     {"Controller_Config", "Controller_Config",
      "configuration of the controller, its volumes and its drives"},
     "Controller_1_Config",
     "Failed to open Controller_1_Config.txt file!"},
    {"Controller_1_Debug_Log.txt",
     {"Controller_Debug_Log", "Controller_Debug_Log", "debugging log of the firmware"},
     "Controller_1_Debug_Log",
     "Failed to open Controller_1_Debug_Log.txt file!"},
    {"Controller_1_Event_Log.txt",
     {"Controller_Event_Log", "Controller_Event_Log", "events that the controller recorded"},
     "Controller_1_Event_Log",
     "Failed to open Controller_1_Event_Log.txt file!"},
    {"Controller_1_Log.txt",
     {"Controller_Log", "Controller_Log", "the controller's device log"},
     "Controller_1_Log",
     "Failed to open Controller_1_Log.txt file!"},
    {"Controller_1_SmartStats.xml",
     {"Controller_SmartStats", "Controller_SmartStats", "SMART values of the drives, as XML"},
     "Controller_1_SmartStats",
     "Failed to open Controller_1_SmartStats.xml file!"},
};

/// Logged where there is no archive: the tool writes one only when there is such a controller.
constexpr Sentence kNoConfig = "Failed to open PMC Controller file";

constexpr char kTool[] = "\\utilities\\arcconf\\arcconf.exe";
constexpr char kArchiveArguments[] = "savesupportarchive c:\\";
constexpr char kCopyName[] = "Firmware";  ///< of the copied folder in the log folder

/// Whether a fact belongs to the row of versions.
bool IsVersion(std::string_view label) { return label == kFirmware || label == kDriver; }

/// Has arcconf write the archive and copies it into the log folder, for the host's own log
/// collection. False when a command could not be started.
bool SaveArchive(const RaidInventoryCollection& collection, const std::string& logFolder) {
  CheckFolderFits(collection.hostFolder, 4);
  const std::string copy = logFolder + kCopyName;
  const std::string save = "/c \"" + collection.hostFolder + kTool + " " + kArchiveArguments + "\"";
  if (!RunLogged(collection.log, save)) return false;
  if (!RunLogged(collection.log, "/c \"md \"" + copy + "\"\"")) return false;
  if (!Machine().PathExists(kArchiveFolder)) return true;
  return RunLogged(collection.log,
                   std::string("/c \"copy \"") + kArchiveFolder + "\" \"" + copy + "\"\"");
}

std::unique_ptr<TextFile> OpenArchived(const RaidInventoryCollection& collection, const char* name,
                                       const Sentence& failure) {
  return OpenReport(collection.log, std::string(kArchiveFolder) + "\\" + name, failure);
}

/// A link for a page in the log folder.
std::string ComposeLink(const std::string& target) {
  return "\n<pre>\n<a href='" + target + "' target='_blank'>" + target + "</a>\n<pre>\n";
}

/// The last of the parts between backslashes.
std::string FindLastPart(std::string folder) {
  while (folder.ends_with('\\')) folder.pop_back();
  return folder.substr(folder.rfind('\\') + 1);
}

/// Ends at the driver's version; the lines after it describe parts of the controller.
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

void AttachReports(const RaidInventoryCollection& collection, RInstance& links) {
  for (const AttachedReport& report : kAttachedReports) {
    auto file = OpenArchived(collection, report.file, report.openFailure);
    if (!file) continue;
    std::unique_ptr<char[]> text = ReadWholeReport(collection.log, *file);
    if (!text) continue;
    file.reset();
    AddAttachment(links, report.column, std::move(text), report.shownAs);
  }
}

}  // namespace

const LabelledColumns& GetMicrochipConfigFacts() {
  static const LabelledColumns kLabelled(kConfigFacts);
  return kLabelled;
}

LabelledFact ReadMicrochipConfigFact(std::string_view line) {
  LabelledFact fact = GetMicrochipConfigFacts().FindIn(line);
  if (fact && fact.source->label == kMode && Contains(line, kModel.label)) fact.source = &kModel;
  return fact;
}

void CollectMicrochipArchive(const RaidInventoryCollection& collection) {
  const std::string logFolder = GetLogFolder();
  if (!SaveArchive(collection, logFolder)) return;
  auto config = OpenArchived(collection, kConfigName, kNoConfig);
  if (!config) return;
  // The copied folder as a page in the log folder would link it. No row carries the link: the
  // files themselves are attached instead.
  [[maybe_unused]] const std::string reportFolder = FindLastPart(logFolder);
  [[maybe_unused]] const std::string link = ComposeLink("..\\Firmware");

  RowBuffer controller(collection.repo, kPmcInfo, "MCHP Controller information");
  RowBuffer versions(collection.repo, kPmcVer, "MCHP Controller Version Info");
  RInstance links(kPmcLink, "MCHP other info link", kInstanceNumber);
  ReadConfig(config.get(), controller, versions);
  AttachReports(collection, links);
  controller.Commit();
  versions.Commit();
  links.AddToRepository(collection.repo);
  config.reset();
}

void DescribeMicrochipArchive(ModuleDescription& module) {
  const ToolCommand archive{kTool, kArchiveArguments, kCopyName};
  TableDescription controller{
      .className = kPmcInfo, .title = "Microchip controller", .commands = {archive}};
  TableDescription versions{
      .className = kPmcVer, .title = "Microchip controller versions", .commands = {archive}};
  for (const LabelledColumn& fact : kConfigFacts) {
    (IsVersion(fact.label) ? versions : controller).AddColumn(fact.column);
    if (fact.label == kMode) controller.AddColumn(kModel.column);
  }
  TableDescription links{
      .className = kPmcLink, .title = "Microchip support files, raw", .commands = {archive}};
  for (const AttachedReport& report : kAttachedReports) {
    links.AddColumn(report.column);
    module.AddFailures(StepFailure::kOutputNotOpened, {report.openFailure}, kTool);
  }
  const std::vector<Omission> leavesOut = {
      {.text = "Only controller 1 is read.",
       .note = "of controller 1 alone: the archive has files of controller 2, too",
       .sign = OmissionSign::kFile,
       .command = archive,
       .label = kNextConfig},
      {.note = "of controller 1 alone: arcconf counts {} controllers",
       .sign = OmissionSign::kAttachedCount,
       .label = kControllersLabel,
       .end = std::string(kAttachedReports[0].column.key),
       .most = 1,
       .className = kPmcLink},
      {.text = std::string("The archive stays in `") + kArchiveFolder + "`; it is copied into `" +
               kCopyName + "` of the log folder.",
       .note = std::string("the archive, with more than is shown here, stays in ") + kArchiveFolder,
       .sign = OmissionSign::kFile,
       .command = archive,
       .label = kNextConfig},
      {.note = std::string("the archive stays in ") + kArchiveFolder, .sign = OmissionSign::kRows}};
  for (TableDescription* table : {&controller, &versions, &links}) {
    table->neededCommands = {"md", "copy"};
    table->leavesOut = leavesOut;
    module.tables.push_back(*table);
  }
  module.answers.push_back({archive,
                            std::string(kControllersLabel) + " 0",
                            "no such device",
                            "arcconf finds no controller",
                            {kPmcInfo, kPmcVer, kPmcLink}});
  module.tools.push_back({kTool, "Microchip, formerly Adaptec", "ARCCONF"});
  module.AddFailures(StepFailure::kNothingToReport, {kNoConfig}, kTool);
}

}  // namespace pq
