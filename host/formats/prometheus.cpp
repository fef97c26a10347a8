// Metrics for the textfile collectors of node_exporter and windows_exporter: Prometheus' text
// format 0.0.4. Those refuse what OpenMetrics adds, also a time beside a sample.
//
//   # HELP pqhost_drive_temperature_celsius Temperature of the drive.
//   # TYPE pqhost_drive_temperature_celsius gauge
//   pqhost_drive_temperature_celsius{controller="lsi0",slot="69:9"} 34
//
// What nobody told has no sample, for 0 is a reading. Every value is a column of a table: of parts,
// or of those that are made of them below.

#include "host/formats/prometheus.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "host/answers/health/wall_time.h"
#include "host/answers/parts/part_tables.h"
#include "host/formats/formats.h"
#include "host/formats/row_identity.h"
#include "host/text/ascii.h"
#include "host/text/screen_text.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

// --- what a column's value is as a number ---

MetricValue TakeNumber(const MetricValue& told) { return told; }

/// For families whose labels are all that they tell.
MetricValue MakeOne(const MetricValue& told) {
  return std::holds_alternative<std::monostate>(told) ? MetricValue()
                                                      : MetricValue(std::int64_t{1});
}

/// 0 or 1 for a text that `holds` of; nothing for none.
template <typename Holds>
MetricValue MakeFlag(const MetricValue& told, const Holds& holds) {
  const auto* text = std::get_if<std::string>(&told);
  return text == nullptr ? MetricValue() : MetricValue(std::int64_t{holds(*text)});
}

MetricValue ReadYes(const MetricValue& told) {
  return MakeFlag(told, [](std::string_view text) { return text.starts_with("Yes"); });
}

/// 55h is IPMI's code of a self-test without an error.
MetricValue ReadSelfTest(const MetricValue& told) {
  return MakeFlag(told, [](std::string_view code) { return code == "55"; });
}

MetricValue ReadSourceState(const MetricValue& told) {
  const auto* state = std::get_if<std::string>(&told);
  if (state != nullptr && *state == "none") return {};  // not on this machine
  return MakeFlag(told, [](std::string_view text) { return text == "read"; });
}

MetricValue ReadPerCent(const MetricValue& told) {
  constexpr double kWhole = 100;
  constexpr double kExact = 1e6;  // 33.3 becomes 0.333 and not its neighbour
  const auto* integer = std::get_if<std::int64_t>(&told);
  const auto* real = std::get_if<double>(&told);
  if (integer == nullptr && real == nullptr) return {};
  const double percent = integer != nullptr ? static_cast<double>(*integer) : *real;
  return std::round(percent * (kExact / kWhole)) / kExact;
}

// --- the families ---

constexpr char kGauge[] = "gauge";
constexpr char kCounter[] = "counter";

using Labels = std::array<MetricLabel, 6>;
constexpr Labels kNoLabels{};
constexpr Labels kOfBuild{{{"version", "version"}}};
constexpr Labels kOfSource{{{"source", "id"}}};
constexpr Labels kOfSeverity{{{"severity", "severity"}}};
constexpr Labels kOfFinding{
    {{"rule", "rule"}, {"part", "part"}, {"id", "id"}, {"severity", "severity"}}};
constexpr Labels kControllerFacts{{{"controller", "id"},
                                   {"vendor", "vendor"},
                                   {"model", "model"},
                                   {"serial", "serial"},
                                   {"firmware", "firmware"}}};
constexpr Labels kDriveFacts{{{"controller", "controller"},
                              {"slot", "place"},
                              {"serial", "serial"},
                              {"model", "model"},
                              {"firmware", "firmware"},
                              {"media", "media"}}};
constexpr Labels kDriveState{
    {{"controller", "controller"}, {"slot", "place"}, {"state", "condition"}}};
constexpr Labels kVolumeFacts{{{"controller", "controller"},
                               {"volume", "number"},
                               {"name", "name"},
                               {"level", "level"},
                               {"cache", "cache"}}};
constexpr Labels kVolumeState{
    {{"controller", "controller"}, {"volume", "number"}, {"state", "condition"}}};
constexpr Labels kSensorUnit{{{"sensor", "id"}, {"unit", "unit"}}};
constexpr Labels kOfController{{{"controller", "id"}}};
constexpr Labels kOfDrive{{{"controller", "controller"}, {"slot", "place"}}};
constexpr Labels kOfVolume{{{"controller", "controller"}, {"volume", "number"}}};
constexpr Labels kOfCacheBackup{{{"controller", "controller"}, {"kind", "kind"}}};
constexpr Labels kOfSensor{{{"sensor", "id"}}};
constexpr Labels kOfPowerSupply{{{"power_supply", "id"}}};
constexpr Labels kOfLog{{{"log", "log"}, {"controller", "controller"}, {"severity", "severity"}}};

constexpr MetricFamily kFamilies[] = {
    {"pqhost_build_info", kGauge, "Version of the pqhost that wrote this; always 1.", "machine",
     kOfBuild, "version", MakeOne},
    {"pqhost_collection_timestamp_seconds", kGauge,
     "Unix time at which the collection ended, or a recording was made.", "machine", kNoLabels,
     "collected", TakeNumber},
    {"pqhost_source_success", kGauge,
     "1 if this group of tools was read, 0 if it was asked and gave no answer that is understood.",
     "sources", kOfSource, "state", ReadSourceState},
    {"pqhost_health", kGauge, "Verdict: 0 OK, 1 warning, 2 critical, 3 unknown.", "machine",
     kNoLabels, "health", TakeNumber},
    {"pqhost_findings", kGauge, "How many findings of this severity there are.", "severities",
     kOfSeverity, "count", TakeNumber},
    {"pqhost_finding", kGauge, "A finding, by its rule and the part that it is about; always 1.",
     "findings", kOfFinding, "rule", MakeOne},

    {"pqhost_controller_info", kGauge, "A RAID controller or host bus adapter; always 1.",
     "controllers", kControllerFacts, "id", MakeOne},
    {"pqhost_controller_health", kGauge,
     "Health of the controller and all on it: 0 OK, 1 warning, 2 critical, NaN unknown.",
     "controllers", kOfController, "health", TakeNumber},
    {"pqhost_controller_temperature_celsius", kGauge, "Temperature of the controller's chip.",
     "controllers", kOfController, "temperature", TakeNumber},

    {"pqhost_drive_info", kGauge, "A drive of a controller; always 1.", "drives", kDriveFacts, "id",
     MakeOne},
    {"pqhost_drive_state", kGauge,
     "State of the drive, in words that are the same for all controllers; always 1.", "drives",
     kDriveState, "condition", MakeOne},
    {"pqhost_drive_health", kGauge,
     "Health of the drive: 0 OK, 1 warning, 2 critical, NaN unknown.", "drives", kOfDrive, "health",
     TakeNumber},
    {"pqhost_drive_temperature_celsius", kGauge, "Temperature of the drive.", "drives", kOfDrive,
     "temperature", TakeNumber},
    {"pqhost_drive_media_errors_total", kCounter, "Errors of the medium, as the controller counts.",
     "drives", kOfDrive, "media_errors", TakeNumber},
    {"pqhost_drive_other_errors_total", kCounter,
     "Other errors, such as of the link, as the controller counts.", "drives", kOfDrive,
     "other_errors", TakeNumber},
    {"pqhost_drive_predictive_failures_total", kCounter,
     "How often the drive foretold its failure, as the controller counts.", "drives", kOfDrive,
     "predictive_failures", TakeNumber},
    {"pqhost_drive_smart_alert", kGauge, "1 if the drive warns by S.M.A.R.T., otherwise 0.",
     "drives", kOfDrive, "smart_alert", ReadYes},
    {"pqhost_drive_wear_left_ratio", kGauge, "Life that the cells of the drive have left, 0 to 1.",
     "drives", kOfDrive, "wear_left", ReadPerCent},

    {"pqhost_volume_info", kGauge, "A volume of a controller; always 1.", "volumes", kVolumeFacts,
     "id", MakeOne},
    {"pqhost_volume_state", kGauge,
     "State of the volume, in words that are the same for all controllers; always 1.", "volumes",
     kVolumeState, "condition", MakeOne},
    {"pqhost_volume_health", kGauge,
     "Health of the volume: 0 OK, 1 warning, 2 critical, NaN unknown.", "volumes", kOfVolume,
     "health", TakeNumber},
    {"pqhost_volume_size_bytes", kGauge, "Capacity, as exact as the tool prints it.", "volumes",
     kOfVolume, "size", TakeNumber},

    {"pqhost_cache_backup_health", kGauge,
     "Health of what keeps the cache without power: 0 OK, 1 warning, 2 critical, NaN unknown.",
     "cache_backups", kOfCacheBackup, "health", TakeNumber},
    {"pqhost_cache_backup_temperature_celsius", kGauge,
     "Temperature of the battery, or the like, that keeps the cache without power.",
     "cache_backups", kOfCacheBackup, "temperature", TakeNumber},

    {"pqhost_temperature_celsius", kGauge, "Temperature at a sensor of the BMC.", "sensors",
     kOfSensor, "reading", TakeNumber, "quantity", "temperature"},
    {"pqhost_voltage_volts", kGauge, "Voltage at a sensor of the BMC.", "sensors", kOfSensor,
     "reading", TakeNumber, "quantity", "voltage"},
    {"pqhost_current_amperes", kGauge, "Current at a sensor of the BMC.", "sensors", kOfSensor,
     "reading", TakeNumber, "quantity", "current"},
    {"pqhost_power_watts", kGauge, "Power at a sensor of the BMC.", "sensors", kOfSensor, "reading",
     TakeNumber, "quantity", "power"},
    {"pqhost_fan_speed_rpm", kGauge, "Revolutions a minute at a sensor of the BMC.", "sensors",
     kOfSensor, "reading", TakeNumber, "quantity", "fan speed"},
    {"pqhost_sensor_ratio", kGauge, "What a sensor of the BMC reads in per cent; 1 is all.",
     "sensors", kOfSensor, "reading", ReadPerCent, "quantity", "ratio"},
    {"pqhost_sensor_value", kGauge, "What a sensor of the BMC reads in another unit.", "sensors",
     kSensorUnit, "reading", TakeNumber, "quantity", "other"},
    {"pqhost_sensor_health", kGauge,
     "Health at the sensor: 0 OK, 1 warning, 2 critical, NaN nothing to read.", "sensors",
     kOfSensor, "health", TakeNumber},

    {"pqhost_power_supply_health", kGauge,
     "Health of the power supply: 0 OK, 1 warning, 2 critical, NaN unknown.", "power_supplies",
     kOfPowerSupply, "health", TakeNumber},
    {"pqhost_power_supply_input_volts", kGauge, "Input of the power supply.", "power_supplies",
     kOfPowerSupply, "ac_volts", TakeNumber},
    {"pqhost_power_supply_output_watts", kGauge, "Output of the power supply.", "power_supplies",
     kOfPowerSupply, "output_watts", TakeNumber},

    {"pqhost_bmc_self_test_passed", kGauge, "1 if the BMC passed its own test, otherwise 0.",
     "self_tests", kNoLabels, "code", ReadSelfTest},
    {"pqhost_sel_entries", kGauge, "Entries of the BMC's log (SEL).", "sources", kNoLabels,
     "records", TakeNumber, "id", "sel"},
    {"pqhost_sel_capacity_entries", kGauge, "Entries that the BMC's log (SEL) has room for.",
     "sources", kNoLabels, "capacity", TakeNumber, "id", "sel"},
    {"pqhost_log_entries", kGauge, "Entries of a hardware log, as long as nobody clears it.",
     "logs", kOfLog, "entries", TakeNumber},
    {"pqhost_log_newest_entry_timestamp_seconds", kGauge,
     "Unix time of the newest entry; the clock of a log has no zone and is taken as UTC.", "logs",
     kOfLog, "newest", TakeNumber},
};

// --- the tables ---

using MetricRow = std::map<std::string_view, MetricValue>;
using MetricTable = std::vector<MetricRow>;

constexpr std::string_view kId[] = {"id"};
constexpr std::string_view kDriveKeys[] = {"controller", "place"};
constexpr std::string_view kVolumeKeys[] = {"controller", "number"};
constexpr std::string_view kCacheBackupKeys[] = {"controller", "kind"};
constexpr std::string_view kFindingKeys[] = {"rule", "part", "id"};

/// What samples need of a table of parts besides its columns.
struct SampledTable {
  std::string_view name;
  /// The columns that tell one part from another, in labels.
  std::span<const std::string_view> keys = kId;
  /// Without a word in one of these nobody knows whether a part without a finding is well. Empty
  /// ones are none; without any, the part is well then.
  std::array<std::string_view, 2> told = {};
};

constexpr SampledTable kSampledTables[] = {
    {"sources"},
    {"controllers"},
    {"drives", kDriveKeys, {"condition"}},
    {"volumes", kVolumeKeys, {"condition"}},
    {"cache_backups", kCacheBackupKeys, {"condition"}},
    {"sensors", kId, {"reading", "states"}},
    {"power_supplies", kId, {"status", "ac_volts"}},
    {"self_tests"},
};

/// Units as tools print them, in lower case.
struct Quantity {
  std::string_view unit;
  std::string_view name;
};
constexpr Quantity kQuantities[] = {
    {"c", "temperature"},       {"°c", "temperature"}, {"degrees c", "temperature"},
    {"degrees", "temperature"},  // a listing that cuts its cells off
    {"v", "voltage"},           {"volts", "voltage"},  {"a", "current"},
    {"amps", "current"},        {"w", "power"},        {"watts", "power"},
    {"rpm", "fan speed"},       {"%", "ratio"},        {"percent", "ratio"},
};

/// As a label has it. Readers of the format stumble over NUL, and a line end is LF alone.
std::string KeepText(std::string_view text) {
  std::string kept(text);
  std::erase_if(kept, [](char c) { return c == '\r' || c == '\0'; });
  return kept;
}

MetricValue KeepValue(const PartValue& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer;
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* text = std::get_if<std::string_view>(&value)) return KeepText(*text);
  return {};
}

const MetricValue& Get(const MetricRow& row, std::string_view column) {
  static const MetricValue kNothing;
  const auto found = row.find(column);
  return found == row.end() ? kNothing : found->second;
}

/// Empty for nothing. Numbers as short as they can be told without another meaning, in any locale
/// with a point.
std::string FormatValue(const MetricValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return fmt::format("{}", *integer);
  const auto* real = std::get_if<double>(&value);
  if (real == nullptr) return {};
  if (std::isnan(*real)) return "NaN";
  if (std::isinf(*real)) return *real > 0 ? "+Inf" : "-Inf";
  return fmt::format("{}", *real);
}

MetricValue MakeHealth(Severity worst) {
  switch (worst) {
    case Severity::kCritical:
      return std::int64_t{2};
    case Severity::kWarning:
      return std::int64_t{1};
    case Severity::kUnknown:
      return std::numeric_limits<double>::quiet_NaN();
    default:
      return std::int64_t{0};
  }
}

/// How well each part is by what was found of it.
class PartHealth {
 public:
  explicit PartHealth(const Health& health) {
    for (const HealthFinding& finding : health.findings) {
      for (const HealthHit& hit : finding.hits) {
        Raise(parts[{hit.part, hit.id}], hit.severity);
        // "lsi0 69:9" is of lsi0, also when there is no such drive any more.
        if (IsOnController(hit.part))
          RaiseController(hit.id.substr(0, hit.id.find(' ')), hit.severity);
      }
    }
  }

  void RaiseController(const std::string& id, Severity severity) {
    Raise(parts[{"controllers", id}], severity);
  }

  /// kNotice: nothing is wrong.
  Severity Find(std::string_view table, const std::string& id) const {
    const auto found = parts.find({std::string(table), id});
    return found == parts.end() ? Severity::kNotice : found->second;
  }

 private:
  static void Raise(Severity& worst, Severity severity) { worst = std::max(worst, severity); }

  static bool IsOnController(std::string_view name) {
    for (const PartTable& table : GetPartTables()) {
      if (table.name != name) continue;
      return std::ranges::any_of(
          table.columns, [](const PartColumn& column) { return column.name == "controller"; });
    }
    return false;
  }

  std::map<std::pair<std::string, std::string>, Severity> parts;
};

bool IsTold(const MetricRow& row, const SampledTable& sampled) {
  if (sampled.told.front().empty()) return true;
  return std::ranges::any_of(sampled.told, [&](std::string_view column) {
    const std::string word = FormatValue(Get(row, column));
    return !word.empty() && word != "unknown" && word != "untold";
  });
}

std::string FindQuantity(const MetricRow& row) {
  const std::string unit = LowerCase(FormatValue(Get(row, "unit")));
  for (const Quantity& quantity : kQuantities) {
    if (unit == quantity.unit) return std::string(quantity.name);
  }
  return "other";
}

MetricRow MakeRow(const PartTable& table, const Part& part) {
  MetricRow row;
  for (const PartColumn& column : table.columns) {
    row.emplace(column.name, KeepValue(column.get(part)));
  }
  return row;
}

/// Has `keys` tell each row from those before it: the last by the part's id where it is not told,
/// and by a number where two are the same.
void MakeKeysUnique(MetricTable& rows, std::span<const std::string_view> keys) {
  std::set<std::vector<std::string>> known;
  std::map<std::vector<std::string>, int> counts;
  for (MetricRow& row : rows) {
    std::vector<std::string> key;
    for (const std::string_view column : keys) key.push_back(FormatValue(Get(row, column)));
    if (key.back().empty()) key.back() = FormatValue(Get(row, "id"));
    const std::vector<std::string> first = key;
    while (!known.insert(key).second) {
      key.back() =
          fmt::format("{} #{}", first.back(), ++counts.try_emplace(first, 1).first->second);
    }
    row[keys.back()] = key.back();
  }
}

using MetricTables = std::map<std::string_view, MetricTable>;

void AddPartTables(const Parts& parts, const Health& health, MetricTables& tables) {
  PartHealth known(health);
  std::set<std::string> toldControllers;  // by a part on them
  for (const SampledTable& sampled : kSampledTables) {
    const auto table = std::ranges::find(GetPartTables(), sampled.name, &PartTable::name);
    MetricTable& rows = tables[sampled.name];
    for (std::size_t i = 0; i < table->count(parts); ++i) {
      const std::shared_ptr<const Part> part = table->at(parts, i);
      MetricRow& row = rows.emplace_back(MakeRow(*table, *part));
      const std::string controller = FormatValue(Get(row, "controller"));
      Severity worst = known.Find(sampled.name, part->id);
      if (IsTold(row, sampled)) {
        toldControllers.insert(controller);
      } else {
        worst = std::max(worst, Severity::kUnknown);
      }
      known.RaiseController(controller, worst);
      row["health"] = MakeHealth(worst);
      if (row.contains("unit")) row["quantity"] = FindQuantity(row);
    }
    MakeKeysUnique(rows, sampled.keys);
  }
  // Controllers come last: they are as well as what is on them, which may be no more than a box.
  for (const Enclosure& enclosure : parts.enclosures) {
    if (!enclosure.state.empty()) toldControllers.insert(KeepText(enclosure.controller));
  }
  const SampledTable sampled{"controllers", kId, {"status", "drives_declared"}};
  for (std::size_t i = 0; i < parts.controllers.size(); ++i) {
    const std::string& id = parts.controllers[i].id;
    MetricRow& row = tables["controllers"][i];
    if (!IsTold(row, sampled) && !toldControllers.contains(id)) {
      known.RaiseController(id, Severity::kUnknown);
    }
    row["health"] = MakeHealth(known.Find("controllers", id));
  }
}

std::int64_t CountSeconds(std::chrono::system_clock::time_point time) {
  return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
}

/// A recording is as old as what is in it, not as its replay.
MetricValue FindTime(const Collection& collection, const Health& health) {
  if (!collection.machine.recorded) return CountSeconds(collection.collected);
  if (const auto exact = ParseIsoTime(health.asOf)) return CountSeconds(exact->time);
  const auto wall = ReadWallTime(health.asOf);
  return wall ? MetricValue(*wall) : MetricValue();
}

void AddFindings(const Health& health, MetricTables& tables) {
  // A broken backplane need not fill the collector.
  constexpr std::size_t kMost = 100;
  for (const Severity severity : {Severity::kCritical, Severity::kWarning, Severity::kUnknown}) {
    tables["severities"].push_back(
        {{"severity", GetWord(severity)},
         {"count", static_cast<std::int64_t>(CountFindings(health, severity))}});
  }
  MetricTable& findings = tables["findings"];
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity == Severity::kNotice || findings.size() == kMost) continue;
    const HealthHit& title = finding.hits.front();
    findings.push_back({{"rule", KeepText(title.rule)},
                        {"part", KeepText(title.part)},
                        {"id", KeepText(title.id)},
                        {"severity", GetWord(finding.severity)}});
  }
  MakeKeysUnique(findings, kFindingKeys);
}

std::string NameSeverityOfLevel(Integer level) {
  if (!level) return "unknown";
  return *level <= 0 ? "information" : *level == 1 ? "warning" : "critical";
}

void AddLogs(const Events& events, MetricTables& tables) {
  struct Log {
    std::int64_t entries = 0;
    Integer newest;
  };
  std::map<std::tuple<std::string, std::string, std::string>, Log> logs;
  for (const Event& event : events) {
    Log& log = logs[{LowerCase(KeepText(event.source)), KeepText(event.controller),
                     NameSeverityOfLevel(event.level)}];
    ++log.entries;
    log.newest = std::max(log.newest, Integer(ReadWallTime(event.time)));
  }
  for (const auto& [key, log] : logs) {
    const auto& [name, controller, severity] = key;
    MetricRow& row = tables["logs"].emplace_back();
    row = {{"log", name}, {"severity", severity}, {"entries", log.entries}};
    if (!controller.empty()) row["controller"] = controller;
    if (log.newest) row["newest"] = *log.newest;
  }
}

MetricTables MakeTables(const Assessment& assessment, const MetricsHead& head) {
  const auto& [parts, health] = assessment;
  MetricTables tables;
  tables["machine"].push_back({{"version", kVersion},
                               {"collected", head.collected},
                               {"health", std::int64_t{GetExitCode(health)}}});
  AddFindings(health, tables);
  AddPartTables(parts, health, tables);
  AddLogs(parts.events, tables);
  return tables;
}

// --- text ---

/// `name="text"`, in front of which a comma is put where it is not the first.
void AppendLabel(std::string& labels, std::string_view name, std::string_view text) {
  if (!labels.empty()) labels += ',';
  labels.append(name).append("=\"");
  for (const char c : text) {
    if (c == '\n') {
      labels += "\\n";
      continue;
    }
    if (c == '\\' || c == '"') labels += '\\';
    labels += c;
  }
  labels += '"';
}

class FamilyWriter {
 public:
  FamilyWriter(const Screen& screen, std::string common, std::ostream& out)
      : screen(screen), common(std::move(common)), out(out) {}

  void Write(const MetricFamily& family, const MetricTable& rows) {
    bool isBegun = false;
    for (const MetricRow& row : rows) {
      if (!family.onlyColumn.empty() &&
          FormatValue(Get(row, family.onlyColumn)) != family.onlyText) {
        continue;
      }
      const std::string value = FormatValue(family.read(Get(row, family.column)));
      if (value.empty()) continue;
      if (!std::exchange(isBegun, true)) {
        WriteLine(fmt::format("# HELP {} {}", family.name, family.help));
        WriteLine(fmt::format("# TYPE {} {}", family.name, family.type));
      }
      const std::string labels = JoinLabels(family, row);
      WriteLine(labels.empty() ? fmt::format("{} {}", family.name, value)
                               : fmt::format("{}{{{}}} {}", family.name, labels, value));
      if (family.labels.front().name.empty()) return;  // nothing could tell two samples apart
    }
  }

 private:
  std::string JoinLabels(const MetricFamily& family, const MetricRow& row) const {
    std::string labels = common;
    for (const MetricLabel& label : family.labels) {
      const std::string text = FormatValue(Get(row, label.column));
      if (!text.empty()) AppendLabel(labels, label.name, text);
    }
    return labels;
  }

  void WriteLine(std::string_view line) {
    if (screen.isTerminal) {
      out << EscapeControls(line) << '\n';
    } else {
      out << line << '\n';
    }
  }

  const Screen& screen;
  const std::string common;  ///< labels of every sample
  std::ostream& out;
};

}  // namespace

std::span<const MetricFamily> GetMetricFamilies() { return kFamilies; }

void WriteMetrics(const Assessment& assessment, const MetricsHead& head, const Screen& screen,
                  std::ostream& out) {
  std::string common;
  if (!head.machine.empty()) AppendLabel(common, "machine", KeepText(head.machine));
  MetricTables tables = MakeTables(assessment, head);
  FamilyWriter writer(screen, std::move(common), out);
  for (const MetricFamily& family : kFamilies) writer.Write(family, tables[family.table]);
}

void WritePrometheus(const Collection& collection, const Screen& screen, std::ostream& out) {
  if (!collection.machineIsKnown) return;
  const Assessment assessment = Assess(collection);
  MetricsHead head{FindTime(collection, assessment.health)};
  if (screen.identifiesRows) head.machine = MakeRowIdentity(collection).machine;
  WriteMetrics(assessment, head, screen, out);
}

}  // namespace host
