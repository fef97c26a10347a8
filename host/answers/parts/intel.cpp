// Sections begin with their name between hyphens, and each thing in them with its name or number:
//
//   --VOLUME INFORMATION--
//
//   Name:                   Tank
//   Raid Level:             5
//   State:                  Degraded
//
//   --END DEVICE INFORMATION--
//
//   ID:                     0-4-0-0
//   State:                  Normal
//   Size:                   1863 GB
//   Free Size:              621 GB
//   Usage:                  Array member
#include "host/answers/parts/intel.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/answers/parts/sources.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr char kIntel[] = "intel";
constexpr char kIntelVendor[] = "Intel";

template <typename T>
struct RowFact {
  std::string_view label;
  std::string_view column;
  std::string_view key;  ///< of the class
  void (*set)(T& part, std::string_view value);
};

constexpr RowFact<Controller> kControllerRowFacts[] = {
    {"Name", "model", "Name", [](auto& c, auto value) { c.model = value; }},
};
constexpr RowFact<Group> kGroupRowFacts[] = {
    {"Name", "number", "Name", [](auto& group, auto value) { group.number = value; }},
};
constexpr RowFact<Volume> kVolumeRowFacts[] = {
    {"Name", "name", "Name", [](auto& volume, auto value) { volume.name = value; }},
    {"Raid Level", "level", "RaidLevel", [](auto& volume, auto value) { volume.level = value; }},
    {"Size", "size", "Size", [](auto& volume, auto value) { volume.size = ReadSize(value); }},
    {"State", "state", "State", [](auto& volume, auto value) { volume.state = value; }},
    {"Initialized", "initialized", "Initialized",
     [](auto& volume, auto value) { volume.initialized = value; }},
    {"Cache Policy", "cache", "CachePolicy",
     [](auto& volume, auto value) { volume.cache = value; }},
};
constexpr RowFact<Drive> kDriveRowFacts[] = {
    {"ID", "place", "ID", [](auto& drive, auto value) { drive.place = value; }},
    {"Disk Type", "media", "DiskType", [](auto& drive, auto value) { drive.media = value; }},
    {"Port Interface",
     "interface",
     {},
     [](auto& drive, auto value) { drive.interfaceName = value; }},
    {"Firmware", "firmware", {}, [](auto& drive, auto value) { drive.firmware = value; }},
    {"State", "state", "State", [](auto& drive, auto value) { drive.state = value; }},
    {"Size", "size", "Size", [](auto& drive, auto value) { drive.size = ReadSize(value); }},
    {"Usage", "member", "Usage",
     [](auto& drive, auto value) {
       drive.member = LowerCase(value).find("member") != std::string::npos ? 1 : 0;
     }},
    {"Serial Number", "serial", "SerialNumber",
     [](auto& drive, auto value) { drive.serial = value; }},
    {"Model", "model", "Model", [](auto& drive, auto value) { drive.model = value; }},
};

class IntelReader {
 public:
  IntelReader(const Report& report, const CollectedRows* rows, Parts& parts)
      : report(report),
        parts(parts),
        firstVolume(parts.volumes.CountAdded()),
        firstDrive(parts.drives.CountAdded()),
        firstGroup(parts.groups.CountAdded()),
        shownControllers(ListShown(rows, "CONTROLLER")),
        shownGroups(ListShown(rows, "ARRAY")),
        shownVolumes(ListShown(rows, "VOLUME")),
        shownDrives(ListShown(rows, "ENDDEVICEINFO")) {}

  void Take(const ReportLine& line) {
    const std::string_view text = Trim(line.text);
    if (text.starts_with("--") && text.ends_with("--") && text.size() > 4) {
      BeginSection(Trim(text.substr(2, text.size() - 4)));
      return;
    }
    const std::optional<LabelledValue> told = SplitLabel(text, ':');
    if (!told) return;
    switch (section) {
      case Section::kOther:
        break;
      case Section::kController:
        TakeControllerLine(*told, line);
        break;
      case Section::kArrays:
        if (told->label == "Name") BeginGroup(line, told->value);
        if (hasPart) Learn<Group>(parts.groups.Newest(), kGroupRowFacts, *told, line, shownGroups);
        if (told->label == "Num Disks") DeclareDrives(*told, line);
        break;
      case Section::kVolumes:
        if (told->label == "Name") BeginVolume(line, told->value);
        if (hasPart)
          Learn<Volume>(parts.volumes.Newest(), kVolumeRowFacts, *told, line, shownVolumes);
        break;
      case Section::kDrives:
        if (told->label == "ID") BeginDrive(line, told->value);
        if (hasPart) Learn<Drive>(parts.drives.Newest(), kDriveRowFacts, *told, line, shownDrives);
        break;
    }
  }

  /// Members belong to the only array. The report does not tell those of several apart, unless it
  /// lists a volume's drives.
  void Finish() {
    const bool hasOneArray = parts.groups.CountAdded() == firstGroup + 1;
    const std::string array = hasOneArray ? parts.groups.Newest().id : std::string();
    for (std::size_t i = firstVolume; i < parts.volumes.size(); ++i) {
      parts.volumes[i].group = hasOneArray ? array : parts.volumes[i].id;
    }
    for (std::size_t i = firstDrive; i < parts.drives.size(); ++i) {
      Drive& drive = parts.drives[i];
      if (hasOneArray && drive.member == 1) drive.group = array;
    }
  }

 private:
  enum class Section { kOther, kController, kArrays, kVolumes, kDrives };
  using Shown = CollectedRowList;

  static Shown ListShown(const CollectedRows* rows, std::string_view className) {
    return rows == nullptr ? Shown() : rows->ListRows(className);
  }

  void BeginSection(std::string_view name) {
    constexpr std::string_view kVolumesDrives = "DISKS IN VOLUME:";
    hasPart = false;
    volumeOfDrives.clear();
    section = Section::kOther;
    if (name == "CONTROLLER INFORMATION") {
      section = Section::kController;
      controllerBegins = true;
    } else if (name == "ARRAY INFORMATION") {
      section = Section::kArrays;
    } else if (name == "VOLUME INFORMATION") {
      section = Section::kVolumes;
    } else if (name == "END DEVICE INFORMATION") {
      section = Section::kDrives;
    } else if (name.starts_with(kVolumesDrives)) {
      section = Section::kDrives;
      volumeOfDrives = ComposeId(Trim(name.substr(kVolumesDrives.size())));
    }
  }

  void TakeControllerLine(const LabelledValue& told, const ReportLine& line) {
    if (std::exchange(controllerBegins, false)) {
      Controller& controller = parts.controllers.emplace_back();
      controllers += 1;
      controllerId = controllers == 1 ? kIntel : kIntel + (" " + std::to_string(controllers));
      Begin(controller, line, controllerId);
      controller.vendor = kIntelVendor;
      controller.number = std::to_string(controllers - 1);
      part = controllers;
    }
    if (controllers == 0) return;
    Learn<Controller>(parts.controllers.Newest(), kControllerRowFacts, told, line,
                      shownControllers);
  }

  void BeginGroup(const ReportLine& line, std::string_view name) {
    Group& group = parts.groups.emplace_back();
    Begin(group, line, ComposeId(name));
    group.vendor = kIntelVendor;
    group.controller = controllerId;
    part = parts.groups.CountAdded() - firstGroup;
  }

  /// The report has no end of its own: only the arrays tell how many drives have to follow.
  void DeclareDrives(const LabelledValue& told, const ReportLine& line) {
    const Integer count = ReadInteger(told.value);
    constexpr std::int64_t kMost = 10'000;
    if (controllers == 0 || !count || *count < 0 || *count > kMost) return;
    Controller& controller = parts.controllers.Newest();
    controller.drivesDeclared = controller.drivesDeclared.value_or(0) + *count;
    NotePlace(controller, "drives_declared", PlaceOfLine(report, line));
  }

  void BeginVolume(const ReportLine& line, std::string_view name) {
    Volume& volume = parts.volumes.emplace_back();
    Begin(volume, line, ComposeId(name));
    volume.vendor = kIntelVendor;
    volume.controller = controllerId;
    part = parts.volumes.CountAdded() - firstVolume;
    volume.number = std::to_string(part);
  }

  void BeginDrive(const ReportLine& line, std::string_view id) {
    const auto [known, isNew] = drives.emplace(id, parts.drives.size());
    if (!isNew) {
      // Told before: in the list of all drives, or in that of another volume.
      hasPart = false;
      const bool isKept = known->second < parts.drives.size();
      if (!volumeOfDrives.empty() && isKept) parts.drives[known->second].group = volumeOfDrives;
      return;
    }
    Drive& drive = parts.drives.emplace_back();
    Begin(drive, line, ComposeId(id));
    drive.vendor = kIntelVendor;
    drive.controller = controllerId;
    drive.member = 0;
    drive.group = volumeOfDrives;
    part = parts.drives.CountAdded() - firstDrive;
  }

  void Begin(Part& begun, const ReportLine& line, std::string id) {
    begun.id = std::move(id);
    begun.readAt = PlaceOfLine(report, line);
    hasPart = true;
  }

  std::string ComposeId(std::string_view name) const {
    return controllerId + " " + std::string(name);
  }

  template <typename T>
  void Learn(T& known, std::span<const RowFact<T>> facts, const LabelledValue& told,
             const ReportLine& line, const Shown& shown) {
    const auto fact = std::find_if(facts.begin(), facts.end(),
                                   [&](const auto& one) { return one.label == told.label; });
    if (fact == facts.end() || told.value.empty()) return;
    const auto isSame = [&](const ColumnPlace& one) { return one.column == fact->column; };
    if (std::any_of(known.columnPlaces.begin(), known.columnPlaces.end(), isSame)) return;
    fact->set(known, told.value);
    Place place = PlaceOfLine(report, line);
    // The cell of the class, where that shows the value as it is.
    if (part <= shown.size() && shown[part - 1].Get(fact->key) == told.value) {
      place = shown[part - 1].PlaceOf(fact->key, report.place.tool);
      if (fact == facts.begin()) known.readAt = place;
    }
    NotePlace(known, fact->column, place);
  }

  const Report& report;
  Parts& parts;
  const std::size_t firstVolume;
  const std::size_t firstDrive;
  const std::size_t firstGroup;
  const Shown shownControllers;
  const Shown shownGroups;
  const Shown shownVolumes;
  const Shown shownDrives;

  Section section = Section::kOther;
  bool hasPart = false;  ///< the lines are on the part added last
  std::size_t part = 0;  ///< its number among its kind, from 1
  std::size_t controllers = 0;
  bool controllerBegins = false;
  std::string controllerId = kIntel;
  std::string volumeOfDrives;
  std::unordered_map<std::string, std::size_t> drives;  ///< by what the tool calls them
};

void ReadReport(const Report& report, const CollectedRows* rows, Parts& parts) {
  IntelReader reader(report, rows, parts);
  ReportLine line;
  for (ReportLines lines(report.text); lines.Next(line);) reader.Take(line);
  reader.Finish();
}

struct Tool {
  std::string_view program;
  std::string_view name;
};
constexpr Tool kTools[] = {
    {"rstcli64_5.exe", "rstcli64 -I"},
    {"intelvroccli.exe", "IntelVROCCli -I"},
};

/// `end`: how the tool ended that told of the parts, in words; empty when it ended well.
void AddIntelSource(const CollectedRows& rows, Parts& parts, bool hasParts,
                    const std::string& end) {
  constexpr const char* kClasses[] = {"ENDDEVICEINFO", "VOLUME", "CONTROLLER"};
  if (hasParts) {
    AddSource(parts, "intel", kClasses[0], end.empty() ? SourceState::kRead : SourceState::kFailed,
              end);
    return;
  }
  const CollectedTable* asked = nullptr;
  for (const char* className : kClasses) {
    if (asked == nullptr) asked = rows.FindTable(className);
  }
  AddSourceWithoutParts(parts, "intel", kClasses[0], asked);
}

}  // namespace

void ReadIntelReport(const Report& report, Parts& parts) { ReadReport(report, nullptr, parts); }

void ReadIntel(const CollectedRows& rows, Parts& parts) {
  const std::size_t controllers = parts.controllers.CountAdded();
  const std::size_t drives = parts.drives.CountAdded();
  const std::size_t volumes = parts.volumes.CountAdded();
  const auto hasParts = [&] {
    return parts.controllers.CountAdded() > controllers || parts.drives.CountAdded() > drives ||
           parts.volumes.CountAdded() > volumes;
  };
  // A machine has one of the tools' controllers; two modules ask for the same report.
  std::string end;
  for (const Tool& tool : kTools) {
    const auto answers = rows.ListAnswers(tool.program, "-I");
    for (auto answer = answers.rbegin(); answer != answers.rend() && !hasParts(); ++answer) {
      const DecodedText text = rows.Decode((*answer)->fileText);
      ReadReport({text.View(), {{}, 0, {}, 0, std::string(tool.name)}, kIntel}, &rows, parts);
      const std::string how = DescribeEnd(*answer);
      if (hasParts() && !how.empty()) end = std::string(tool.name) + " " + how;
    }
  }
  AddIntelSource(rows, parts, hasParts(), end);
  // Each tool knows controllers of its own.
  PartSource& source = parts.sources.back();
  source.saysNone = source.saysNone && std::ranges::all_of(kTools, [&](const Tool& tool) {
                      return rows.FindAnswer(tool.program, "-I") != nullptr;
                    });
}

}  // namespace host
