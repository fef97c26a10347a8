//   seqNum: 0x0000cf1a
//   Time: Tue Jun  2 18:02:08 2015
//
//   Code: 0x000000fb
//   Class: 2
//   Locale: 0x01
//   Event Description: VD 00/0 is now DEGRADED
//   Event Data:
//   ===========
//   Target Id: 0
//
// The second generation of the tool prints "Sequence Number: 3772", a decimal code of another
// numbering, and the class in words. The term log has a line for each event:
//
//   12/30/19 10:13:10: C0:EVT#87008-12/30/19 10:13:10: 218=Foreign Configuration Detected
//
// and counts volumes whose data the cache keeps though they are not there, in lines of its own:
//
//   12/30/19 10:13:10: C0:NumberOfVdsWithPinnedCache: number_of_pinned_vds = 1

#include "host/answers/parts/storcli_events.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <unordered_set>
#include <utility>

#include "host/answers/parts/lsi_drives.h"
#include "host/answers/parts/report_values.h"

namespace host {
namespace {

struct ClassWord {
  std::string_view word;
  std::int64_t level;
};
constexpr ClassWord kClassWords[] = {
    {"Debug", -2},  {"Progress", -1}, {"Informational", 0}, {"Information", 0},
    {"Warning", 1}, {"Critical", 2},  {"Fatal", 3},         {"Fault", 4},
};

Integer ReadClass(std::string_view text) {
  for (const ClassWord& known : kClassWords) {
    if (known.word == text) return known.level;
  }
  return ReadInteger(text);
}

/// Codes of batteries and capacitors, first and last of each run.
constexpr std::pair<std::int64_t, std::int64_t> kCacheBackupCodes[] = {
    {0x8d, 0xa3}, {0xc2, 0xc3}, {0xc8, 0xc8}, {0xf2, 0xf2}, {0x182, 0x182}, {0x18b, 0x18b},
};

bool IsOfCacheBackup(const Integer& code) {
  return std::any_of(std::begin(kCacheBackupCodes), std::end(kCacheBackupCodes),
                     [&](const auto& run) { return code >= run.first && code <= run.second; });
}

constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

/// Takes hexadecimal digits off `text`, after "0x" if it is there; none without a digit.
std::optional<std::string_view> TakeHex(std::string_view& text) {
  if (text.starts_with("0x")) text.remove_prefix(2);
  const std::size_t length = std::min(text.find_first_not_of(kHexDigits), text.size());
  if (length == 0) return std::nullopt;
  const std::string_view digits = text.substr(0, length);
  text.remove_prefix(length);
  return digits;
}

bool TakeOff(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

struct NamedDrive {
  std::int64_t deviceId = 0;
  std::string place;  ///< empty when the event does not tell
};

/// "20(e0x45/s14)", "0x26(e0x34/s11)" or "04(e252/s4)": the device id in hexadecimal, then
/// enclosure and slot. Enclosure 0xff is none.
std::optional<NamedDrive> ReadNamedDrive(std::string_view text) {
  const auto id = TakeHex(text);
  const Integer deviceId = id ? ReadHex(*id) : std::nullopt;
  if (!deviceId) return std::nullopt;
  NamedDrive drive{*deviceId, {}};
  if (!TakeOff(text, "(e")) return drive;
  const bool isHex = text.starts_with("0x");
  const auto digits = TakeHex(text);
  if (!digits || !TakeOff(text, "/s")) return drive;
  const Integer enclosure = isHex ? ReadHex(*digits) : ReadInteger(*digits);
  const Integer slot = ReadLeadingInteger(text.substr(0, text.find(')')));
  if (!enclosure || !slot || *slot < 0) return drive;
  drive.place =
      *enclosure == 0xff ? fmt::format(":{}", *slot) : fmt::format("{}:{}", *enclosure, *slot);
  return drive;
}

/// The text after the first `word` that begins a word of `text`; none without.
std::optional<std::string_view> FindAfter(std::string_view text, std::string_view word) {
  for (std::size_t at = text.find(word); at != std::string_view::npos;
       at = text.find(word, at + word.size())) {
    if (at == 0 || text[at - 1] == ' ' || text[at - 1] == 'E') {  // "EPD" is a drive, too
      return text.substr(at + word.size());
    }
  }
  return std::nullopt;
}

/// Key, code and qualifier of a SCSI error: "3/11/00".
std::string FindSense(std::string_view text) {
  constexpr std::string_view kLabel = "Sense:";
  const std::size_t at = text.find(kLabel);
  if (at == std::string_view::npos) return {};
  const std::string_view rest = Trim(text.substr(at + kLabel.size()));
  std::string_view left = rest;
  const bool isSense =
      TakeHex(left) && TakeOff(left, "/") && TakeHex(left) && TakeOff(left, "/") && TakeHex(left);
  return isSense ? std::string(rest.substr(0, rest.size() - left.size())) : std::string();
}

/// "lsi0 0000cf1a". Logs can have a hundred thousand entries, for which fmt takes too long.
std::string MakeEventId(std::string_view controller, std::int64_t number) {
  constexpr std::size_t kDigits = 8;
  std::array<char, 17> digits{};
  const char* const end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  const auto length = static_cast<std::size_t>(end - digits.data());
  std::string id(controller);
  id += ' ';
  id.append(kDigits - std::min(kDigits, length), '0');
  id.append(digits.data(), length);
  return id;
}

/// Finds what events are about, and appends them.
class EventList {
 public:
  EventList(const Report& report, Parts& parts)
      : report(report), parts(parts), drives(parts, report.controller) {
    const auto backup =
        std::find_if(parts.cacheBackups.begin(), parts.cacheBackups.end(),
                     [&](const CacheBackup& made) { return made.controller == report.controller; });
    if (backup != parts.cacheBackups.end()) cacheBackup = backup->id;
  }

  /// `target` is the volume that the data of the event name.
  void Add(Event&& event, Place at, const Integer& target) {
    event.source = kLsi;
    event.controller = report.controller;
    event.sense = FindSense(event.text);
    event.id = event.number
                   ? MakeEventId(report.controller, *event.number)
                   : fmt::format("{} line {}", report.controller, at.line > 0 ? at.line : at.row);
    event.readAt = std::move(at);
    FindPart(event, target);
    parts.events.push_back(event);
  }

 private:
  void FindPart(Event& event, const Integer& target) {
    if (const auto name = FindAfter(event.text, "PD ")) {
      if (const auto drive = ReadNamedDrive(*name)) {
        event.part = "drives";
        event.partId = FindDrive(*drive);
        return;
      }
    }
    if (const Integer number = FindVolume(event.text, target)) {
      event.part = "volumes";
      event.partId = fmt::format("{} v{}", report.controller, *number);
      return;
    }
    const bool isOfBackup = IsOfCacheBackup(event.code) && !cacheBackup.empty();
    event.part = isOfBackup ? "cache_backups" : "controllers";
    event.partId = isOfBackup ? cacheBackup : report.controller;
  }

  /// Of "VD 02/3": its target, otherwise the number after the slash, in hexadecimal.
  static Integer FindVolume(std::string_view text, const Integer& target) {
    auto name = FindAfter(text, "VD ");
    if (!name || !TakeHex(*name) || !TakeOff(*name, "/")) return std::nullopt;
    const auto number = TakeHex(*name);
    if (!number) return std::nullopt;
    return target ? target : ReadHex(*number);
  }

  /// The id of a drive by its place, otherwise by its number.
  std::string FindDrive(const NamedDrive& named) {
    const Drive* drive = named.place.empty() ? nullptr : drives.FindByPlace(named.place);
    if (drive == nullptr) drive = drives.FindByDeviceId(named.deviceId);
    if (drive != nullptr) return drive->id;
    return named.place.empty() ? fmt::format("{} device {}", report.controller, named.deviceId)
                               : drives.MakeId(named.place);
  }

  const Report& report;
  Parts& parts;
  LsiDrives drives;
  std::string cacheBackup;
};

Integer ReadSequenceNumber(std::string_view text) {
  return text.starts_with("0x") ? ReadHex(text) : ReadInteger(text);
}

/// Takes one of the lines of an event before its data.
void TakeEventFact(Event& event, std::string_view label, std::string_view value) {
  if (label == "Time") event.time = ReadTime(value);
  if (label == "Code" && value.starts_with("0x")) event.code = ReadHex(value);
  if (label == "Class") event.level = ReadClass(value);
  if (label == "Event Description") event.text = value;
}

/// The same of its data.
void TakeEventData(Integer& target, std::string_view label, std::string_view value) {
  if (label == "Target Id") target = ReadInteger(value);
}

bool TellsNothing(const Event& event) { return event.text.empty() && !event.code; }

/// An event whose lines are being read.
struct OpenEvent {
  Event event;
  ReportLine line;  ///< that it begins with
  Integer target;
  bool inData = false;
};

class DumpReader {
 public:
  DumpReader(const Report& report, Parts& parts)
      : report(report), parts(parts), events(report, parts) {}

  /// Where the dump breaks off, in words; empty when it does not, as far as it tells.
  std::string Read() {
    ReportLines lines(report.text);
    for (ReportLine line; lines.Next(line);) Take(line);
    const bool isWhole = !open || open->inData;
    End();
    return isWhole ? "" : "breaks off in an entry";
  }

 private:
  void Take(const ReportLine& line) {
    const auto split = SplitLabel(line.text, ':');
    if (!split) return;
    if (split->label == "seqNum" || split->label == "Sequence Number") {
      End();
      open.emplace();
      open->line = line;
      open->event.number = ReadSequenceNumber(split->value);
      return;
    }
    if (!open) return;
    if (open->inData) {
      TakeEventData(open->target, split->label, split->value);
      return;
    }
    TakeEventFact(open->event, split->label, split->value);
    open->inData = split->label == "Event Data";
  }

  void End() {
    if (!open) return;
    if (TellsNothing(open->event)) {
      KeepUnread(parts, report, open->line);
    } else {
      events.Add(std::move(open->event), PlaceOfLine(report, open->line), open->target);
    }
    open.reset();
  }

  const Report& report;
  Parts& parts;
  EventList events;
  std::optional<OpenEvent> open;
};

/// The event of a line of the term log; none when the line does not fit.
std::optional<Event> ReadTermLogEvent(std::string_view text) {
  const std::size_t dash = text.find('-');
  const std::size_t equals = text.find('=');
  if (dash == std::string_view::npos || equals == std::string_view::npos || equals < dash) {
    return std::nullopt;
  }
  const std::string_view timeAndCode = text.substr(dash + 1, equals - dash - 1);
  const std::size_t colon = timeAndCode.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  Event event;
  event.number = ReadInteger(text.substr(0, dash));
  event.code = ReadInteger(timeAndCode.substr(colon + 1));
  if (!event.number || !event.code) return std::nullopt;
  event.time = ReadTime(timeAndCode.substr(0, colon));  // "T28", since the start, is no date
  event.text = Trim(text.substr(equals + 1));
  return event;
}

/// How many volumes a line counts whose data are kept in the cache; none on other lines.
Integer ReadPinnedCount(std::string_view line) {
  constexpr std::string_view kSign = "number_of_pinned_vds =";
  const std::size_t at = line.find(kSign);
  return at == std::string_view::npos ? std::nullopt
                                      : ReadLeadingInteger(Trim(line.substr(at + kSign.size())));
}

Event MakePinnedEvent(std::string_view line) {
  Event event;
  event.time = ReadTime(line);
  event.level = 1;
  const std::size_t text = line.find(": C");
  event.text = Trim(text == std::string_view::npos ? line : line.substr(text + 2));
  return event;
}

}  // namespace

std::string ReadStorcliEvents(const Report& report, Parts& parts) {
  return DumpReader(report, parts).Read();
}

void ReadStorcliTermLog(const Report& report, Parts& parts) {
  constexpr std::string_view kSign = "EVT#";
  std::unordered_set<std::int64_t> known;
  known.reserve(parts.events.size());
  for (std::size_t row = 0; row < parts.events.size(); ++row) {
    if (parts.events.GetText(row, EventColumn::kController) != report.controller) continue;
    const Integer number = parts.events.GetInteger(row, EventColumn::kNumber);
    if (number) known.insert(*number);
  }
  EventList events(report, parts);
  ReportLine pinned;  // the last word on it
  ReportLines lines(report.text);
  for (ReportLine line; lines.Next(line);) {
    if (const Integer count = ReadPinnedCount(line.text)) pinned = *count > 0 ? line : ReportLine();
    const std::size_t at = line.text.find(kSign);
    if (at == std::string_view::npos) continue;
    std::optional<Event> event = ReadTermLogEvent(line.text.substr(at + kSign.size()));
    if (!event) {
      KeepUnread(parts, report, line);
    } else if (known.insert(*event->number).second) {
      events.Add(std::move(*event), PlaceOfLine(report, line), std::nullopt);
    }
  }
  if (pinned.text.empty()) return;
  events.Add(MakePinnedEvent(pinned.text), PlaceOfLine(report, pinned), std::nullopt);
}

void ReadStorcliEventRows(const CollectedRowList& rows, const Report& report, Parts& parts) {
  EventList events(report, parts);
  for (const CollectedRow& row : rows) {
    Event event;
    event.number = ReadSequenceNumber(row.Get("seqNum"));
    for (const char* key : {"Time", "Code", "Class", "EventDescription"}) {
      TakeEventFact(event, row.GetLabel(key), row.Get(key));
    }
    const std::string data = row.Get("EventData");
    Integer target;
    ReportLines lines(data);
    for (ReportLine line; lines.Next(line);) {
      const auto split = SplitLabel(line.text, ':');
      if (split) TakeEventData(target, split->label, split->value);
    }
    const Place at = row.PlaceOf("EventDescription", report.place.tool);
    if (TellsNothing(event)) {
      Unread unread;
      unread.readAt = at;
      unread.text = row.Get("seqNum");
      parts.unread.push_back(std::move(unread));
    } else {
      events.Add(std::move(event), at, target);
    }
  }
}

}  // namespace host
