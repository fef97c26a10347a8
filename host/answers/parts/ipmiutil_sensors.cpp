#include "host/answers/parts/ipmiutil_sensors.h"

#include <algorithm>
#include <array>
#include <optional>

#include "host/answers/parts/ipmi_types.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// The cells between bars, trimmed.
std::vector<std::string_view> SplitCells(std::string_view line) {
  std::vector<std::string_view> cells;
  std::size_t begin = 0;
  for (std::size_t bar = line.find('|'); bar != std::string_view::npos;
       bar = line.find('|', begin)) {
    cells.push_back(Trim(line.substr(begin, bar - begin)));
    begin = bar + 1;
  }
  cells.push_back(Trim(line.substr(begin)));
  return cells;
}

std::string JoinWords(const std::vector<std::string_view>& words, std::size_t first) {
  std::string text;
  for (std::size_t i = first; i < words.size(); ++i) {
    if (!text.empty()) text += ' ';
    text += words[i];
  }
  return text;
}

/// A sensor with these words has nothing to read: the number beside it means nothing.
bool HasReading(std::string_view status) {
  const std::string word = LowerCase(status);
  return word != "absent" && word != "init";
}

void SetReading(Sensor& sensor, std::string_view reading, std::string_view unit) {
  if (unit == "na" || !HasReading(sensor.status)) return;
  sensor.reading = ReadLeadingReal(reading);
  if (sensor.reading) sensor.unit = unit;
}

// --- the readings, one of two layouts ---

// CPU0 Temp        |   47.00 | C | ok |     na |     na |     na |  85.00 |  92.00 | 100.00

constexpr std::size_t kBareStatus = 3;

bool IsStatus(std::string_view text) {
  constexpr std::string_view kStatuses[] = {"ok",  "nc",  "cr",  "nr",  "ns",  "na",
                                            "lnr", "lcr", "lnc", "unc", "ucr", "unr"};
  const std::string lower = LowerCase(text);
  return std::find(std::begin(kStatuses), std::end(kStatuses), lower) != std::end(kStatuses) ||
         lower.starts_with("0x");
}

bool IsBareReading(const std::vector<std::string_view>& cells) {
  if (cells.size() <= kBareStatus || cells[0].empty() || !IsStatus(cells[kBareStatus]))
    return false;
  return cells[1] == "na" || cells[1].starts_with("0x") || ReadLeadingReal(cells[1]).has_value();
}

void SetThresholds(Sensor& sensor, const std::vector<std::string_view>& cells) {
  Real Sensor::*const kThresholds[] = {&Sensor::lnr, &Sensor::lc, &Sensor::lnc,
                                       &Sensor::unc, &Sensor::uc, &Sensor::unr};
  constexpr std::size_t kFirst = kBareStatus + 1;
  for (std::size_t i = 0; i < std::size(kThresholds) && kFirst + i < cells.size(); ++i) {
    sensor.*kThresholds[i] = ReadLeadingReal(cells[kFirst + i]);
  }
}

// 0001 | Full | Temperature | 02 | CPU1 Temp | OK | 47.00 C | Thresh 5.00:0.00:... | Fri Nov 20 ...

constexpr std::size_t kSdrType = 1;
constexpr std::size_t kType = 2;
constexpr std::size_t kNumber = 3;
constexpr std::size_t kName = 4;
constexpr std::size_t kStatus = 5;
constexpr std::size_t kReading = 6;
constexpr std::size_t kThresholds = 7;

bool IsStockReading(const std::vector<std::string_view>& cells) {
  return cells.size() > kSdrType && ReadHexDigits(cells[0], 4, 4) &&
         (cells[kSdrType] == "Full" || cells[kSdrType] == "Compact" ||
          cells[kSdrType] == "EvtOnly");
}

/// "Thresh 5.00:0.00:0.00:85.00:95.00:100.00": the lower non-critical, critical and
/// non-recoverable one, then the upper three. 0.00 stands for none.
void SetStockThresholds(Sensor& sensor, std::string_view cell) {
  constexpr std::string_view kLabel = "Thresh ";
  if (!cell.starts_with(kLabel)) return;
  std::string_view rest = cell.substr(kLabel.size());
  for (Real Sensor::*const threshold :
       {&Sensor::lnc, &Sensor::lc, &Sensor::lnr, &Sensor::unc, &Sensor::uc, &Sensor::unr}) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    const Real value = ReadLeadingReal(rest.substr(0, end));
    if (value && *value != 0) sensor.*threshold = value;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

/// Under some vendor numbers the status is the state bits themselves: "0180 DiscreteEvt".
void SetPrintedStates(Sensor& sensor, std::string_view status) {
  const std::vector<std::string_view> words = ListWords(status);
  if (words.size() < 2) return;
  sensor.states = ReadHexDigits(words[0], 4, 4);
  if (!sensor.states) return;
  const std::string lower = LowerCase(status);
  if (lower.find("redundan") != std::string::npos) {
    sensor.eventType = 0x0b;
  } else if (lower.find("discreteevt") != std::string::npos ||
             lower.find("present") != std::string::npos) {
    sensor.eventType = 0x6f;
  }
}

}  // namespace

std::size_t FindStatusCell(std::string_view line) {
  return IsStockReading(SplitCells(line)) ? kStatus : kBareStatus;
}

bool SensorReader::TakeReading(std::string_view line, const Place& at) {
  const std::vector<std::string_view> cells = SplitCells(line);
  if (cells.size() < 2 || (cells.size() > kSdrType && cells[kSdrType] == "SDRType")) return true;
  const bool isStock = IsStockReading(cells);
  if (isStock ? cells.size() <= kReading : !IsBareReading(cells)) return false;
  if (!isStock) {
    Sensor& sensor = Add(std::string(cells[0]), at);
    sensor.status = cells[kBareStatus];
    SetReading(sensor, cells[1], cells[2]);
    SetThresholds(sensor, cells);
    Remember(sensor);
    return true;
  }
  Sensor& sensor = Add(std::string(cells[kName]), at);
  sensor.type = FindSensorType(cells[kType]);
  sensor.number = ReadHexDigits(cells[kNumber], 2, 2);
  sensor.status = cells[kStatus];
  if (cells[kSdrType] == "Full") {
    const std::vector<std::string_view> words = ListWords(cells[kReading]);
    if (!words.empty()) SetReading(sensor, words[0], words.size() > 1 ? words[1] : "");
    if (cells.size() > kThresholds) SetStockThresholds(sensor, cells[kThresholds]);
  } else {
    SetPrintedStates(sensor, cells[kStatus]);
  }
  latestTime = std::max(latestTime, ReadTime(cells.back()));
  Remember(sensor);
  return true;
}

// 0021 SDR Comp 02 6f 20 a 08 snum 43 PS2 Status       = 0009 AC_Lost
bool SensorReader::TakeRecord(std::string_view line, const Place& at) {
  enum Word {
    kRecord,
    kSdr,
    kKind,
    kEventType = 4,
    kSensorType = 7,
    kLabel = 8,
    kSensorNumber = 9
  };
  if (!std::exchange(hasRecords, true)) {
    for (auto& waiting : unnumbered) std::reverse(waiting.second.begin(), waiting.second.end());
  }
  const std::vector<std::string_view> words = ListWords(line);
  const auto get = [&](std::size_t place) {
    return place < words.size() ? words[place] : std::string_view();
  };
  if (!ReadHexDigits(get(kRecord), 4, 4) || get(kSdr) != "SDR") return true;
  const bool isEventOnly = get(kKind) == "EvtO";
  if (!isEventOnly && get(kKind) != "Full" && get(kKind) != "Comp") return true;
  const Integer eventType = ReadHexDigits(get(kEventType), 2, 2);
  const Integer type = ReadHexDigits(get(kSensorType), 2, 2);
  const Integer number = ReadHexDigits(get(kSensorNumber), 2, 2);
  const std::string_view rest =
      words.size() > kSensorNumber ? GetAfter(line, words[kSensorNumber]) : std::string_view();
  const std::size_t equals = rest.find("= ");
  const std::vector<std::string_view> told =
      ListWords(equals == std::string_view::npos ? "" : rest.substr(equals + 1));
  const Integer raw = told.empty() ? std::nullopt : ReadHexDigits(told[0], 2, 4);
  if (!eventType || !type || !number || get(kLabel) != "snum" || !raw) return false;
  const std::string name(Trim(rest.substr(0, equals)));
  Sensor& sensor = FindOrAdd(name, *number, at);
  sensor.number = number;
  sensor.type = type;
  // Of a sensor that has events only, neither is a fact.
  if (!isEventOnly) sensor.eventType = eventType;
  const bool isDiscrete = !isEventOnly && eventType != kThresholdEvent;
  if (isDiscrete) {
    sensor.states = raw;
    NotePlace(sensor, "states", at);
  }
  if (!sensor.status.empty()) return true;
  sensor.readAt = at;
  sensor.status = isDiscrete ? JoinWords(told, 1) : std::string(told.size() > 1 ? told[1] : "");
  if (!isDiscrete && !isEventOnly && told.size() > 2) {
    SetReading(sensor, told[2], JoinWords(told, 3));
  }
  return true;
}

Sensor& SensorReader::Add(std::string name, const Place& at) {
  Sensor& sensor = parts.sensors.emplace_back();
  sensor.name = std::move(name);
  sensor.id = sensor.name.empty() ? "sensor" : sensor.name;
  sensor.readAt = at;
  return sensor;
}

void SensorReader::Remember(const Sensor& sensor) {
  const std::size_t place = parts.sensors.size() - 1;
  if (&sensor != &parts.sensors[place]) return;  // it was left out
  if (sensor.number) {
    numbered.emplace(std::pair(sensor.name, *sensor.number), place);
  } else {
    unnumbered[sensor.name].push_back(place);
  }
}

Sensor& SensorReader::FindOrAdd(const std::string& name, std::int64_t number, const Place& at) {
  const auto known = numbered.find({name, number});
  if (known != numbered.end()) return parts.sensors[known->second];
  const auto waiting = unnumbered.find(name);
  if (waiting != unnumbered.end() && !waiting->second.empty()) {
    const std::size_t place = waiting->second.back();
    waiting->second.pop_back();
    numbered.emplace(std::pair(name, number), place);
    return parts.sensors[place];
  }
  Sensor& added = Add(name, at);
  added.number = number;
  Remember(added);
  return added;
}

}  // namespace host
