// A verdict for people, programs and Nagios, and the rules as a document. Of several machines each
// has its verdict.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/answers/health/health.h"
#include "host/text/screen.h"

namespace host {

struct JudgedMachine {
  std::string machine;  ///< what its recording is called, which tells it from the others
  // What is known of it, UTF-8; empty when it is not.
  std::string name = {};
  std::string serial = {};
  std::string recordedAt = {};  ///< ISO 8601
  Health health;
};

/// That of the machine that is worst off; a notice when nothing is wrong with any.
Severity FindWorst(const std::vector<JudgedMachine>& machines);

/// The verdict in a line, then each finding with its evidence, reason and next step; `isBrief`:
/// each finding in a line.
void WriteHealthTable(const Health& health, bool isBrief, const Screen& screen, std::ostream& out);
/// A line for all, then the same for each machine, the worst first.
void WriteHealthTable(const std::vector<JudgedMachine>& machines, bool isBrief,
                      const Screen& screen, std::ostream& out);
/// The verdict and a line for each finding, as the beginning of something longer: the last line
/// counts those that are left out.
void WriteHealthSummary(const Health& health, const Screen& screen, std::ostream& out);

/// One JSON object in one line (docs/health.md).
std::string MakeHealthJson(const Health& health);
/// The same and a line end.
void WriteHealthJson(const Health& health, std::ostream& out);
/// One JSON object with an array of machines.
void WriteHealthJson(const std::vector<JudgedMachine>& machines, std::ostream& out);

/// RFC 4180: a row for each finding, and one for a machine without any.
void WriteHealthCsv(const std::vector<JudgedMachine>& machines, const Screen& screen,
                    std::ostream& out);

/// A line with performance data, then a line for each finding, as Nagios reads them.
void WriteHealthNagios(const Health& health, std::ostream& out);
/// A line for all with performance data, then a line for each machine, the worst first.
void WriteHealthNagios(const std::vector<JudgedMachine>& machines, std::ostream& out);

/// docs/health.md: how machines are judged, and every rule of the program's own.
std::string WriteHealthDocument();

}  // namespace host
