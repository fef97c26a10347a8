// The section on drives and enclosures:
//
//   Channel #0:
//      Device #0
//         Device is a Hard drive
//         State                              : Online
//         Reported Channel,Device(T:L)       : 0,0(0:0)
#pragma once

#include <cstdint>
#include <string>

#include "host/answers/parts/arcconf_section.h"
#include "host/answers/parts/report.h"

namespace host {

class ArcconfDeviceSection : public ArcconfSection {
 public:
  /// Adds to the drives, enclosures and unread lines of `parts`. Both have to outlive this.
  ArcconfDeviceSection(const Report& report, Parts& parts) : report(report), parts(parts) {}

  void Begin(const Place& at) override;
  void Take(const ArcconfLine& line) override;
  void End() override;

  /// The report has the section, as that of every controller does.
  bool WasRead() const { return wasRead; }
  /// The last line that was taken is one of a drive, which may go on.
  bool IsInDrive() const { return kind == Device::kDrive; }

 private:
  enum class Device { kNone, kUntold, kDrive, kEnclosure, kOther };

  void BeginDevice(const std::string& line);
  void TakeFact(const LabelledValue& told, const Place& at);

  const Report& report;
  Parts& parts;
  bool wasRead = false;

  Device kind = Device::kNone;
  std::int64_t channel = 0;
  std::string address;  ///< channel and device, as in "0,3"
  ReportLine headLine;  ///< of the device
  Drive drive;
  Enclosure enclosure;
};

}  // namespace host
