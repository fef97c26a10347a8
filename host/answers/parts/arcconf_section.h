// What the readers of the sections of arcconf's configuration report have in common.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/answers/parts/parts.h"
#include "host/answers/parts/report_lines.h"

namespace host {

/// The maker, as parts name it.
inline constexpr char kMicrochip[] = "Microchip";

/// A line that is no heading.
struct ArcconfLine {
  std::string_view text;              ///< trimmed, never empty
  std::optional<LabelledValue> told;  ///< none without a label
  Place at;
};

/// Reads one kind of section. A report can have several of a kind, and other sections between.
class ArcconfSection {
 public:
  ArcconfSection() = default;
  ArcconfSection(const ArcconfSection&) = delete;
  ArcconfSection& operator=(const ArcconfSection&) = delete;
  virtual ~ArcconfSection() = default;

  /// The heading of such a section was read at `at`.
  virtual void Begin(const Place& at) = 0;
  /// The heading of a part of the section, in lower case, was read at `at`.
  virtual void BeginPart(const std::string& /*heading*/, const Place& /*at*/) {}
  virtual void Take(const ArcconfLine& line) = 0;
  /// The section is over. Does nothing when none was begun.
  virtual void End() {}
};

/// The number that `text` has after `start`, which has to be all that comes before it: 3 of
/// "Device #3". `start` is in lower case.
Integer ReadArcconfHeadNumber(std::string_view text, std::string_view start);

/// The id of the group that the report calls array `number`.
std::string ComposeArcconfArrayId(const std::string& controller, std::string_view number);

}  // namespace host
