// Headings are between rules; those of a section begin the line, those of a part of it are
// indented. Values are after a colon in any column, and a label may hold colons, too:
//
//   ----------------------------------------------------------------------
//   Logical device information
//   ----------------------------------------------------------------------
//   Logical Device number 0
//      RAID level                               : 10
//      --------------------------------------------------------
//      Logical Device segment information
//      --------------------------------------------------------
//      Group 0, Segment 1                       : Missing
#include "host/answers/parts/arcconf_config.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/answers/parts/arcconf_controller.h"
#include "host/answers/parts/arcconf_devices.h"
#include "host/answers/parts/arcconf_members.h"
#include "host/answers/parts/arcconf_section.h"
#include "host/answers/parts/arcconf_volumes.h"
#include "host/answers/parts/report_lines.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::size_t kShortestSectionRule = 20;

/// Finds headings, hands the lines below them to the reader of their section, and judges whether
/// the report is whole.
class ConfigReader {
 public:
  ConfigReader(const Report& report, Parts& parts)
      : report(report),
        parts(parts),
        firstDrive(parts.drives.CountAdded()),
        firstVolume(parts.volumes.CountAdded()),
        controller(report.controller),
        arrays(report.controller, parts),
        volumes(report.controller, parts),
        devices(report, parts) {}

  void Take(const ReportLine& taken) {
    const std::string_view text = Trim(taken.text);
    if (text.empty()) return;
    if (text.starts_with("Controllers found")) hasHead = true;
    if (text.starts_with("Command completed successfully")) hasEnd = true;
    if (IsRule(text, '-', kShortestSectionRule)) {
      // A rule closes the heading before it, or announces one.
      headingIsNext = !std::exchange(headingIsOpen, false);
      return;
    }
    line.text = text;
    line.told = SplitPaddedLabel(text);
    line.at = PlaceOfLine(report, taken);
    headingIsOpen = std::exchange(headingIsNext, false) && !line.told;
    if (headingIsOpen) {
      TakeHeading(taken.text.front() != ' ' && taken.text.front() != '\t');
    } else if (section != nullptr) {
      section->Take(line);
    }
  }

  /// As ReadArcconfConfig.
  std::string Finish() {
    const bool endsWithDrive = devices.IsInDrive();
    devices.End();
    JoinArcconfMembers(volumes.Segments(), {report.controller, firstVolume, firstDrive}, parts);
    if (!controller.HandOver(parts)) return "tells of no controller";
    return FindWhatIsMissing(endsWithDrive);
  }

 private:
  void TakeHeading(bool beginsLine) {
    const std::pair<std::string_view, ArcconfSection*> sections[] = {
        {"controller information", &controller},   {"array information", &arrays},
        {"logical device information", &volumes},  {"logical drive information", &volumes},
        {"physical device information", &devices},
    };
    const std::string heading = LowerCase(line.text);
    ArcconfSection* known = nullptr;
    for (const auto& [name, reader] : sections) {
      if (name == heading) known = reader;
    }
    if (known == nullptr && !beginsLine) {
      if (section != nullptr) section->BeginPart(heading, line.at);
      return;
    }
    // A cache of solid-state drives is a volume of its own.
    if (heading.starts_with("maxcache") && heading.ends_with("information")) known = &volumes;
    if (section != nullptr) section->End();
    section = known;
    if (section != nullptr) section->Begin(line.at);
  }

  /// In words; empty when the report is whole, as far as it tells.
  std::string FindWhatIsMissing(bool endsWithDrive) const {
    if (hasHead && !hasEnd) return "breaks off: it does not say that the command completed";
    if (!devices.WasRead()) return "breaks off before its drives";
    const std::size_t drives = parts.drives.CountAdded() - firstDrive;
    if (const std::size_t members = CountArcconfMembers(volumes.Segments()); drives < members) {
      return "breaks off: it tells of " + std::to_string(drives) + " of the " +
             std::to_string(members) + " drives of its volumes";
    }
    if (!hasEnd && !report.text.ends_with('\n')) return "breaks off within a line";
    // Elsewhere an enclosure, a channel or a section comes after the last of the drives.
    if (!hasHead && !hasEnd && endsWithDrive) {
      return "has neither its first nor its last line and ends with a drive, so that others may be "
             "missing";
    }
    return "";
  }

  const Report& report;
  Parts& parts;
  const std::size_t firstDrive;
  const std::size_t firstVolume;

  bool hasHead = false;  ///< the tool's first words
  bool hasEnd = false;   ///< its last ones

  ArcconfLine line;  ///< at hand
  bool headingIsNext = false;
  bool headingIsOpen = false;

  ArcconfControllerSection controller;
  ArcconfArraySection arrays;
  ArcconfVolumeSection volumes;
  ArcconfDeviceSection devices;
  ArcconfSection* section = nullptr;  ///< one of these; null in any other section
};

}  // namespace

std::string ReadArcconfConfig(const Report& report, Parts& parts) {
  ConfigReader reader(report, parts);
  ReportLine line;
  for (ReportLines lines(report.text); lines.Next(line);) reader.Take(line);
  return reader.Finish();
}

}  // namespace host
