// What the tools print on one machine, parted by form feeds, read and judged: all that is told of a
// part is of one that was read, what could not be read is not well, and a machine is judged as if
// there had been none before it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "fuzz/machine_answers.h"
#include "host/answers/health/health.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"

namespace {

using fuzz::Require;

host::Recording MakeMachine(std::string_view text) {
  const auto take = [&] { return std::string(fuzz::TakeUpTo(text, '\f')); };
  host::Recording machine = test::MakeBmcMachine();
  machine.commands.push_back({"storcli.exe", "show ctrlcount", "Controller Count = 1\n", ""});
  for (const char* arguments :
       {"/c0 show", "/c0/eall/sall show all", "/c0 show events", "/c0 show termlog"}) {
    machine.commands.push_back({"storcli.exe", arguments, take(), ""});
  }
  machine.commands.push_back({"arcconf.exe", "savesupportarchive c:\\", "", ""});
  for (const char* name : {"Controller_1_Config.txt", "Controller_1_Event_Log.txt",
                           "Controller_2_Config.txt", "Controller_2_Event_Log.txt"}) {
    machine.files["c:\\Support\\Firmware\\" + std::string(name)] = take();
  }
  fuzz::AddOtherAnswers(machine, take);
  return machine;
}

bool HasPart(const host::Parts& parts, std::string_view name, const std::string& id) {
  for (const host::PartTable& table : host::GetPartTables()) {
    if (table.name != name) continue;
    for (std::size_t i = 0; i < table.count(parts); ++i) {
      if (table.at(parts, i)->id == id) return true;
    }
  }
  return false;
}

void CheckHit(const host::HealthHit& hit, const host::Parts& parts) {
  Require(!hit.rule.empty() && !hit.text.empty() && !hit.area.empty());
  // Logs name what may be there no more.
  const bool isOfPart = !hit.isOfLog && hit.rule != "collection.nothing";
  Require(!isOfPart || HasPart(parts, hit.part, hit.id));
}

std::vector<std::string> ListKeys(const host::Health& health) {
  std::vector<std::string> keys{host::GetVerdict(health)};
  for (const host::HealthFinding& finding : health.findings) keys.push_back(finding.key);
  return keys;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static host::HealthJudge judge;
  const host::Collection collection = host::Collect(MakeMachine(fuzz::InputText(data, size)));
  const host::Parts parts = host::ReadParts(collection);
  const host::Health health = judge.Judge(collection, parts);
  std::set<std::string> keys;
  for (const host::HealthFinding& finding : health.findings) {
    Require(!finding.hits.empty());
    for (const host::HealthHit& hit : finding.hits) {
      Require(hit.severity <= finding.severity);
      CheckHit(hit, parts);
    }
    keys.insert(finding.key);
  }
  const bool isNothingRead = health.checked.empty() || !parts.unread.empty();
  Require(!isNothingRead || host::GetExitCode(health) != 0);
  if (size % 64 == 0) {  // takes as long as ten runs without
    Require(ListKeys(host::JudgeCollection(collection, parts, {})) == ListKeys(health));
  }
  return 0;
}
