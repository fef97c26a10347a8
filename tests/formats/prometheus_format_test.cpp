// --format prometheus: what its readers demand of every file, and what samples mean.
#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/collect/collect.h"
#include "host/formats/formats.h"
#include "host/formats/prometheus.h"
#include "host/text/decoder.h"
#include "host/text/version.h"
#include "tests/answers/health/judged.h"
#include "tests/support/collected.h"
#include "tests/support/program/host_run.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr char kTimeFamily[] = "pqhost_collection_timestamp_seconds";

std::string WriteMetricsOf(const Collection& collection, const Screen& screen = {}) {
  std::ostringstream out;
  WritePrometheus(collection, screen, out);
  return out.str();
}

std::string WriteMetricsOfParts(const Parts& parts, const MetricsHead& head = {},
                                const Screen& screen = {}) {
  std::ostringstream out;
  WriteMetrics({parts, test::Judge(parts)}, head, screen, out);
  return out.str();
}

std::vector<std::string> SplitMetricLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// The lines of one family without its head.
std::vector<std::string> ListSamples(const std::string& text, const std::string& family) {
  std::vector<std::string> samples;
  for (const std::string& line : SplitMetricLines(text)) {
    if (line.starts_with(family + " ") || line.starts_with(family + "{")) samples.push_back(line);
  }
  return samples;
}

// --- the grammar ---

struct MetricSample {
  std::string name;
  std::map<std::string, std::string> labels;
  std::string value;
};

/// Reads `{name="text",...}` off `rest`; false when it is not that.
bool TakeMetricLabels(std::string& rest, std::map<std::string, std::string>& labels) {
  static const std::regex kLabel(R"re(([a-zA-Z_][a-zA-Z0-9_]*)="((?:[^"\\]|\\[\\"n])*)"(,|\}))re");
  rest.erase(0, 1);
  for (std::smatch match;;) {
    if (!std::regex_search(rest, match, kLabel, std::regex_constants::match_continuous))
      return false;
    const std::string end = match[3];
    if (match[1].str().starts_with("__") || !labels.emplace(match[1], match[2]).second)
      return false;
    rest = match.suffix();
    if (end == "}") return true;
  }
}

bool ReadMetricSample(std::string rest, MetricSample& sample) {
  static const std::regex kName("[a-zA-Z_:][a-zA-Z0-9_:]*");
  static const std::regex kValue(R"( (NaN|[+-]Inf|-?[0-9]+(\.[0-9]+)?(e[+-]?[0-9]+)?))");
  std::smatch match;
  if (!std::regex_search(rest, match, kName, std::regex_constants::match_continuous)) return false;
  sample.name = match.str();
  rest = match.suffix();
  if (rest.starts_with("{") && !TakeMetricLabels(rest, sample.labels)) return false;
  if (!std::regex_match(rest, kValue)) return false;  // also when a time follows
  sample.value = rest.substr(1);
  return true;
}

/// Objects to what a textfile collector would refuse, or read as something else. Empty: to nothing.
std::string FindMetricsError(const std::string& text) {
  if (text.empty() || text.back() != '\n') return "no line end at the end";
  if (CleanUtf8(text) != text) return "no UTF-8";
  if (text.starts_with("\xef\xbb\xbf")) return "a byte order mark";
  if (text.find('\r') != std::string::npos) return "a carriage return";
  if (text.find('\0') != std::string::npos) return "a NUL";
  static const std::regex kHelp("# HELP ([a-zA-Z0-9_:]+) .+");
  static const std::regex kType("# TYPE ([a-zA-Z0-9_:]+) (gauge|counter)");
  std::set<std::string> begun;
  std::set<std::string> series;
  std::string help;
  std::string type;
  std::size_t samples = 1;
  for (const std::string& line : SplitMetricLines(text)) {
    std::smatch match;
    MetricSample sample;
    if (std::regex_match(line, match, kHelp)) {
      if (samples == 0) return "a family without samples before " + line;
      help = match[1];
      samples = 0;
      if (!begun.insert(help).second) return "a second head: " + line;
    } else if (std::regex_match(line, match, kType)) {
      type = match[1];
      if (type != help || samples > 0) return "a type without its help: " + line;
      if ((match[2] == "counter") != type.ends_with("_total")) return "a name of no such: " + line;
    } else if (!ReadMetricSample(line, sample)) {
      return "no sample: " + line;
    } else if (sample.name != type || type != help) {
      return "a sample of another family: " + line;
    } else {
      ++samples;
      std::string key = sample.name;
      for (const auto& [name, value] : sample.labels) key += '\n' + name + '=' + value;
      if (!series.insert(key).second) return "a second sample: " + line;
    }
  }
  return samples == 0 ? "a family without samples at the end" : "";
}

TEST(PrometheusGrammar, IsSeenToBeBroken) {
  const std::string head = "# HELP pqhost_a It is.\n# TYPE pqhost_a gauge\n";
  for (const char* good : {"pqhost_a 1\n", "pqhost_a{b=\"c\"} NaN\npqhost_a{b=\"d\"} -1.5e+20\n",
                           "pqhost_a{b=\"\\\\\\\"\\n\",c=\"\xc3\xbc}\"} +Inf\n"}) {
    EXPECT_EQ(FindMetricsError(head + good), "") << good;
  }
  for (const std::string bad :
       {"pqhost_a 1", "pqhost_a\n", "pqhost_a 1 1795000000\n", "pqhost_a{b=\"c\"d\"} 1\n",
        "pqhost_a{b=\"\\x\"} 1\n", "pqhost_a{b=\"c} 1\n", "pqhost_a{b=\"c\",b=\"d\"} 1\n",
        "pqhost_a{__b=\"c\"} 1\n", "pqhost_a{1b=\"c\"} 1\n", "pqhost_a,5 1\n", "pqhost_a 1,5\n",
        "pqhost_a 1\npqhost_a 2\n", "pqhost_b 1\n", "pqhost_a 1\r\n", "pqhost_a{b=\"\xff\"} 1\n",
        "pqhost_a 1\n# TYPE pqhost_a gauge\n", "", "pqhost_a nan\n", "pqhost_a{b=\"c\",} 1\n"}) {
    EXPECT_NE(FindMetricsError(head + bad), "") << bad;
  }
  EXPECT_NE(FindMetricsError("pqhost_a 1\n"), "");
  EXPECT_NE(FindMetricsError(head + "pqhost_a 1\n" + head + "pqhost_a{b=\"c\"} 1\n"), "");
  EXPECT_NE(FindMetricsError("\xef\xbb\xbf" + head + "pqhost_a 1\n"), "");
  EXPECT_NE(FindMetricsError("# HELP pqhost_a It is.\n# TYPE pqhost_a counter\npqhost_a 1\n"), "");
}

TEST(PrometheusFormat, KeepsToTheGrammarOnSamples) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    EXPECT_EQ(FindMetricsError(WriteMetricsOf(Collect(recording))), "") << name;
    EXPECT_EQ(FindMetricsError(WriteMetricsOf(Collect(recording), {.identifiesRows = true})), "")
        << name;
  }
}

TEST(PrometheusFormat, KeepsToTheGrammarOnRandomMachines) {
  constexpr std::uint64_t kSeeds = PQ_HAS_ADDRESS_SANITIZER ? 10 : 60;
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    EXPECT_EQ(FindMetricsError(WriteMetricsOf(Collect(test::MakeRandomRecording(seed)))), "")
        << seed;
  }
}

/// Replaces `from` by `to`, of the same length, in all that the machine's tools print.
void ReplaceInAnswers(Recording& recording, const std::string& from, const std::string& to) {
  ASSERT_EQ(from.size(), to.size());
  for (RecordedCommand& command : recording.commands) {
    std::string text(command.standardOutput);
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
      text.replace(at, from.size(), to);
    }
    command.standardOutput = text;
  }
}

TEST(PrometheusFormat, KeepsToTheGrammarOnAHostileMachine) {
  for (const std::uint32_t codePage : {1252U, 932U, 65001U}) {
    Recording recording = test::LoadSamples().at("two-socket-server");
    recording.codePage = codePage;
    ReplaceInAnswers(recording, "HY8000NX0045", "H\"} 1\\\xff\x81\xc3\"\\n");
    ReplaceInAnswers(recording, "Backup vault", "B\\\\\"ck\xe2\x80\xaev\"\\");
    ReplaceInAnswers(recording, "Fan 5", "F\"\\ \xc3");
    ReplaceInAnswers(recording, "CPU1 Temp", "CPU0 Temp");
    ReplaceInAnswers(recording, "PSU 2", "PSU 1");
    const std::string text = WriteMetricsOf(Collect(recording));
    EXPECT_EQ(FindMetricsError(text), "") << codePage;
    EXPECT_THAT(text, HasSubstr("model=\"H\\\"} 1\\\\")) << codePage;
    EXPECT_THAT(text, HasSubstr("{sensor=\"CPU0 Temp #2\"} 51\n")) << codePage;
  }
}

// --- golden files ---

/// Without what is of the program, and of the day on which it ran.
std::string ForgetTheDay(const std::string& text) {
  static const std::regex kVersionLabel("version=\"[^\"]*\"");
  static const std::regex kTimeValue("(pqhost_collection_timestamp_seconds) [0-9]+");
  return std::regex_replace(std::regex_replace(text, kVersionLabel, "version=\"\""), kTimeValue,
                            "$1 0");
}

TEST(PrometheusFormat, WritesSamplesAsKept) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    const std::string written = WriteMetricsOf(Collect(recording));
    EXPECT_EQ(ForgetTheDay(written), ForgetTheDay(test::TestData("metrics/" + name + ".prom")))
        << "if it is meant to: pqhost collect --replay samples/" << name
        << " --format prometheus --output tests/data/metrics/" << name << ".prom";
  }
}

// --- what samples mean ---

TEST(PrometheusFormat, TellsTheVerdictAsPqhostHealthEnds) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    const test::HostRun run =
        test::RunHost({"collect", "--replay", test::Sample(name), "--format", "prometheus"});
    const int code = test::RunHost({"health", "--replay", test::Sample(name)}).exitCode;
    EXPECT_EQ(ListSamples(run.out, "pqhost_health"),
              std::vector<std::string>{"pqhost_health " + std::to_string(code)})
        << name;
  }
}

// Every column that is told becomes a sample with that value, and nothing else does.
TEST(PrometheusFormat, HasASampleForWhatIsToldAlone) {
  std::size_t checked = 0;
  for (const auto& [name, recording] : test::LoadSamples()) {
    const Assessment assessment = Assess(Collect(recording));
    std::ostringstream out;
    WriteMetrics(assessment, {}, {}, out);
    for (const auto& [family, table, column] : std::vector<std::array<std::string, 3>>{
             {"pqhost_controller_temperature_celsius", "controllers", "temperature"},
             {"pqhost_drive_info", "drives", "id"},
             {"pqhost_drive_state", "drives", "condition"},
             {"pqhost_drive_temperature_celsius", "drives", "temperature"},
             {"pqhost_drive_media_errors_total", "drives", "media_errors"},
             {"pqhost_drive_other_errors_total", "drives", "other_errors"},
             {"pqhost_drive_predictive_failures_total", "drives", "predictive_failures"},
             {"pqhost_drive_smart_alert", "drives", "smart_alert"},
             {"pqhost_drive_wear_left_ratio", "drives", "wear_left"},
             {"pqhost_volume_state", "volumes", "condition"},
             {"pqhost_volume_size_bytes", "volumes", "size"},
             {"pqhost_cache_backup_temperature_celsius", "cache_backups", "temperature"},
             {"pqhost_power_supply_input_volts", "power_supplies", "ac_volts"},
             {"pqhost_power_supply_output_watts", "power_supplies", "output_watts"}}) {
      const auto parts = std::ranges::find(GetPartTables(), table, &PartTable::name);
      const auto values = std::ranges::find(parts->columns, column, &PartColumn::name);
      std::size_t told = 0;
      for (std::size_t row = 0; row < parts->count(assessment.parts); ++row) {
        const PartValue value = values->get(*parts->at(assessment.parts, row));
        if (!std::holds_alternative<std::monostate>(value)) ++told;
      }
      EXPECT_EQ(ListSamples(out.str(), family).size(), told) << name << " " << family;
      checked += told;
    }
  }
  EXPECT_GT(checked, 200U);
}

TEST(PrometheusFormat, HasNoSampleForWhatNobodyTold) {
  Parts parts;
  test::AddController(parts);
  test::AddDrive(parts, "lsi0 69:9", "Onln");
  test::AddVolume(parts, "lsi0 v3", "Optl", "");
  test::AddSensor(parts, "Fan 1", 4, "ok");
  PowerSupply& supply = parts.powerSupplies.emplace_back();
  supply.id = "PSU 1";
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_EQ(FindMetricsError(text), "");
  std::vector<std::string> samples;
  for (const std::string& line : SplitMetricLines(text)) {
    if (!line.starts_with('#')) samples.push_back(line);
  }
  EXPECT_THAT(
      samples,
      testing::ElementsAre(
          StartsWith("pqhost_build_info{version="), "pqhost_health 3",
          "pqhost_findings{severity=\"critical\"} 0", "pqhost_findings{severity=\"warning\"} 0",
          "pqhost_findings{severity=\"unknown\"} 1",
          "pqhost_finding{rule=\"psu.status\",part=\"power_supplies\",id=\"PSU 1\","
          "severity=\"unknown\"} 1",
          "pqhost_controller_info{controller=\"lsi0\",vendor=\"LSI\"} 1",
          "pqhost_controller_health{controller=\"lsi0\"} 0",
          "pqhost_drive_info{controller=\"lsi0\",slot=\"69:9\"} 1",
          "pqhost_drive_state{controller=\"lsi0\",slot=\"69:9\",state=\"online\"} 1",
          "pqhost_drive_health{controller=\"lsi0\",slot=\"69:9\"} 0",
          "pqhost_volume_info{controller=\"lsi0\",volume=\"3\"} 1",
          "pqhost_volume_state{controller=\"lsi0\",volume=\"3\",state=\"optimal\"} 1",
          "pqhost_volume_health{controller=\"lsi0\",volume=\"3\"} 0",
          "pqhost_sensor_health{sensor=\"Fan 1\"} NaN",
          "pqhost_power_supply_health{power_supply=\"PSU 1\"} NaN"));
}

TEST(PrometheusFormat, TellsZeroesThatWereRead) {
  Parts parts;
  Drive& drive = test::AddDrive(parts, "lsi0 69:9", "Onln");
  drive.temperature = 0;
  drive.mediaErrors = 0;
  drive.wearLeft = 0;
  drive.smartAlert = "No";
  const std::string text = WriteMetricsOfParts(parts);
  for (const char* sample : {"drive_temperature_celsius", "drive_media_errors_total",
                             "drive_wear_left_ratio", "drive_smart_alert"}) {
    EXPECT_THAT(text, HasSubstr(std::string("\npqhost_") + sample +
                                "{controller=\"lsi0\",slot=\"69:9\"} 0\n"));
  }
}

TEST(PrometheusFormat, EscapesWhatEndsALabel) {
  Parts parts;
  test::AddSensor(parts, "a\\b\"c\nd\re", 1, "ok").reading = 4;
  parts.sensors[0].id += std::string(1, '\0');
  parts.sensors[0].unit = "C";
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_EQ(FindMetricsError(text), "");
  EXPECT_THAT(text, HasSubstr("\npqhost_temperature_celsius{sensor=\"a\\\\b\\\"c\\nde\"} 4\n"));
}

TEST(PrometheusFormat, TellsPartsOfOneNameApart) {
  Parts parts;
  for (const char* id : {"lsi0 69:9", "lsi0 69:9 #2", "lsi0 69:9 #3", "lsi0 x"}) {
    test::AddDrive(parts, id, "Onln").place = "69:9";
  }
  parts.drives[3].place.clear();
  test::AddDrive(parts, "lsi1 69:9", "Onln");
  // The line end that sets them apart is none of a label.
  test::AddSensor(parts, "Temp", 1, "ok");
  test::AddSensor(parts, "Te\rmp", 1, "ok");
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_EQ(FindMetricsError(text), "");
  EXPECT_THAT(ListSamples(text, "pqhost_drive_health"),
              testing::ElementsAre("pqhost_drive_health{controller=\"lsi0\",slot=\"69:9\"} 0",
                                   "pqhost_drive_health{controller=\"lsi0\",slot=\"69:9 #2\"} 0",
                                   "pqhost_drive_health{controller=\"lsi0\",slot=\"69:9 #3\"} 0",
                                   "pqhost_drive_health{controller=\"lsi0\",slot=\"lsi0 x\"} 0",
                                   "pqhost_drive_health{controller=\"lsi1\",slot=\"69:9\"} 0"));
  EXPECT_THAT(text, HasSubstr("{sensor=\"Temp #2\"}"));
  // The same drive has the same slot in all families.
  EXPECT_THAT(text, HasSubstr("pqhost_drive_info{controller=\"lsi0\",slot=\"69:9 #3\"}"));
}

TEST(PrometheusFormat, TellsHealthOfPartsByTheirFindings) {
  Parts parts;
  test::AddController(parts);
  test::AddController(parts, "lsi1");
  test::AddController(parts, "lsi2");
  test::AddController(parts, "lsi3").status = "Optimal";
  test::AddController(parts, "lsi4");
  Enclosure& enclosure = parts.enclosures.emplace_back();
  enclosure.id = "lsi4 e1";
  enclosure.controller = "lsi4";
  enclosure.state = "OK";
  test::AddDrive(parts, "lsi0 1:1", "Failed");
  test::AddDrive(parts, "lsi0 1:2", "Onln").mediaErrors = 3;
  test::AddDrive(parts, "lsi0 1:3", "Onln").otherErrors = 3;
  test::AddDrive(parts, "lsi0 1:4", "Wxyz");
  test::AddDrive(parts, "lsi1 1:5", "");
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_THAT(ListSamples(text, "pqhost_drive_health"),
              testing::ElementsAre("pqhost_drive_health{controller=\"lsi0\",slot=\"1:1\"} 2",
                                   "pqhost_drive_health{controller=\"lsi0\",slot=\"1:2\"} 1",
                                   "pqhost_drive_health{controller=\"lsi0\",slot=\"1:3\"} 0",
                                   "pqhost_drive_health{controller=\"lsi0\",slot=\"1:4\"} NaN",
                                   "pqhost_drive_health{controller=\"lsi1\",slot=\"1:5\"} NaN"));
  EXPECT_THAT(ListSamples(text, "pqhost_controller_health"),
              testing::ElementsAre("pqhost_controller_health{controller=\"lsi0\"} 2",
                                   "pqhost_controller_health{controller=\"lsi1\"} NaN",
                                   "pqhost_controller_health{controller=\"lsi2\"} NaN",
                                   "pqhost_controller_health{controller=\"lsi3\"} 0",
                                   "pqhost_controller_health{controller=\"lsi4\"} 0"));
  EXPECT_THAT(ListSamples(text, "pqhost_findings"),
              testing::ElementsAre("pqhost_findings{severity=\"critical\"} 1",
                                   "pqhost_findings{severity=\"warning\"} 1",
                                   "pqhost_findings{severity=\"unknown\"} 2"));
}

// Its entry says so, and nothing else does any more.
TEST(PrometheusFormat, TellsAControllersHealthByDrivesThatAreGone) {
  Parts parts;
  test::AddController(parts).status = "Optimal";
  test::AddLsiEvent(parts, 0x60, "drives", "lsi0 1:9");
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_THAT(text, HasSubstr("part=\"drives\",id=\"lsi0 1:9\",severity=\"warning\"} 1\n"));
  EXPECT_THAT(text, HasSubstr("\npqhost_controller_health{controller=\"lsi0\"} 1\n"));
}

TEST(PrometheusFormat, ListsTheHundredWorstFindingsAndNoNotices) {
  Parts parts;
  test::AddDrive(parts, "lsi0 2:1", "Onln").otherErrors = 3;
  for (int i = 0; i < 120; ++i) test::AddDrive(parts, "lsi0 1:" + std::to_string(i), "Failed");
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_EQ(ListSamples(text, "pqhost_finding").size(), 100U);
  EXPECT_THAT(text, HasSubstr("\npqhost_findings{severity=\"critical\"} 120\n"));
  parts.drives.resize(1);
  EXPECT_THAT(ListSamples(WriteMetricsOfParts(parts), "pqhost_finding"), testing::IsEmpty());
}

TEST(PrometheusFormat, NamesReadingsByTheirUnits) {
  Parts parts;
  const auto add = [&](const char* unit, double reading) {
    Sensor& sensor = test::AddSensor(parts, unit, 1, "ok");
    sensor.unit = unit;
    sensor.reading = reading;
  };
  for (const char* unit : {"C", "°C", "degrees C", "degrees", "V", "Volts", "A", "Amps", "W",
                           "Watts", "RPM", "rpm", "%", "percent", "CFM", "F"}) {
    add(unit, 33.3);
  }
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_EQ(FindMetricsError(text), "");
  const auto count = [&](const char* family) { return ListSamples(text, family).size(); };
  EXPECT_EQ(count("pqhost_temperature_celsius"), 4U);
  EXPECT_EQ(count("pqhost_voltage_volts"), 2U);
  EXPECT_EQ(count("pqhost_current_amperes"), 2U);
  EXPECT_EQ(count("pqhost_power_watts"), 2U);
  EXPECT_EQ(count("pqhost_fan_speed_rpm"), 2U);
  EXPECT_THAT(ListSamples(text, "pqhost_sensor_ratio"),
              testing::ElementsAre("pqhost_sensor_ratio{sensor=\"%\"} 0.333",
                                   "pqhost_sensor_ratio{sensor=\"percent\"} 0.333"));
  EXPECT_THAT(ListSamples(text, "pqhost_sensor_value"),
              testing::ElementsAre("pqhost_sensor_value{sensor=\"CFM\",unit=\"CFM\"} 33.3",
                                   "pqhost_sensor_value{sensor=\"F\",unit=\"F\"} 33.3"));
}

TEST(PrometheusFormat, WritesNumbersAsShortAsTheyAre) {
  Parts parts;
  const auto write = [&](double reading) {
    parts.sensors.clear();
    Sensor& sensor = test::AddSensor(parts, "S", 1, "ok");
    sensor.unit = "V";
    sensor.reading = reading;
    const std::string text = WriteMetricsOfParts(parts);
    EXPECT_EQ(FindMetricsError(text), "");
    return ListSamples(text, "pqhost_voltage_volts")
        .at(0)
        .substr(std::string("pqhost_voltage_volts{sensor=\"S\"} ").size());
  };
  EXPECT_EQ(write(12.08), "12.08");
  EXPECT_EQ(write(-3), "-3");
  EXPECT_EQ(write(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(write(1e300), "1e+300");
  EXPECT_EQ(write(std::numeric_limits<double>::quiet_NaN()), "NaN");
  EXPECT_EQ(write(-std::numeric_limits<double>::quiet_NaN()), "NaN");
  EXPECT_EQ(write(std::numeric_limits<double>::infinity()), "+Inf");
  EXPECT_EQ(write(-std::numeric_limits<double>::infinity()), "-Inf");
  parts.volumes.push_back({});
  parts.volumes[0].id = "lsi0 v0";
  parts.volumes[0].size = 9'007'199'254'740'993;  // no double
  EXPECT_THAT(WriteMetricsOfParts(parts), HasSubstr("volume=\"lsi0 v0\"} 9007199254740993\n"));
}

TEST(PrometheusFormat, TellsWhichSourcesAnswered) {
  Parts parts;
  test::AddSource(parts, "lsi", "read");
  test::AddSource(parts, "sensors", "failed");
  test::AddSource(parts, "amt", "none");
  PartSource& sel = test::AddSource(parts, "sel", "read");
  sel.records = 12;
  sel.capacity = 1024;
  test::AddSource(parts, "sas2", "read").records = 7;
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_THAT(ListSamples(text, "pqhost_source_success"),
              testing::ElementsAre("pqhost_source_success{source=\"lsi\"} 1",
                                   "pqhost_source_success{source=\"sensors\"} 0",
                                   "pqhost_source_success{source=\"sel\"} 1",
                                   "pqhost_source_success{source=\"sas2\"} 1"));
  EXPECT_THAT(text, HasSubstr("\npqhost_sel_entries 12\n"));
  EXPECT_THAT(text, HasSubstr("\npqhost_sel_capacity_entries 1024\n"));
}

TEST(PrometheusFormat, TellsWhetherTheBmcPassedItsTest) {
  Parts parts;
  SelfTest& one = parts.selfTests.emplace_back();
  one.id = "BMC self-test";
  EXPECT_THAT(WriteMetricsOfParts(parts), Not(HasSubstr("self_test_passed")));
  one.code = "55";
  EXPECT_THAT(WriteMetricsOfParts(parts), HasSubstr("\npqhost_bmc_self_test_passed 1\n"));
  one.code = "57";
  EXPECT_THAT(WriteMetricsOfParts(parts), HasSubstr("\npqhost_bmc_self_test_passed 0\n"));
  parts.selfTests.push_back({});  // nothing would tell a second sample apart
  parts.selfTests[1].id = "BMC self-test #2";
  parts.selfTests[1].code = "55";
  EXPECT_EQ(FindMetricsError(WriteMetricsOfParts(parts)), "");
}

TEST(PrometheusFormat, CountsLogsBySeverity) {
  Parts parts;
  for (const int level : {-1, 0, 1, 2, 3}) {
    test::AddOtherEvent(parts, "SAS2", level, "x", "").controller = "";
  }
  test::AddLsiEvent(parts, 1, "drives", "lsi0 1:1", "2026-11-18T06:00:00");
  test::AddLsiEvent(parts, 2, "drives", "lsi0 1:1", "2026-11-17T06:00:00");
  test::AddLsiEvent(parts, 3, "drives", "lsi0 1:1", "no time").level.reset();
  const std::string text = WriteMetricsOfParts(parts);
  EXPECT_THAT(ListSamples(text, "pqhost_log_entries"),
              testing::ElementsAre(
                  "pqhost_log_entries{log=\"lsi\",controller=\"lsi0\",severity=\"information\"} 2",
                  "pqhost_log_entries{log=\"lsi\",controller=\"lsi0\",severity=\"unknown\"} 1",
                  "pqhost_log_entries{log=\"sas2\",severity=\"critical\"} 2",
                  "pqhost_log_entries{log=\"sas2\",severity=\"information\"} 2",
                  "pqhost_log_entries{log=\"sas2\",severity=\"warning\"} 1"));
  EXPECT_THAT(ListSamples(text, "pqhost_log_newest_entry_timestamp_seconds"),
              testing::ElementsAre("pqhost_log_newest_entry_timestamp_seconds{log=\"lsi\","
                                   "controller=\"lsi0\",severity=\"information\"} 1794981600"));
}

// --- when, who, where ---

TEST(PrometheusFormat, IsAsOldAsTheRecording) {
  const auto samples = test::LoadSamples();
  const auto read = [&](const char* name) {
    return ListSamples(WriteMetricsOf(Collect(samples.at(name))), kTimeFamily);
  };
  // Its clock says only when; without a zone that is UTC.
  EXPECT_THAT(read("hba-only"), testing::ElementsAre(std::string(kTimeFamily) + " 1795010575"));
  Collection collection = Collect(samples.at("hba-only"));
  using namespace std::chrono;
  const system_clock::time_point made = sys_days(year(2026) / 11 / 18) + hours(9);
  collection.machine.recordedAt = LocalTime{made, hours(1)};
  EXPECT_THAT(ListSamples(WriteMetricsOf(collection), kTimeFamily),
              testing::ElementsAre(std::string(kTimeFamily) + " 1794992400"));
  // A live collection has just ended.
  collection.machine.recorded = false;
  collection.collected = made + minutes(2);
  EXPECT_THAT(ListSamples(WriteMetricsOf(collection), kTimeFamily),
              testing::ElementsAre(std::string(kTimeFamily) + " 1794992520"));
}

TEST(PrometheusFormat, LabelsEachSampleWithTheMachineIfAsked) {
  const test::HostRun run = test::RunHost({"collect", "--replay", test::Sample("two-socket-server"),
                                           "--format", "prometheus", "--identify"});
  EXPECT_EQ(FindMetricsError(run.out), "");
  for (const std::string& line : SplitMetricLines(run.out)) {
    if (line.starts_with('#')) continue;
    EXPECT_THAT(line, HasSubstr("{machine=\"NODE31\""));
  }
  EXPECT_THAT(run.out, HasSubstr("\npqhost_health{machine=\"NODE31\"} 1\n"));
}

TEST(PrometheusFormat, HasNothingOnATerminalThatItObeys) {
  Parts parts;
  test::AddSensor(parts, "\x1b[2J\xe2\x80\xae", 1, "ok").reading = 4;
  const std::string text = WriteMetricsOfParts(parts, {}, {.isTerminal = true});
  EXPECT_THAT(text, HasSubstr("\\x1b[2J\\u202e"));
  EXPECT_THAT(text, Not(HasSubstr("\x1b")));
  EXPECT_THAT(WriteMetricsOfParts(parts), HasSubstr("\x1b[2J\xe2\x80\xae"));
}

TEST(PrometheusFormat, IsNothingForAnAnswer) {
  const test::HostRun run = test::RunHost(
      {"query", "--replay", test::Sample("hba-only"), "SELECT 1", "--format", "prometheus"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(
      run.error,
      "pqhost: there is no format prometheus (formats: table, json, ndjson, csv, html, sqlite, "
      "none)\n");
  test::MadeCollection answer;
  answer.Get().machineIsKnown = false;
  EXPECT_EQ(answer.As("prometheus"), "");
}

TEST(PrometheusFormat, LeavesTheOldFileWhenThereIsNothingToTell) {
  const test::TemporaryFolder folder;
  const std::string file = folder / "pqhost.prom";
  folder.Write("pqhost.prom", "old\n");
  const auto collect = [&](const std::string& recording) {
    return test::RunHost(
        {"collect", "--replay", recording, "--format", "prometheus", "--output", file});
  };
  EXPECT_EQ(collect(folder / "nowhere").exitCode, 2);
  EXPECT_EQ(folder.Read("pqhost.prom"), "old\n");
  // What could not be collected is in the metrics.
  EXPECT_EQ(collect(test::Sample("bmc-unreachable")).exitCode, 1);
  EXPECT_EQ(FindMetricsError(folder.Read("pqhost.prom")), "");
  EXPECT_THAT(folder.Files(), testing::ElementsAre("pqhost.prom"));
}

TEST(MetricsDocument, IsTheOneInDocs) {
  std::ifstream file(test::SamplesFolder() + "/../docs/metrics.md", std::ios::binary);
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(WriteMetricsDocument(), written)
      << "docs/metrics.md is stale: pqhost modules --format metrics > docs/metrics.md";
}

TEST(MetricFamilies, AreOfTablesAndColumnsThatThereAre) {
  std::set<std::string_view> names;
  for (const MetricFamily& family : GetMetricFamilies()) {
    EXPECT_TRUE(names.insert(family.name).second) << family.name;
    EXPECT_THAT(std::string(family.name), StartsWith("pqhost_"));
    const auto table = std::ranges::find(GetPartTables(), family.table, &PartTable::name);
    if (table == GetPartTables().end()) continue;
    const auto isColumn = [&](std::string_view column) {
      return column == "health" || column == "quantity" ||
             std::ranges::find(table->columns, column, &PartColumn::name) != table->columns.end();
    };
    EXPECT_TRUE(isColumn(family.column)) << family.name;
    EXPECT_TRUE(family.onlyColumn.empty() || isColumn(family.onlyColumn)) << family.name;
    for (const MetricLabel& label : family.labels) {
      EXPECT_TRUE(label.name.empty() || isColumn(label.column)) << family.name << label.name;
    }
  }
}

}  // namespace
}  // namespace host
