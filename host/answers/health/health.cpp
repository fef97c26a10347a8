#include "host/answers/health/health.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "host/answers/health/findings.h"
#include "host/answers/health/rule_database.h"
#include "host/answers/health/wall_time.h"
#include "host/answers/parts/optical_drives.h"
#include "host/answers/parts/part_tables.h"
#include "host/text/time_text.h"

namespace host {
namespace {

constexpr std::array<const char*, 4> kWords{"notice", "unknown", "warning", "critical"};

// --- when it is ---

struct AsOf {
  std::string time;
  std::string from;
  bool isDated = true;
};

/// The latest time that a part of `table` tells; empty without any.
template <typename Table>
std::string FindLatest(const Table& table, std::string Table::value_type::*member) {
  std::string latest;
  for (const auto& part : table) {
    if (part.*member > latest && ReadWallTime(part.*member)) latest = part.*member;
  }
  return latest;
}

std::string FindLatestTime(const Events& events) {
  std::string_view latest;
  for (std::size_t row = 0; row < events.size(); ++row) {
    const std::string_view time = events.GetText(row, EventColumn::kTime);
    if (time > latest && ReadWallTime(time)) latest = time;
  }
  return std::string(latest);
}

/// When a recording was made need not be known; the machine tells its time in other ways.
AsOf FindAsOf(const Parts& parts, const HealthOptions& options, const std::string& recordedAt,
              const std::string& collected) {
  if (options.asOf) return {*options.asOf, "--as-of"};
  if (!recordedAt.empty()) return {recordedAt, "the collection"};
  if (auto time = FindLatest(parts.controllers, &Controller::systemTime); !time.empty()) {
    return {std::move(time), "the machine's clock, as its controller tells"};
  }
  if (auto time = FindLatest(parts.sources, &PartSource::time); !time.empty()) {
    return {std::move(time), "the machine's clock, as the list of its sensors tells"};
  }
  if (auto time = FindLatestTime(parts.events); !time.empty()) {
    return {std::move(time), "the newest entry of the logs"};
  }
  return {collected, "now, since nothing tells when it was", /*isDated=*/false};
}

// --- what users add ---

void AddRequired(const Parts& parts, const HealthOptions& options, std::vector<HealthHit>& hits) {
  for (const std::string& required : options.required) {
    const auto source = std::find_if(parts.sources.begin(), parts.sources.end(),
                                     [&](const PartSource& one) { return one.id == required; });
    if (source != parts.sources.end() && source->state != "none") continue;
    HealthHit hit;
    hit.rule = "collection.required";
    hit.severity = Severity::kUnknown;
    hit.part = "sources";
    hit.id = required;
    hit.observed = source == parts.sources.end() || source->observed.empty() ? "not collected"
                                                                             : source->observed;
    hit.text =
        fmt::format("Find out why the source \"{}\" tells nothing: {}", required, hit.observed);
    hit.area = "collection";
    hit.why = "--require says that this machine has it.";
    hit.next = "Look whether the tool is there: pqhost check.";
    if (source != parts.sources.end()) hit.place = source->readAt;
    hits.push_back(std::move(hit));
  }
}

void Suppress(const HealthOptions& options, const std::string& today,
              std::vector<HealthHit>& hits) {
  for (HealthHit& hit : hits) {
    for (const Suppression& one : options.suppressions) {
      const bool fits =
          FitsPattern(hit.rule, one.rule) &&
          (FitsPattern(hit.id, one.id) || (!hit.serial.empty() && FitsPattern(hit.serial, one.id)));
      if (!fits || hit.suppressed) continue;
      if (!one.until.empty() && one.until < today) {
        hit.observed += fmt::format(" (suppressed until {}: {})", one.until, one.reason);
        continue;
      }
      hit.suppressed = hit.severity;
      hit.reason = one.reason;
      hit.severity = Severity::kNotice;
    }
  }
}

// --- what was looked at ---

/// Tables that are not of things that were looked at: they say nothing of the machine itself, or
/// what is not there.
bool IsNothingToSee(std::string_view table) {
  return table == "sources" || table == "unread" || table == "missing_drives";
}

void CountParts(const Parts& parts, Health& health) {
  const auto count = [&](std::string name, std::size_t number) {
    if (number > 0) health.checked.emplace_back(std::move(name), number);
  };
  const std::size_t optical = CountOpticalDrives(parts);
  const auto absent = static_cast<std::size_t>(
      std::ranges::count(parts.cacheBackups, "absent", &CacheBackup::condition));
  for (const PartTable& table : GetPartTables()) {
    const std::size_t all = table.count(parts);
    if (table.name == "drives") {
      count("drives", all - optical);
      count("optical_drives", optical);
    } else if (!IsNothingToSee(table.name)) {
      count(std::string(table.name), table.name == "cache_backups" ? all - absent : all);
    }
  }
}

HealthHit MakeNothingChecked() {
  HealthHit hit;
  hit.rule = "collection.nothing";
  hit.severity = Severity::kUnknown;
  hit.part = "sources";
  hit.id = "all";
  hit.observed = "nothing that could be judged was read";
  hit.text = "Find out why nothing of this machine could be judged";
  hit.area = "collection";
  hit.why = "What nobody has looked at may be well or not.";
  hit.next = "pqhost check tells which tools are missing.";
  return hit;
}

HealthHit MakeDoubt(const std::string& doubt) {
  HealthHit hit;
  hit.rule = "collection.doubt";
  hit.severity = Severity::kNotice;
  hit.part = "sources";
  hit.id = "recording";
  hit.observed = doubt;
  hit.text = "Get the recording again, if it matters: " + doubt;
  hit.area = "collection";
  hit.why = "What is judged may not be what was recorded, or not when it was.";
  hit.next = "pqhost verify tells what differs.";
  return hit;
}

Health Judge(RuleDatabase& rules, const Parts& parts, const AsOf& asOf,
             const HealthOptions& options, const std::vector<std::string>& doubts = {}) {
  Health health;
  health.asOf = asOf.time;
  health.asOfFrom = asOf.from;
  health.isDated = asOf.isDated;
  health.sources.assign(parts.sources.begin(), parts.sources.end());
  CountParts(parts, health);
  std::vector<HealthHit> hits = rules.Ask(parts, ReadWallTime(asOf.time));
  if (health.checked.empty()) hits.push_back(MakeNothingChecked());
  for (const std::string& doubt : doubts) hits.push_back(MakeDoubt(doubt));
  AddRequired(parts, options, hits);
  constexpr std::size_t kDay = 10;
  Suppress(options, asOf.time.substr(0, kDay), hits);
  health.findings = JoinFindings(std::move(hits));
  if (!health.findings.empty()) health.worst = health.findings.front().severity;
  return health;
}

}  // namespace

const char* GetWord(Severity severity) { return kWords[static_cast<std::size_t>(severity)]; }

const char* GetVerdict(Severity worst) {
  constexpr std::array<const char*, 4> kVerdicts{"OK", "UNKNOWN", "WARNING", "CRITICAL"};
  return kVerdicts[static_cast<std::size_t>(worst)];
}

int GetExitCode(Severity worst) {
  constexpr std::array<int, 4> kCodes{0, 3, 1, 2};
  return kCodes[static_cast<std::size_t>(worst)];
}

const char* GetVerdict(const Health& health) { return GetVerdict(FindWorst(health)); }

int GetExitCode(const Health& health) { return GetExitCode(FindWorst(health)); }

std::size_t CountFindings(const Health& health, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(health.findings.begin(), health.findings.end(),
                    [&](const HealthFinding& finding) { return finding.severity == severity; }));
}

HealthJudge::HealthJudge(HealthOptions options) : options(std::move(options)) {}

HealthJudge::~HealthJudge() = default;

bool HealthJudge::HasOwnRules() const {
  return std::any_of(options.rules.begin(), options.rules.end(),
                     [](const Rule& rule) { return !rule.file.empty(); });
}

Health HealthJudge::Judge(const Collection& collection, const Parts& parts) {
  const auto& recordedAt = collection.machine.recordedAt;
  const AsOf asOf = FindAsOf(parts, options, recordedAt ? FormatIsoTime(*recordedAt) : "",
                             FormatIsoTime(collection.collected));
  // The user's rules can ask the classes, too, which are others for each machine.
  if (HasOwnRules()) {
    RuleDatabase ofMachine(options, &collection);
    return host::Judge(ofMachine, parts, asOf, options, collection.doubts);
  }
  if (rules == nullptr) rules = std::make_unique<RuleDatabase>(options, nullptr);
  return host::Judge(*rules, parts, asOf, options, collection.doubts);
}

Health HealthJudge::JudgeParts(const Parts& parts, const std::string& collected) {
  if (rules == nullptr) rules = std::make_unique<RuleDatabase>(options, nullptr);
  return host::Judge(*rules, parts, FindAsOf(parts, options, {}, collected), options);
}

Health JudgeCollection(const Collection& collection, const Parts& parts,
                       const HealthOptions& options) {
  return HealthJudge(options).Judge(collection, parts);
}

Health JudgeParts(const Parts& parts, const std::string& collected, const HealthOptions& options) {
  return HealthJudge(options).JudgeParts(parts, collected);
}

}  // namespace host
