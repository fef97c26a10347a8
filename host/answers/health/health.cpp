#include "host/answers/health/health.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "host/answers/collection_database.h"
#include "host/answers/health/findings.h"
#include "host/answers/health/wall_time.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/report_lines.h"
#include "host/database/database.h"
#include "host/database/database_writer.h"
#include "host/database/sql_names.h"
#include "host/text/time_text.h"

namespace host {
namespace {

constexpr std::array<const char*, 4> kWords{"notice", "unknown", "warning", "critical"};

std::optional<Severity> FindSeverity(std::string_view word) {
  const auto* found = std::find(kWords.begin(), kWords.end(), word);
  if (found == kWords.end()) return std::nullopt;
  return static_cast<Severity>(found - kWords.begin());
}

// --- when it is ---

struct AsOf {
  std::string time;
  std::string from;
};

/// The latest of `times`; empty without any.
template <typename Table>
std::string FindLatest(const Table& table, std::string Table::value_type::*member) {
  std::string latest;
  for (const auto& part : table) {
    if (ReadWallTime(part.*member)) latest = std::max(latest, part.*member);
  }
  return latest;
}

/// When a recording was made need not be known; the machine tells its time in other ways.
AsOf FindAsOf(const Parts& parts, const HealthOptions& options, const std::string& recordedAt,
              const std::string& collected) {
  if (options.asOf) return {*options.asOf, "--as-of"};
  if (!recordedAt.empty()) return {recordedAt, "the collection"};
  if (auto time = FindLatest(parts.controllers, &Controller::systemTime); !time.empty()) {
    return {std::move(time), "the machine's clock, as its controller tells"};
  }
  if (auto time = FindLatest(parts.events, &Event::time); !time.empty()) {
    return {std::move(time), "the newest entry of the logs"};
  }
  return {collected, "now, since nothing tells when it was"};
}

// --- functions of the rules ---

Database::Value MakeNumber(double number) { return {CellKind::kReal, fmt::format("{}", number)}; }

Database::Value FindSetting(const HealthSettings& settings, std::string_view name) {
  if (const auto given = settings.find(name); given != settings.end()) {
    return MakeNumber(given->second);
  }
  for (const HealthSetting& known : ListHealthSettings()) {
    if (known.name == name) return MakeNumber(known.value);
  }
  throw DatabaseError(fmt::format("there is no setting {}", name));
}

/// 1 for a time of the window, 0 for another; nothing for none.
Database::Value IsRecent(std::optional<std::int64_t> asOf, double days, std::string_view time) {
  constexpr std::int64_t kDay = 86'400;
  const std::optional<std::int64_t> at = ReadWallTime(time);
  if (!at || !asOf) return {};
  // The machine's clock may be ahead of the one that told when the collection was.
  const std::int64_t age = *asOf - *at;
  const bool isRecent =
      age >= -kDay && static_cast<double>(age) <= days * static_cast<double>(kDay);
  return {CellKind::kInteger, isRecent ? "1" : "0"};
}

// --- parts by table and id ---

class PartIndex {
 public:
  explicit PartIndex(const Parts& parts) {
    for (const PartTable& table : GetPartTables()) {
      auto& ids = tables[table.name];
      const std::size_t count = table.count(parts);
      for (std::size_t row = 0; row < count; ++row) {
        const Part& part = table.at(parts, row);
        ids.emplace(part.id, &part);
      }
    }
    for (const Drive& drive : parts.drives) serials.emplace(&drive, drive.serial);
    for (const Controller& one : parts.controllers) serials.emplace(&one, one.serial);
  }

  /// Null when there is none.
  const Part* Find(std::string_view table, const std::string& id) const {
    const auto ids = tables.find(table);
    if (ids == tables.end()) return nullptr;
    const auto part = ids->second.find(id);
    return part == ids->second.end() ? nullptr : part->second;
  }

  bool HasTable(std::string_view table) const { return tables.contains(table); }

  std::string FindSerial(const Part* part) const {
    const auto serial = serials.find(part);
    return serial == serials.end() ? std::string() : serial->second;
  }

 private:
  std::map<std::string_view, std::map<std::string, const Part*>> tables;
  std::map<const Part*, std::string> serials;
};

// --- asking ---

/// The columns of a rule's answer: the first by their place, the others by name.
struct AnswerColumns {
  enum Fixed { kSeverity, kId, kObserved, kBecause, kText, kFixedCount };
  std::size_t count = 0;
  std::map<std::string, std::size_t> named;
};

class RuleAsker {
 public:
  RuleAsker(Database& database, const PartIndex& index, std::vector<HealthHit>& hits)
      : database(database), index(index), hits(hits) {}

  void Ask(const Rule& rule) {
    ++number;
    AnswerColumns columns;
    try {
      database.Query(
          rule.sql, [&](const Database::Names& names) { columns = ReadColumns(names); },
          [&](const Database::Values& values) { TakeHit(rule, columns, values); });
    } catch (const DatabaseError& error) {
      throw HealthFileError(rule.file.empty() ? "rules.sql" : rule.file, rule.line,
                            rule.id + ": " + error.what());
    }
  }

 private:
  static AnswerColumns ReadColumns(const Database::Names& names) {
    if (names.size() <= AnswerColumns::kObserved) {
      throw DatabaseError("the answer needs three columns: severity, id, observed");
    }
    AnswerColumns columns{names.size(), {}};
    for (std::size_t i = AnswerColumns::kFixedCount; i < names.size(); ++i) {
      if (names[i] != "part" && names[i] != "area" && names[i] != "event") {
        throw DatabaseError(
            fmt::format("column {} of the answer has to be part, area or event", i + 1));
      }
      columns.named[names[i]] = i;
    }
    return columns;
  }

  void TakeHit(const Rule& rule, const AnswerColumns& columns, const Database::Values& values) {
    const auto get = [&](std::size_t column) {
      return column < columns.count ? values[column].text : std::string();
    };
    const auto find = [&](const char* name, const std::string& otherwise) {
      const auto at = columns.named.find(name);
      return at == columns.named.end() || values[at->second].kind == CellKind::kNothing
                 ? otherwise
                 : values[at->second].text;
    };
    const std::optional<Severity> severity = FindSeverity(get(AnswerColumns::kSeverity));
    if (!severity) {
      throw DatabaseError(fmt::format("\"{}\" is no severity: critical, warning, notice or unknown",
                                      get(AnswerColumns::kSeverity)));
    }
    HealthHit hit;
    hit.rule = rule.id;
    hit.severity = *severity;
    hit.part = find("part", rule.part);
    hit.id = get(AnswerColumns::kId);
    hit.observed = get(AnswerColumns::kObserved);
    hit.area = find("area", rule.area);
    hit.why = rule.why;
    hit.next = rule.next;
    hit.isOfLog = rule.isOfLog;
    hit.ruleNumber = number;
    hit.because = SplitIds(get(AnswerColumns::kBecause), hit.id);
    hit.text = get(AnswerColumns::kText);
    if (hit.text.empty()) hit.text = hit.id + ": " + hit.observed;
    if (!index.HasTable(hit.part)) {
      throw DatabaseError(fmt::format("there is no table of parts {}", hit.part));
    }
    const Part* part = index.Find(hit.part, hit.id);
    hit.serial = index.FindSerial(part);
    const Part* event = index.Find("events", find("event", {}));
    if (event != nullptr) {
      hit.place = event->readAt;
    } else if (part != nullptr) {
      hit.place = FindEvidence(*part, rule.column);
    }
    hits.push_back(std::move(hit));
  }

  /// The place of the first of `columns` that has one of its own, otherwise the part's.
  static Place FindEvidence(const Part& part, std::string_view columns) {
    while (!columns.empty()) {
      const std::size_t end = std::min(columns.find(','), columns.size());
      const std::string_view column = Trim(columns.substr(0, end));
      for (const ColumnPlace& other : part.columnPlaces) {
        if (other.column == column) return other.place;
      }
      columns.remove_prefix(std::min(end + 1, columns.size()));
    }
    return part.readAt;
  }

  /// Without `self`: nothing is its own cause.
  static std::vector<std::string> SplitIds(std::string_view text, const std::string& self) {
    std::vector<std::string> ids;
    while (!text.empty()) {
      const std::size_t end = std::min(text.find(';'), text.size());
      if (end > 0 && text.substr(0, end) != self) ids.emplace_back(text.substr(0, end));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return ids;
  }

  Database& database;
  const PartIndex& index;
  std::vector<HealthHit>& hits;
  std::size_t number = 0;  ///< of the rule at hand
};

void MakeTables(Database& database) {
  for (const RuleTable& table : GetBuiltInRules().tables) {
    database.Run(fmt::format("CREATE TABLE {} AS {}", QuoteName(table.name), table.sql));
    if (table.index.empty()) continue;
    database.Run(fmt::format("CREATE INDEX {} ON {} ({})", QuoteName("index of " + table.name),
                             QuoteName(table.name), table.index));
  }
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
    hit.text = fmt::format("Find out why there is nothing of {}: {}", required, hit.observed);
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

/// Tables that say nothing of the machine itself.
bool IsOfCollection(std::string_view table) { return table == "sources" || table == "unread"; }

void CountParts(const Parts& parts, Health& health) {
  for (const PartTable& table : GetPartTables()) {
    const std::size_t count = table.count(parts);
    if (count > 0 && !IsOfCollection(table.name)) {
      health.checked.emplace_back(table.name, count);
    }
  }
}

HealthHit MakeNothingChecked() {
  HealthHit hit;
  hit.rule = "collection.nothing";
  hit.severity = Severity::kUnknown;
  hit.part = "sources";
  hit.id = "all";
  hit.observed = "no part of the machine could be read";
  hit.text = "Collect again: nothing of this machine could be looked at";
  hit.area = "collection";
  hit.why = "What nobody has looked at may be well or not.";
  hit.next = "pqhost check tells which tools are missing.";
  return hit;
}

Health Judge(Database& database, const Parts& parts, const AsOf& asOf,
             const HealthOptions& options) {
  MakeTables(database);
  const std::optional<std::int64_t> now = ReadWallTime(asOf.time);
  const double recentDays = std::stod(FindSetting(options.settings, "recent_days").text);
  database.AddFunction("setting", [&options](const Database::Value& name) {
    return FindSetting(options.settings, name.text);
  });
  database.AddFunction("recent", [now, recentDays](const Database::Value& time) {
    return IsRecent(now, recentDays, time.text);
  });

  Health health;
  health.asOf = asOf.time;
  health.asOfFrom = asOf.from;
  health.sources = parts.sources;
  CountParts(parts, health);
  std::vector<HealthHit> hits;
  const PartIndex index(parts);
  RuleAsker asker(database, index, hits);
  for (const Rule& rule : options.rules) asker.Ask(rule);
  if (health.checked.empty()) hits.push_back(MakeNothingChecked());
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

Health JudgeCollection(const Collection& collection, const Parts& parts,
                       const HealthOptions& options) {
  Database database;
  DatabaseWriter writer(database, Machines::kOne);
  // A class that is called like a table of parts comes later, and gets another name.
  AddParts(writer, parts);
  writer.Add(CollectionView(collection));
  writer.Complete();
  const auto& recordedAt = collection.machine.recordedAt;
  return Judge(database, parts,
               FindAsOf(parts, options, recordedAt ? FormatIsoTime(*recordedAt) : std::string(),
                        FormatIsoTime(collection.collected)),
               options);
}

Health JudgeParts(const Parts& parts, const std::string& collected, const HealthOptions& options) {
  Database database;
  DatabaseWriter writer(database, Machines::kOne);
  AddParts(writer, parts);
  writer.Complete();
  return Judge(database, parts, FindAsOf(parts, options, {}, collected), options);
}

}  // namespace host
