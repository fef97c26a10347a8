// Which drive of a Microchip (Adaptec) controller is in which volume: a report lists a volume's
// segments by serial number and place, and the drives elsewhere.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/answers/parts/parts.h"

namespace host {

/// A member of a volume, as the report lists it:
///   Group 0, Segment 1 : Present (Controller:1,Enclosure:0,Slot:3)      WX-7731
struct ArcconfSegment {
  std::size_t volume = 0;  ///< place in the parts' volumes
  std::string name;        ///< in lower case: "group 0, segment 1"
  std::string state;
  std::string place;   ///< the text in the parentheses; may be empty
  std::string serial;  ///< may be empty
  Place readAt;
};

/// The parts of one report: the last volumes and drives.
struct ArcconfReportParts {
  std::string controller;
  std::size_t firstVolume = 0;
  std::size_t firstDrive = 0;
};

/// Gives volumes and drives their groups, and appends the drives that are missing.
void JoinArcconfMembers(const std::vector<ArcconfSegment>& segments,
                        const ArcconfReportParts& report, Parts& parts);

/// How many drives the segments name as present; each can be in several volumes.
std::size_t CountArcconfMembers(const std::vector<ArcconfSegment>& segments);

}  // namespace host
