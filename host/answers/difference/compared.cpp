#include "host/answers/difference/compared.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace host {
namespace {

using enum ColumnUse;

constexpr std::string_view kInId = "part of the id";
constexpr std::string_view kReading = "a reading";
constexpr std::string_view kInOtherWords = "the state in other words";
constexpr std::string_view kCount = "counts parts, which are compared themselves";

constexpr ComparedColumn kControllers[] = {
    {"vendor", kLeftOut, kInId},
    {"number", kLeftOut, kInId},
    {"model", kValue},
    {"serial", kValue},
    {"firmware", kValue},
    {"status", kValue},
    {"cache_status", kValue},
    {"cache_reason", kSign},
    {"system_time", kLeftOut, "a clock"},
    {"temperature", kLeftOut, kReading},
    {"temperature_word", kLeftOut, kReading},
    {"drives_defunct", kLeftOut, kCount},
    {"volumes_failed", kLeftOut, kCount},
    {"volumes_degraded", kLeftOut, kCount},
    {"volumes_declared", kLeftOut, kCount},
    {"drives_declared", kLeftOut, kCount},
};

constexpr ComparedColumn kDrives[] = {
    {"vendor", kLeftOut, kInId},
    {"controller", kPlace},
    {"place", kPlace},
    {"location", kLeftOut, "the place in other words"},
    {"device_id", kLeftOut, "given anew when a drive comes"},
    {"serial", kValue},
    {"model", kValue},
    {"firmware", kValue},
    {"interface", kValue},
    {"media", kValue},
    {"size", kValue},
    {"state", kValue},
    {"condition", kLeftOut, kInOtherWords},
    {"member_state", kValue},
    {"grp", kSign},
    {"member", kLeftOut, "follows grp"},
    {"media_errors", kCounter},
    {"other_errors", kCounter},
    {"predictive_failures", kCounter},
    {"smart_alert", kValue},
    {"shield", kCounter},
    {"temperature", kLeftOut, kReading},
    {"temperature_limit", kLeftOut, "belongs to the model"},
    {"link_speed", kValue},
    {"device_speed", kLeftOut, "belongs to the model"},
    {"wear_left", kValue},
    {"failure_reason", kSign},
    {"answer", kSign},
};

constexpr ComparedColumn kVolumes[] = {
    {"vendor", kLeftOut, kInId},
    {"controller", kLeftOut, kInId},
    {"number", kLeftOut, kInId},
    {"name", kSign},  // it need not have one
    {"level", kValue},
    {"size", kValue},
    {"state", kValue},
    {"condition", kLeftOut, kInOtherWords},
    {"access", kValue},
    {"consistent", kValue},
    {"cache", kValue},
    {"write_back", kValue},
    {"initialized", kValue},
    {"failed_stripes", kValue},
    {"grp", kLeftOut, "follows its drives"},
};

constexpr ComparedColumn kGroups[] = {
    {"vendor", kLeftOut, kInId},
    {"controller", kLeftOut, kInId},
    {"number", kLeftOut, kInId},
    {"level", kValue},
    {"state", kValue},
    {"condition", kLeftOut, kInOtherWords},
    {"busy", kLeftOut, "passes"},
};

constexpr ComparedColumn kMissingDrives[] = {
    {"controller", kLeftOut, kInId},
    {"grp", kLeftOut, kInId},
    {"place", kLeftOut, kInId},
    {"state", kValue},
};

constexpr ComparedColumn kCacheBackups[] = {
    {"vendor", kLeftOut, kInId},
    {"controller", kLeftOut, kInId},
    {"kind", kLeftOut, kInId},
    {"model", kValue},
    {"state", kValue},
    {"condition", kLeftOut, kInOtherWords},
    {"temperature", kLeftOut, kReading},
};

constexpr ComparedColumn kEnclosures[] = {
    {"controller", kLeftOut, kInId},
    {"number", kLeftOut, kInId},
    {"state", kSign},
    {"slots", kValue},
    {"drives", kValue},
    {"power_supplies", kValue},
    {"fans", kValue},
    {"product", kValue},
};

constexpr ComparedColumn kSensors[] = {
    {"name", kLeftOut, kInId},
    {"number", kLeftOut, "the name tells more"},
    {"type", kLeftOut, "belongs to the sensor"},
    {"event_type", kLeftOut, "belongs to the sensor"},
    {"reading", kLeftOut, kReading},
    {"unit", kLeftOut, "of the reading"},
    // Builds of the tool have other words for the same bits.
    {.name = "status", .use = kValue, .unlike = "states"},
    {"states", kValue},
    {"lnr", kValue},
    {"lc", kValue},
    {"lnc", kValue},
    {"unc", kValue},
    {"uc", kValue},
    {"unr", kValue},
};

constexpr ComparedColumn kPowerSupplies[] = {
    {"text", kLeftOut, "has readings"},
    {"status", kValue},
    {"ac_volts", kLeftOut, kReading},
    {"output_watts", kLeftOut, kReading},
};

constexpr ComparedColumn kLeds[] = {{"colour", kValue}, {"state", kValue}};

constexpr ComparedColumn kSelfTests[] = {{"code", kLeftOut, "in the text"}, {"text", kValue}};

constexpr ComparedPart kParts[] = {
    {"controllers", true, "serial number; otherwise id", kControllers},
    {"drives", true, "serial number; otherwise controller and place", kDrives},
    {"volumes", false, "controller and number; Intel's: name", kVolumes},
    {"groups", false, "controller and number; Intel's: name", kGroups},
    {"missing_drives", false, "group and place in it", kMissingDrives},
    {"cache_backups", false, "controller and kind", kCacheBackups},
    {"enclosures", false, "controller and number", kEnclosures},
    {"sensors", false, "name", kSensors},
    {"power_supplies", false, "number", kPowerSupplies},
    {"leds", false, "name", kLeds},
    {"self_tests", false, "name", kSelfTests},
};

using enum TableTurn;

constexpr std::string_view kFirstLsi = "lsi0";
constexpr std::string_view kInParts = "its rows are parts";
constexpr std::string_view kEvents = "its entries are compared as a log";
constexpr std::string_view kReports = "whole reports; --all counts their changed lines";
constexpr std::string_view kFixed = "never holds anything of the machine";

constexpr std::string_view kRaidClocks[] = {"SystemTime", "ControllerTime"};
constexpr std::string_view kTemperature[] = {"Temperature"};
constexpr std::string_view kDriveTemperature[] = {"DriveTemperature"};
constexpr std::string_view kSensorReading[] = {"item2"};
constexpr std::string_view kName[] = {"Name"};
constexpr std::string_view kId[] = {"ID"};
constexpr std::string_view kSlot[] = {"EID"};
constexpr std::string_view kSerial[] = {"SN"};
constexpr std::string_view kVolume[] = {"DG"};
constexpr std::string_view kTopology[] = {"DG", "Arr", "Row"};
constexpr std::string_view kFirst[] = {"item1"};
constexpr std::string_view kAddressAndType[] = {"item1", "item3"};

constexpr ComparedTable kTables[] = {
    {.className = "RAIDINFO",
     .turn = kAlways,
     .form = TableForm::kLabels,
     .leftOut = kRaidClocks,
     .controller = kFirstLsi},
    {"CONTROLLER", kAlways, TableForm::kLabels},
    {"ARRAY", kAlways, TableForm::kRows, kName},
    {"PMCVER", kAlways, TableForm::kLabels},
    {"FRUINFO", kAlways, TableForm::kLines},
    {"MCINFO", kAlways, TableForm::kLabels},
    {"VERINFO", kAlways, TableForm::kLabels},
    {"LANINFO", kAlways, TableForm::kLabels},
    {.className = "ARPINFO",
     .turn = kAlways,
     .form = TableForm::kRows,
     .keys = kAddressAndType,
     .comesAndGoes = true},
    {"PINFO", kOnRequest, TableForm::kRows, kSlot, {}, {}, false, kFirstLsi},
    {"PDLIST", kOnRequest, TableForm::kRows, kSerial, kDriveTemperature, {}, false, kFirstLsi},
    {"TINFO", kOnRequest, TableForm::kRows, kTopology, {}, {}, false, kFirstLsi},
    {"VINFO", kOnRequest, TableForm::kRows, kVolume, {}, {}, false, kFirstLsi},
    {"ENDDEVICEINFO", kOnRequest, TableForm::kRows, kId},
    {"VOLUME", kOnRequest, TableForm::kRows, kName},
    {"PMCINFO", kOnRequest, TableForm::kLabels, {}, kTemperature},
    {"SENSORINFO", kOnRequest, TableForm::kRows, kFirst, kSensorReading},
    {"SELFINFO", kOnRequest, TableForm::kLabels},
    {.className = "EVENTLOG1", .turn = kAsLog, .why = kEvents},
    {.className = "EVENTLOG2", .turn = kAsLog, .why = kEvents},
    {.className = "EVENTLOG3", .turn = kAsLog, .why = kEvents},
    {.className = "EVENTLOG4", .turn = kAsLog, .why = kEvents},
    {.className = "EVENTLOG5", .turn = kAsLog, .why = kEvents},
    {.className = "FWTERMLOG", .turn = kAsLog, .why = kEvents},
    {.className = "SELINFO", .turn = kAsLog, .why = kEvents},
    {.className = "AMTLOG", .turn = kAsLog, .why = kEvents},
    {.className = "SAS2IRLOG", .turn = kAsLog, .why = kEvents},
    {.className = "LSILINK", .turn = kAsReports, .why = kReports},
    {.className = "PMCLINK", .turn = kAsReports, .why = kReports},
    {.className = "SDRINFO", .turn = kNever, .why = kInParts},
    {.className = "PSUINFO", .turn = kNever, .why = kInParts},
    {.className = "LEDINFO", .turn = kNever, .why = kInParts},
    {.className = "NETSTATINFO", .turn = kNever, .why = "connections come and go"},
    {.className = "JUNADDTABLE", .turn = kNever, .why = kFixed},
    {.className = "S1TABLE1", .turn = kNever, .why = kFixed},
    {.className = "S1TABLE2", .turn = kNever, .why = kFixed},
    {.className = "S2TABLE1", .turn = kNever, .why = kFixed},
    {.className = "S2TABLE2", .turn = kNever, .why = kFixed},
};

}  // namespace

std::span<const ComparedPart> ListComparedParts() { return kParts; }

const ComparedPart* FindComparedPart(std::string_view table) {
  const auto* found = std::ranges::find(kParts, table, &ComparedPart::table);
  return found == std::end(kParts) ? nullptr : found;
}

bool IsUsableSerial(std::string_view serial) {
  constexpr std::size_t kShortest = 4;
  return serial.size() >= kShortest && serial.find('*') == std::string_view::npos &&
         serial.find_first_not_of("xX0") != std::string_view::npos;
}

std::span<const ComparedTable> ListComparedTables() { return kTables; }

const ComparedTable* FindComparedTable(std::string_view className) {
  const auto* found = std::ranges::find(kTables, className, &ComparedTable::className);
  return found == std::end(kTables) ? nullptr : found;
}

}  // namespace host
