#include "host/answers/health/finding_tables.h"
#include "host/formats/csv_records.h"
#include "host/formats/health_formats.h"
#include "host/text/ascii.h"

namespace host {
namespace {

struct MachineColumn {
  const char* name;
  std::string (*get)(const JudgedMachine& one);
};
/// Before those of the finding.
constexpr MachineColumn kMachineColumns[] = {
    {"machine", [](const JudgedMachine& one) { return one.machine; }},
    {"machine_name", [](const JudgedMachine& one) { return one.name; }},
    {"machine_serial", [](const JudgedMachine& one) { return one.serial; }},
    {"verdict", [](const JudgedMachine& one) { return LowerCase(GetVerdict(one.health)); }},
    {"as_of", [](const JudgedMachine& one) { return one.health.asOf; }},
};

}  // namespace

void WriteHealthCsv(const std::vector<JudgedMachine>& machines, const Screen& screen,
                    std::ostream& out) {
  const FindingTable& findings = GetFindingTables().front();
  CsvRecords records(screen.isTerminal, out);
  for (const MachineColumn& column : kMachineColumns) records.WriteField(column.name);
  for (const FindingColumn& column : findings.columns) records.WriteField(column.name);
  records.EndRecord();
  for (const JudgedMachine& one : machines) {
    const auto writeMachine = [&] {
      for (const MachineColumn& column : kMachineColumns) records.WriteField(column.get(one));
    };
    for (const FindingRow& row : ListRows(findings, one.health)) {
      writeMachine();
      for (const FindingColumn& column : findings.columns) {
        records.WriteField(FormatPartValue(column.get(row), ""));
      }
      records.EndRecord();
    }
    if (!one.health.findings.empty()) continue;
    writeMachine();
    for (std::size_t i = 0; i < findings.columns.size(); ++i) records.WriteField("");
    records.EndRecord();
  }
}

}  // namespace host
