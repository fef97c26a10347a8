// Parts: what is true of a machine, in tables with typed columns that are the same for every
// vendor, read from what the tools printed. Texts are UTF-8, without white space around them; an
// empty text and an absent number say that nothing was told.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/packed_rows.h"

namespace host {

/// Where something was read.
struct Place {
  std::string className;
  std::int64_t row = 0;   ///< of the class, from 1; 0: of none
  std::string key;        ///< the row's property
  std::int64_t line = 0;  ///< of the property's text, from 1; 0: the property as a whole
  std::string tool;       ///< as a person would call it: "storcli /c0 show"

  bool operator==(const Place&) const = default;
};

/// A column of a part that was read elsewhere than the part itself.
struct ColumnPlace {
  std::string_view column;  ///< as in part_tables.h; a constant
  Place place;
};

struct Part {
  std::string id;  ///< no other part of the same table has it
  Place readAt;
  std::vector<ColumnPlace> columnPlaces;
};

/// Where `column` of `part` was read.
inline const Place& FindPlace(const Part& part, std::string_view column) {
  for (const ColumnPlace& other : part.columnPlaces) {
    if (other.column == column) return other.place;
  }
  return part.readAt;
}

/// Keeps where `column` of `part` was read.
inline void NotePlace(Part& part, std::string_view column, Place place) {
  for (ColumnPlace& other : part.columnPlaces) {
    if (other.column == column) {
      other.place = std::move(place);
      return;
    }
  }
  part.columnPlaces.push_back({column, std::move(place)});
}

using Integer = std::optional<std::int64_t>;
using Real = std::optional<double>;

/// "lsi0", "mchp1", "intel".
struct Controller : Part {
  std::string vendor;
  std::string number;
  std::string model;
  std::string serial;
  std::string firmware;
  std::string status;
  std::string cacheStatus;
  std::string cacheReason;
  std::string systemTime;
  Real temperature;
  std::string temperatureWord;
  Integer drivesDefunct;
  Integer volumesFailed;
  Integer volumesDegraded;
  Integer volumesDeclared;
  Integer drivesDeclared;
};

/// "lsi0 69:9", "mchp1 0,3", "intel 0-2-0-0".
struct Drive : Part {
  std::string vendor;
  std::string controller;
  std::string place;
  std::string location;
  Integer deviceId;
  std::string serial;
  std::string model;
  std::string firmware;
  std::string interfaceName;
  std::string media;
  Integer size;
  std::string state;
  std::string condition;
  std::string memberState;
  std::string group;
  Integer member;
  Integer mediaErrors;
  Integer otherErrors;
  Integer predictiveFailures;
  std::string smartAlert;
  Integer shield;
  Real temperature;
  Real temperatureLimit;
  Real linkSpeed;
  Real deviceSpeed;
  Integer wearLeft;
  std::string failureReason;
  std::string answer;
};

/// "lsi0 v3", "mchp1 v0", "intel Tank".
struct Volume : Part {
  std::string vendor;
  std::string controller;
  std::string number;
  std::string name;
  std::string level;
  Integer size;
  std::string state;
  std::string condition;
  std::string access;
  std::string consistent;
  std::string cache;
  Integer writeBack;
  std::string initialized;
  std::string failedStripes;
  std::string group;
};

/// "lsi0 g2".
struct Group : Part {
  std::string vendor;
  std::string controller;
  std::string number;
  std::string level;
  std::string state;
  std::string condition;
  std::string busy;
};

/// "lsi0 g2 row 1", "mchp1 v0 segment 1".
struct MissingDrive : Part {
  std::string controller;
  std::string group;
  std::string place;
  std::string state;
};

/// "lsi0 CacheVault", "mchp1 BBU".
struct CacheBackup : Part {
  std::string vendor;
  std::string controller;
  std::string kind;
  std::string model;
  std::string state;
  std::string condition;
  Real temperature;
};

/// "lsi0 e69", "mchp1 e0,18".
struct Enclosure : Part {
  std::string controller;
  std::string number;
  std::string state;
  Integer slots;
  Integer drives;
  Integer powerSupplies;
  Integer fans;
  std::string product;
};

/// The sensor's name.
struct Sensor : Part {
  std::string name;
  Integer number;
  Integer type;
  Integer eventType;
  Real reading;
  std::string unit;
  std::string status;
  Integer states;
  Real lnr;
  Real lc;
  Real lnc;
  Real unc;
  Real uc;
  Real unr;
};

/// "lsi0 0000cf1a", "sel 0012", "amt 4", "sas2 7".
struct Event : Part {
  std::string source;
  std::string controller;
  Integer number;
  std::string time;
  Integer code;
  Integer level;
  std::string kind;
  Integer sensor;
  Integer eventType;
  Integer offset;
  Integer asserted;
  std::string text;
  std::string sense;
  std::string part;
  std::string partId;
};

/// Columns of the table of events, in its order.
enum class EventColumn : std::size_t {
  kId,
  kSource,
  kController,
  kNumber,
  kTime,
  kCode,
  kLevel,
  kKind,
  kSensor,
  kEventType,
  kOffset,
  kAsserted,
  kText,
  kSense,
  kPart,
  kPartId,
};

/// The entries of logs, of which there can be many hundred thousands: each is packed, and unpacked
/// for whoever asks. Without places of single columns.
class Events {
 public:
  using value_type = Event;

  Events() = default;
  template <typename Range>
  explicit Events(const Range& events) {
    for (const Event& event : events) push_back(event);
  }

  std::size_t size() const { return rows.size(); }
  bool empty() const { return rows.size() == 0; }
  Event operator[](std::size_t row) const;
  /// One column alone, which is much faster. The text stays as long as this is not changed.
  PartValue Get(std::size_t row, EventColumn column) const {
    return rows.Get(row, static_cast<std::size_t>(column));
  }
  std::string_view GetText(std::size_t row, EventColumn column) const;
  Integer GetInteger(std::size_t row, EventColumn column) const;

  void push_back(const Event& event);
  void SetId(std::size_t row, std::string_view id) { rows.ReplaceFirst(row, id); }
  /// The second of two with one id becomes "ID #2".
  void MakeIdsUnique();

  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Event;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Event;

    Iterator() = default;
    Iterator(const Events& events, std::size_t row) : events(&events), row(row) {}
    Event operator*() const { return (*events)[row]; }
    Iterator& operator++() {
      ++row;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++row;
      return before;
    }
    bool operator==(const Iterator& other) const { return row == other.row; }

   private:
    const Events* events = nullptr;
    std::size_t row = 0;
  };
  using const_iterator = Iterator;
  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size()}; }

 private:
  PackedRows rows;
};

/// "PSU 1".
struct PowerSupply : Part {
  std::string text;
  std::string status;
  Real acVolts;
  Real outputWatts;
};

/// The light's name.
struct Led : Part {
  std::string colour;
  std::string state;
};

/// "BMC self-test".
struct SelfTest : Part {
  std::string code;
  std::string text;
};

/// One of the groups of tools that a collection asks: "lsi", "microchip", "intel", "sensors",
/// "sel", "fru", "power supplies", "leds", "self-test", "amt", "sas2".
struct PartSource : Part {
  std::string state;
  std::string observed;
  Integer records;
  Integer capacity;
  std::string time;  ///< of the machine when its tool answered
  /// Its tool was asked, and said that there is nothing for it here.
  bool saysNone = false;
  /// It failed for other controllers alone: of those that it tells of, everything was read.
  bool lacksControllersOnly = false;
};

/// A line, or a row, that looks like a part and could not be read as one.
struct Unread : Part {
  std::string text;
};

/// No machine has so many of anything. What a stranger's report lists beyond must not fill the
/// memory: a line of it can make a part of a hundred times its size.
inline constexpr std::size_t kMostParts = 2'000;

/// The first kMostParts of a kind, and how many more there were. A vector that grows would be there
/// twice.
template <typename T>
class PartList : public std::deque<T> {
 public:
  using std::deque<T>::deque;

  /// Valid until the next part. Beyond the limit it is none of the list.
  T& emplace_back() {
    if (this->size() < kMostParts) return std::deque<T>::emplace_back();
    ++left;
    return leftOut = T();
  }
  void push_back(T part) { emplace_back() = std::move(part); }
  /// The part that was added last, also one that was left out.
  T& Newest() { return left == 0 ? this->back() : leftOut; }

  /// Parts that were left out.
  std::size_t CountLeft() const { return left; }
  std::size_t CountAdded() const { return this->size() + left; }

 private:
  T leftOut;
  std::size_t left = 0;
};

struct Parts {
  PartList<Controller> controllers;
  PartList<Drive> drives;
  PartList<Volume> volumes;
  PartList<Group> groups;
  PartList<MissingDrive> missingDrives;
  PartList<CacheBackup> cacheBackups;
  PartList<Enclosure> enclosures;
  PartList<Sensor> sensors;
  Events events;
  PartList<PowerSupply> powerSupplies;
  PartList<Led> leds;
  PartList<SelfTest> selfTests;
  PartList<PartSource> sources;
  PartList<Unread> unread;
};

}  // namespace host
