#include "host/answers/parts/part_tables.h"

#include <fmt/format.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>

namespace host {
namespace {

PartValue MakeValue(const std::string& text) {
  return text.empty() ? PartValue() : PartValue(std::string_view(text));
}
template <typename Number>
PartValue MakeValue(const std::optional<Number>& number) {
  return number ? PartValue(*number) : PartValue();
}

void SetValue(std::string& text, const PartValue& value) {
  if (const auto* given = std::get_if<std::string_view>(&value)) text = *given;
}
void SetValue(Integer& number, const PartValue& value) {
  if (const auto* given = std::get_if<std::int64_t>(&value)) number = *given;
}
void SetValue(Real& number, const PartValue& value) {
  if (const auto* given = std::get_if<double>(&value)) number = *given;
  // 40.0 is written as 40.
  if (const auto* given = std::get_if<std::int64_t>(&value)) number = static_cast<double>(*given);
}
void SetValue(std::int64_t& number, const PartValue& value) {
  if (const auto* given = std::get_if<std::int64_t>(&value)) number = *given;
}

template <typename Member>
struct MemberOf;
template <typename Owner, typename Value>
struct MemberOf<Value Owner::*> {
  using OwnerType = Owner;
  using ValueType = Value;
};

template <typename Value>
constexpr PartType FindType() {
  if constexpr (std::is_same_v<Value, Integer>) return PartType::kInteger;
  if constexpr (std::is_same_v<Value, Real>) return PartType::kReal;
  return PartType::kText;
}

/// The column of a member of a part.
template <auto member>
PartColumn Column(std::string_view name, std::string_view description) {
  using Member = MemberOf<decltype(member)>;
  using Owner = typename Member::OwnerType;
  return {name, FindType<typename Member::ValueType>(), description,
          [](const Part& part) { return MakeValue(static_cast<const Owner&>(part).*member); },
          [](Part& part, const PartValue& value) {
            SetValue(static_cast<Owner&>(part).*member, value);
          }};
}

/// The column of a member of the part's place.
template <auto member>
PartColumn PlaceColumn(std::string_view name, std::string_view description) {
  using Value = typename MemberOf<decltype(member)>::ValueType;
  const auto set = [](Part& part, const PartValue& value) { SetValue(part.readAt.*member, value); };
  if constexpr (std::is_same_v<Value, std::int64_t>) {
    return {name, PartType::kInteger, description,
            [](const Part& part) {
              const std::int64_t number = part.readAt.*member;
              return number == 0 ? PartValue() : PartValue(number);
            },
            set};
  } else {
    return {name, PartType::kText, description,
            [](const Part& part) { return MakeValue(part.readAt.*member); }, set};
  }
}

/// The way to the parts of a table that is a list of them.
template <auto table>
void Reach(PartTable& made) {
  using List = typename MemberOf<decltype(table)>::ValueType;
  made.count = [](const Parts& parts) { return (parts.*table).size(); };
  if constexpr (std::is_same_v<List, Events>) {
    made.at = [](const Parts& parts, std::size_t row) -> std::shared_ptr<const Part> {
      return std::make_shared<const Event>((parts.*table)[row]);
    };
    made.countLeft = [](const Parts&) { return std::size_t{0}; };
    made.get = [](const Parts& parts, std::size_t row, std::size_t column) {
      return (parts.*table).Get(row, static_cast<EventColumn>(column));
    };
    made.change = nullptr;
    made.add = [](Parts& parts, const std::function<void(Part&)>& fill) {
      Event event;
      fill(event);
      (parts.*table).push_back(event);
    };
  } else {
    made.at = [](const Parts& parts, std::size_t row) {
      return std::shared_ptr<const Part>(std::shared_ptr<const Part>(), &(parts.*table)[row]);
    };
    made.countLeft = [](const Parts& parts) { return (parts.*table).CountLeft(); };
    made.get = nullptr;
    made.change = [](Parts& parts, std::size_t row) -> Part* { return &(parts.*table)[row]; };
    made.add = [](Parts& parts, const std::function<void(Part&)>& fill) {
      fill((parts.*table).emplace_back());
    };
  }
}

template <auto table>
PartTable Table(std::string_view name, std::string_view description,
                std::initializer_list<PartColumn> columns) {
  PartTable made;
  made.name = name;
  made.description = description;
  Reach<table>(made);
  made.columns.push_back(Column<&Part::id>("id", "what it is called; unique in this table"));
  made.columns.insert(made.columns.end(), columns);
  made.columns.push_back(PlaceColumn<&Place::className>("class", "table class it was read from"));
  made.columns.push_back(PlaceColumn<&Place::row>("row", "row of the class, from 1"));
  made.columns.push_back(PlaceColumn<&Place::key>("key", "property of the row"));
  made.columns.push_back(PlaceColumn<&Place::line>("line", "line of the property's text, from 1"));
  made.columns.push_back(PlaceColumn<&Place::tool>("tool", "tool whose report it is"));
  return made;
}

const std::vector<PartTable>& MakeTables() {
  static const std::vector<PartTable> kTables{
      Table<&Parts::controllers>(
          "controllers", "RAID controllers and host bus adapters",
          {
              Column<&Controller::vendor>("vendor", "LSI, Microchip or Intel"),
              Column<&Controller::number>("number", "the tool's number of the controller"),
              Column<&Controller::model>("model", "product name"),
              Column<&Controller::serial>("serial", "serial number"),
              Column<&Controller::firmware>("firmware", "version of the firmware package"),
              Column<&Controller::status>("status", "how the controller calls its own state"),
              Column<&Controller::cacheStatus>("cache_status",
                                               "what the controller says of its cache"),
              Column<&Controller::cacheReason>("cache_reason",
                                               "why its cache is in that state, where it tells"),
              Column<&Controller::systemTime>("system_time",
                                              "the machine's clock when the tool ran, local time"),
              Column<&Controller::temperature>("temperature", "of the controller's chip, in °C"),
              Column<&Controller::temperatureWord>("temperature_word",
                                                   "what the controller says of its temperature"),
              Column<&Controller::drivesDefunct>("drives_defunct",
                                                 "drives that the controller counts as defunct"),
              Column<&Controller::volumesFailed>("volumes_failed",
                                                 "volumes that the controller counts as failed"),
              Column<&Controller::volumesDegraded>(
                  "volumes_degraded", "volumes that the controller counts as degraded"),
              Column<&Controller::volumesDeclared>("volumes_declared",
                                                   "volumes that the report says there are"),
              Column<&Controller::drivesDeclared>("drives_declared",
                                                  "drives that the report says there are"),
          }),
      Table<&Parts::drives>(
          "drives", "drives of all controllers",
          {
              Column<&Drive::vendor>("vendor", "of the controller: LSI, Microchip or Intel"),
              Column<&Drive::controller>("controller", "id of its controller"),
              Column<&Drive::place>("place",
                                    "where it is: enclosure:slot, or channel,device, or port"),
              Column<&Drive::location>("location", "the same for people, where the tool tells it"),
              Column<&Drive::deviceId>("device_id", "the controller's number of the drive"),
              Column<&Drive::serial>("serial", "serial number"),
              Column<&Drive::model>("model", "model"),
              Column<&Drive::firmware>("firmware", "version of the drive's firmware"),
              Column<&Drive::interfaceName>("interface", "SAS, SATA, NVMe"),
              Column<&Drive::media>("media", "HDD, SSD"),
              Column<&Drive::size>("size", "capacity in bytes, as exact as the tool prints it"),
              Column<&Drive::state>("state", "state in the tool's own word"),
              Column<&Drive::condition>(
                  "condition",
                  "the state in a word that is the same for all tools: online, unconfigured, "
                  "spare, jbod, rebuilding, copying, failed, bad, unsupported, missing, "
                  "sanitizing, shielded, predicted; unknown: a word of no list; untold: no state"),
              Column<&Drive::memberState>("member_state", "what its volume says of it"),
              Column<&Drive::group>(
                  "grp", "id of its drive group; otherwise the tool's sign, such as - or F"),
              Column<&Drive::member>("member", "1: it belongs to a drive group"),
              Column<&Drive::mediaErrors>("media_errors",
                                          "errors when reading or writing the medium"),
              Column<&Drive::otherErrors>("other_errors",
                                          "errors of other kinds, such as of the link"),
              Column<&Drive::predictiveFailures>("predictive_failures",
                                                 "how often it foretold its own failure"),
              Column<&Drive::smartAlert>("smart_alert",
                                         "whether it warns by S.M.A.R.T., in the tool's word"),
              Column<&Drive::shield>("shield", "how often it was taken out for diagnosis"),
              Column<&Drive::temperature>("temperature", "in °C"),
              Column<&Drive::temperatureLimit>("temperature_limit", "that it allows, in °C"),
              Column<&Drive::linkSpeed>("link_speed", "at which it is connected, in Gb/s"),
              Column<&Drive::deviceSpeed>("device_speed", "that it is able to, in Gb/s"),
              Column<&Drive::wearLeft>("wear_left", "life that its cells have left, in per cent"),
              Column<&Drive::failureReason>("failure_reason", "why it failed last"),
              Column<&Drive::answer>("answer", "of the drive, when it could not be asked"),
          }),
      Table<&Parts::volumes>(
          "volumes", "virtual drives, logical devices, volumes",
          {
              Column<&Volume::vendor>("vendor", "of the controller: LSI, Microchip or Intel"),
              Column<&Volume::controller>("controller", "id of its controller"),
              Column<&Volume::number>("number", "the controller's number of the volume"),
              Column<&Volume::name>("name", "that it was given"),
              Column<&Volume::level>("level", "RAID level, as the tool prints it"),
              Column<&Volume::size>("size", "capacity in bytes, as exact as the tool prints it"),
              Column<&Volume::state>("state", "state in the tool's own word"),
              Column<&Volume::condition>(
                  "condition",
                  "the state in a word that is the same for all tools: optimal, partly, degraded, "
                  "offline, recovering; unknown: a word of no list; untold: no state"),
              Column<&Volume::access>("access", "RW: read and write, RO: read only, B: blocked"),
              Column<&Volume::consistent>("consistent",
                                          "whether its redundant data are known to be consistent"),
              Column<&Volume::cache>("cache", "read-ahead, write and I/O policy"),
              Column<&Volume::writeBack>("write_back",
                                         "1: writing ends in the controller's cache now; 0: not; "
                                         "empty where the tool tells the policy only"),
              Column<&Volume::initialized>("initialized", "whether it was initialized"),
              Column<&Volume::failedStripes>("failed_stripes", "whether stripes were lost"),
              Column<&Volume::group>("grp", "id of its drive group"),
          }),
      Table<&Parts::groups>(
          "groups", "groups of drives that hold volumes",
          {
              Column<&Group::vendor>("vendor", "of the controller: LSI, Microchip or Intel"),
              Column<&Group::controller>("controller", "id of its controller"),
              Column<&Group::number>("number", "the controller's number of the group"),
              Column<&Group::level>("level", "RAID level, as the tool prints it"),
              Column<&Group::state>("state", "state in the tool's own word"),
              Column<&Group::condition>("condition", "the state in a word, as of volumes"),
              Column<&Group::busy>("busy", "whether a rebuild or the like is running"),
          }),
      Table<&Parts::missingDrives>(
          "missing_drives", "places of drive groups that have no drive",
          {
              Column<&MissingDrive::controller>("controller", "id of the controller"),
              Column<&MissingDrive::group>("grp", "id of the drive group or volume"),
              Column<&MissingDrive::place>("place", "in the group"),
              Column<&MissingDrive::state>("state", "state in the tool's own word"),
          }),
      Table<&Parts::cacheBackups>(
          "cache_backups", "what keeps a controller's cache when power fails",
          {
              Column<&CacheBackup::vendor>("vendor", "of the controller"),
              Column<&CacheBackup::controller>("controller", "id of its controller"),
              Column<&CacheBackup::kind>("kind", "BBU, CacheVault, ZMM and the like"),
              Column<&CacheBackup::model>("model", "model"),
              Column<&CacheBackup::state>("state", "state in the tool's own word"),
              Column<&CacheBackup::condition>(
                  "condition",
                  "the state in a word that is the same for all tools: good, absent, passing, "
                  "bad, failed; unknown: a word of no list; untold: no state"),
              Column<&CacheBackup::temperature>("temperature", "in °C"),
          }),
      Table<&Parts::enclosures>(
          "enclosures", "enclosures of drives",
          {
              Column<&Enclosure::controller>("controller", "id of its controller"),
              Column<&Enclosure::number>("number", "the controller's number of the enclosure"),
              Column<&Enclosure::state>("state",
                                        "state in the tool's own word, or what is not well in it"),
              Column<&Enclosure::slots>("slots", "places for drives"),
              Column<&Enclosure::drives>("drives", "drives in it"),
              Column<&Enclosure::powerSupplies>("power_supplies", "power supplies in it"),
              Column<&Enclosure::fans>("fans", "fans in it"),
              Column<&Enclosure::product>("product", "product name"),
          }),
      Table<&Parts::sensors>(
          "sensors", "sensors of the BMC",
          {
              Column<&Sensor::name>("name", "name"),
              Column<&Sensor::number>("number", "the BMC's number of the sensor"),
              Column<&Sensor::type>("type", "sensor type of IPMI"),
              Column<&Sensor::eventType>("event_type", "event/reading type of IPMI"),
              Column<&Sensor::reading>("reading", "in the sensor's unit"),
              Column<&Sensor::unit>("unit", "of reading and limits"),
              Column<&Sensor::status>("status", "status in the tool's own word"),
              Column<&Sensor::states>("states", "bits of a discrete sensor that are set"),
              Column<&Sensor::lnr>("lnr", "limit: lower non-recoverable"),
              Column<&Sensor::lc>("lc", "limit: lower critical"),
              Column<&Sensor::lnc>("lnc", "limit: lower non-critical"),
              Column<&Sensor::unc>("unc", "limit: upper non-critical"),
              Column<&Sensor::uc>("uc", "limit: upper critical"),
              Column<&Sensor::unr>("unr", "limit: upper non-recoverable"),
          }),
      Table<&Parts::events>(
          "events", "entries of all logs",
          {
              Column<&Event::source>("source", "which log: LSI, Microchip, SAS2, SEL, AMT"),
              Column<&Event::controller>("controller", "id of the controller, where it has one"),
              Column<&Event::number>("number", "the log's number of the entry"),
              Column<&Event::time>("time", "when; in the log's own clock where it has no zone"),
              Column<&Event::code>("code", "what happened, in the log's numbers"),
              Column<&Event::level>("level",
                                    "how grave: -2 debug, -1 progress, 0 information, 1 warning, "
                                    "2 critical, 3 fatal, 4 dead"),
              Column<&Event::kind>("kind", "sensor type in the tool's words"),
              Column<&Event::sensor>("sensor", "number of the sensor"),
              Column<&Event::eventType>("event_type", "event/reading type of IPMI"),
              Column<&Event::offset>("offset", "of the state in its event type"),
              Column<&Event::asserted>("asserted", "1: began; 0: ended"),
              Column<&Event::text>("text", "the entry in words"),
              Column<&Event::sense>("sense",
                                    "a drive's sense key, code and qualifier, hexadecimal"),
              Column<&Event::part>("part", "table of the part that it is about"),
              Column<&Event::partId>("part_id", "id of that part"),
          }),
      Table<&Parts::powerSupplies>(
          "power_supplies", "power supplies as the BMC sees them",
          {
              Column<&PowerSupply::text>("text", "all that is printed about it"),
              Column<&PowerSupply::status>("status", "status in the tool's own words"),
              Column<&PowerSupply::acVolts>("ac_volts", "input, in volts"),
              Column<&PowerSupply::outputWatts>("output_watts", "output, in watts"),
          }),
      Table<&Parts::leds>("leds", "LEDs of the front panel",
                          {
                              Column<&Led::colour>("colour", "in lower case"),
                              Column<&Led::state>("state", "on, off, blinking, in lower case"),
                          }),
      Table<&Parts::selfTests>("self_tests", "what the BMC says of itself",
                               {
                                   Column<&SelfTest::code>("code", "of IPMI, in hexadecimal"),
                                   Column<&SelfTest::text>("text", "the answer"),
                               }),
      Table<&Parts::sources>(
          "sources", "which of the tools' areas could be read",
          {
              Column<&PartSource::state>(
                  "state",
                  "read; failed: asked, and no answer that is understood; none: not on this "
                  "machine"),
              Column<&PartSource::observed>("observed", "why it is not read"),
              Column<&PartSource::records>("records", "of a log: how many records it has"),
              Column<&PartSource::capacity>("capacity", "of a log: how many it has room for"),
              Column<&PartSource::time>("time",
                                        "of the machine, where the list of its sensors tells it"),
          }),
      Table<&Parts::unread>("unread", "what looks like a part and could not be read as one",
                            {
                                Column<&Unread::text>("text", "the line"),
                            }),
  };
  return kTables;
}

}  // namespace

const char* NameSqlType(PartType type) {
  switch (type) {
    case PartType::kInteger:
      return "INTEGER";
    case PartType::kReal:
      return "REAL";
    default:
      return "TEXT";
  }
}

PartValue PartTable::Get(const Parts& parts, std::size_t row, std::size_t column) const {
  return get == nullptr ? columns[column].get(*at(parts, row)) : get(parts, row, column);
}

std::string FormatPartValue(const PartValue& value, std::string_view none) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return std::string(*text);
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return fmt::format("{}", *integer);
  if (const auto* real = std::get_if<double>(&value)) return fmt::format("{}", *real);
  return std::string(none);
}

std::span<const PartTable> GetPartTables() { return MakeTables(); }

}  // namespace host
