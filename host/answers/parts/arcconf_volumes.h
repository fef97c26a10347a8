// The sections on arrays and on volumes, which list their members, the segments:
//
//   Logical Device number 0
//      RAID level                               : 10
//      Status of Logical Device                 : Degraded
//      --------------------------------------------------------
//      Logical Device segment information
//      --------------------------------------------------------
//      Group 0, Segment 0                       : Present (Controller:1,Enclosure:0,Slot:0) WX-7731
//      Group 0, Segment 1                       : Missing
#pragma once

#include <string>
#include <vector>

#include "host/answers/parts/arcconf_members.h"
#include "host/answers/parts/arcconf_section.h"

namespace host {

class ArcconfArraySection : public ArcconfSection {
 public:
  /// Adds to the groups of `parts`, which has to outlive this, as the id of the controller has.
  ArcconfArraySection(const std::string& controller, Parts& parts)
      : controller(controller), parts(parts) {}

  void Begin(const Place& at) override;
  void BeginPart(const std::string& heading, const Place& at) override;
  void Take(const ArcconfLine& line) override;

 private:
  const std::string& controller;
  Parts& parts;
  bool isOfGroup = false;  ///< the lines are those of the last group, not of a part of it
};

class ArcconfVolumeSection : public ArcconfSection {
 public:
  /// Adds to the volumes of `parts`; as above.
  ArcconfVolumeSection(const std::string& controller, Parts& parts)
      : controller(controller), parts(parts) {}

  void Begin(const Place& at) override;
  void BeginPart(const std::string& heading, const Place& at) override;
  void Take(const ArcconfLine& line) override;

  const std::vector<ArcconfSegment>& Segments() const { return segments; }

 private:
  void BeginVolume(std::int64_t number, const Place& at);
  void TakeSegment(const LabelledValue& told, const Place& at);

  const std::string& controller;
  Parts& parts;
  bool hasVolume = false;
  bool isInPart = false;  ///< of a volume, which lists its segments
  std::vector<ArcconfSegment> segments;
};

}  // namespace host
