#include "host/answers/parts/bmc.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/answers/parts/ipmiutil_sel.h"
#include "host/answers/parts/ipmiutil_sensors.h"
#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/answers/parts/sources.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr char kIpmiutil[] = "ipmiutilnh.exe";
constexpr char kReadingsArguments[] = "sensor -s -q";
constexpr char kRecordsArguments[] = "sensor";
constexpr char kSelfTestArguments[] = "korvaxoem selftest";
// As a person would call them.
constexpr char kReadingsTool[] = "ipmiutil sensor -s -q";
constexpr char kRecordsTool[] = "ipmiutil sensor";

/// What a listing of ipmiutil says of itself. It begins with
///   ipmiutil sensor version 3.18
/// and ends with
///   ipmiutil sensor, completed successfully
/// or with what went wrong in place of the last two words. Some builds print none of these.
class ListingEnd {
 public:
  void Take(std::string_view line) {
    const std::string_view text = Trim(line);
    // Of a text that is cut the beginning of the name may be all there is.
    if (first.empty() && !text.empty()) {
      hasHead = text.starts_with(kName) || kName.starts_with(text);
    }
    if (first.empty()) first = CutText(text, kLongestWords);
    const std::vector<std::string_view> words = ListWords(text);
    if (words.size() < 3 || words[0] != "ipmiutil" || !words[1].ends_with(',')) return;
    closing = CutText(text, kLongestWords);
    endedWell = text.ends_with("completed successfully");
  }
  /// What else tells that it is not whole.
  void TakeGap(std::string gap) {
    if (otherGap.empty()) otherGap = std::move(gap);
  }

  bool EndedWell() const { return endedWell; }
  bool EndedBadly() const { return !closing.empty() && !endedWell; }
  /// Why it is not whole although it does not end in an error, in words; empty when it is, as far
  /// as it tells.
  std::string DescribeGap() const {
    if (!otherGap.empty()) return otherGap;
    return hasHead && closing.empty() ? "it breaks off without its last line" : std::string();
  }
  /// Why nothing could be read: the listing's own words.
  const std::string& Words() const { return EndedBadly() ? closing : first; }

 private:
  static constexpr std::string_view kName = "ipmiutil ";
  static constexpr std::size_t kLongestWords = 200;  // columns

  std::string first;
  std::string closing;
  std::string otherGap;
  bool hasHead = false;
  bool endedWell = false;
};

/// The interpreter names a program that it cannot find; ipmiutil does not call itself so.
bool NamesProgram(std::string_view line) {
  return LowerCase(line).find(kIpmiutil) != std::string::npos;
}

/// Whether a line is ipmiutil's talk about itself, not about the machine.
bool IsTalk(std::string_view line) {
  return line.empty() || line.starts_with("ipmiutil ") || line.starts_with("Opening ") ||
         line.starts_with("-- BMC version");
}

/// The interpreter's words, in the system's language, in place of the tool's.
bool IsInterpreters(const ListingEnd& end) { return NamesProgram(end.Words()); }

/// Whether a listing says why it, or where there are no parts at all the source, was not read.
bool TellsTrouble(const ListingEnd& end, bool hasParts) {
  const bool hasOwnWords = !end.Words().empty() && !IsInterpreters(end);
  return end.EndedBadly() || !end.DescribeGap().empty() || (!hasParts && hasOwnWords);
}

/// Appends the source `id` of the table `className`. `hasParts`: something was read.
void AddBmcSource(const CollectedRows& rows, Parts& parts, const char* id, const char* className,
                  bool hasParts, const std::vector<ListingEnd>& ends) {
  const auto find = [&](auto test) { return std::find_if(ends.begin(), ends.end(), test); };
  const auto bad = find([](const ListingEnd& end) { return end.EndedBadly(); });
  const auto told =
      find([](const ListingEnd& end) { return !end.Words().empty() && !IsInterpreters(end); });
  const auto cut = find([](const ListingEnd& end) { return !end.DescribeGap().empty(); });
  if (bad != ends.end()) {
    AddSource(parts, id, className, SourceState::kFailed,
              (hasParts ? "cut short: " : "") + bad->Words());
  } else if (hasParts && cut != ends.end()) {
    AddSource(parts, id, className, SourceState::kFailed, "cut short: " + cut->DescribeGap());
  } else if (hasParts ||
             find([](const ListingEnd& end) { return end.EndedWell(); }) != ends.end()) {
    AddSource(parts, id, className, SourceState::kRead);
  } else if (told != ends.end()) {
    AddSource(parts, id, className, SourceState::kFailed, told->Words());
  } else {
    const CollectedTable* table = rows.FindTable(className);
    const bool isTold =
        table == nullptr || table->RowCount() == 0 || !table->status.missing.empty();
    if (isTold || find(IsInterpreters) == ends.end()) {
      AddSourceWithoutParts(parts, id, className, table);
    } else {
      AddSource(parts, id, className, SourceState::kNone,
                fmt::format("{} is not on this machine", kIpmiutil));
    }
  }
}

/// Lets `end` know how ipmiutil ended. A listing that says it is complete is.
void TakeExitCode(const CollectedRows& rows, std::string_view arguments, ListingEnd& end) {
  if (end.EndedWell()) return;
  const CollectedAnswer* const answer = rows.FindAnswer(kIpmiutil, arguments);
  std::string how = DescribeEnd(answer);
  if (how.empty() && answer != nullptr && end.Words().empty()) how = "printed nothing";
  if (!how.empty()) end.TakeGap("ipmiutil " + std::string(arguments) + " " + how);
}

/// Reads the lines of a class that carries one a row under its own name, printed by ipmiutil with
/// `arguments`.
template <typename TakeLine>
ListingEnd ReadLineRows(const CollectedRows& rows, std::string_view className,
                        std::string_view arguments, const TakeLine& take) {
  const std::string tool = "ipmiutil " + std::string(arguments);
  ListingEnd end;
  for (const CollectedRow& row : rows.ListRows(className)) {
    const std::string line = row.Get(className);
    end.Take(line);
    take(std::string_view(line), row.PlaceOf(className, tool));
  }
  TakeExitCode(rows, arguments, end);
  return end;
}

void KeepUnread(Parts& parts, std::string_view line, const Place& at) {
  Unread& unread = parts.unread.emplace_back();
  unread.readAt = at;
  unread.text = line;
}

// --- sensors ---

/// Where the class SENSORINFO shows a line of the readings: it deals their cells to ten columns, by
/// count alone, until one is blank.
class DealtCells {
 public:
  /// `rows` are those of SENSORINFO.
  explicit DealtCells(CollectedRowList rows) : rows(rows) {}

  /// The place of the status in the line at hand.
  Place PlaceOfStatus(const ReportLine& line) const {
    constexpr std::size_t kColumns = 10;
    std::size_t begin = 0;
    for (std::size_t cell = FindStatusCell(line.text); cell > 0; --cell) {
      begin = std::min(line.text.find('|', begin), line.text.size() - 1) + 1;
    }
    const std::size_t dealt = dealtBefore + CountCells(line.text.substr(0, begin));
    Place place{{}, 0, {}, line.number, kReadingsTool};
    const std::size_t row = dealt / kColumns;
    if (row >= rows.size()) return place;
    std::string key = "item" + std::to_string(dealt % kColumns + 1);
    if (row + 1 == rows.size() && rows[row].Get(key).empty()) return place;  // it ended before
    place.className = "SENSORINFO";
    place.row = static_cast<std::int64_t>(row) + 1;
    place.key = std::move(key);
    place.line = 0;
    return place;
  }

  /// Goes on to the next line.
  void Pass(std::string_view line) { dealtBefore += CountCells(line); }

 private:
  /// Two bars have no cell between them.
  static std::size_t CountCells(std::string_view line) {
    std::size_t cells = 0;
    bool isInCell = false;
    for (const char c : line) {
      if (c != '|' && !isInCell) ++cells;
      isInCell = c != '|';
    }
    return cells;
  }

  CollectedRowList rows;
  std::size_t dealtBefore = 0;  ///< cells
};

ListingEnd ReadReadings(const CollectedRows& rows, SensorReader& reader, Parts& parts) {
  ListingEnd end;
  const auto answers = rows.ListAnswers(kIpmiutil, kReadingsArguments);
  if (answers.empty()) return end;
  const DecodedText text = rows.Decode(answers.back()->output);
  DealtCells cells(rows.ListRows("SENSORINFO"));
  ReportLine line;
  for (ReportLines lines(text.View().substr(0, text.View().find('\0'))); lines.Next(line);) {
    end.Take(line.text);
    if (!reader.TakeReading(line.text, cells.PlaceOfStatus(line))) {
      KeepUnread(parts, Trim(line.text), {{}, 0, {}, line.number, kReadingsTool});
    }
    cells.Pass(line.text);
  }
  TakeExitCode(rows, kReadingsArguments, end);
  return end;
}

ListingEnd ReadRecords(const CollectedRows& rows, SensorReader& reader, Parts& parts) {
  if (rows.FindTable("SDRINFO") != nullptr && rows.FindTable("SDRINFO")->RowCount() > 0) {
    return ReadLineRows(rows, "SDRINFO", kRecordsArguments,
                        [&](std::string_view line, const Place& at) {
                          if (!reader.TakeRecord(line, at)) KeepUnread(parts, line, at);
                        });
  }
  // Some platforms are not asked for their records, but leave the same listing as a file.
  ListingEnd end;
  const auto answers = rows.ListAnswers(kIpmiutil, kRecordsArguments);
  const auto left = std::find_if(answers.begin(), answers.end(), [](const CollectedAnswer* answer) {
    return !answer->file.empty();
  });
  if (left == answers.end()) {
    TakeExitCode(rows, kRecordsArguments, end);
    return end;
  }
  const DecodedText text = rows.Decode((*left)->fileText);
  ReportLine line;
  for (ReportLines lines(text.View()); lines.Next(line);) {
    end.Take(line.text);
    const Place at{{}, 0, {}, line.number, kRecordsTool};
    if (!reader.TakeRecord(line.text, at)) KeepUnread(parts, Trim(line.text), at);
  }
  TakeExitCode(rows, kRecordsArguments, end);
  return end;
}

void ReadSensors(const CollectedRows& rows, Parts& parts) {
  SensorReader reader(parts);
  std::vector<ListingEnd> ends;
  ends.push_back(ReadReadings(rows, reader, parts));
  ends.push_back(ReadRecords(rows, reader, parts));
  const bool hasParts = !parts.sensors.empty();
  const bool recordsTell = rows.FindTable("SDRINFO") != nullptr &&
                           !TellsTrouble(ends.front(), hasParts) &&
                           TellsTrouble(ends.back(), hasParts);
  const bool isOfRecords = rows.FindTable("SENSORINFO") == nullptr || recordsTell;
  AddBmcSource(rows, parts, "sensors", isOfRecords ? "SDRINFO" : "SENSORINFO", hasParts, ends);
  parts.sources.back().time = reader.LatestTime();
}

// --- logs and inventory ---

void ReadSel(const CollectedRows& rows, Parts& parts) {
  std::unordered_map<std::int64_t, std::string> sensorIds;
  for (const Sensor& sensor : parts.sensors) {
    if (sensor.number) sensorIds.emplace(*sensor.number, sensor.id);
  }
  std::optional<SelSize> size;
  bool hasEvents = false;
  std::int64_t listed = 0;
  ListingEnd end =
      ReadLineRows(rows, "SELINFO", "sel", [&](std::string_view line, const Place& at) {
        if (const auto told = ReadSelSize(line)) size = told;
        if (!LooksLikeSelRecord(line)) return;
        ++listed;
        std::optional<Event> event = ReadSelRecord(line, at);
        if (!event) {
          KeepUnread(parts, line, at);
          return;
        }
        hasEvents = true;
        if (event->sensor) {
          const auto sensor = sensorIds.find(*event->sensor);
          event->part = "sensors";
          event->partId = sensor != sensorIds.end()
                              ? sensor->second
                              : fmt::format("{} #{:02x}", event->kind, *event->sensor);
        }
        parts.events.push_back(*event);
      });
  if (size && listed < size->used) {
    end.TakeGap(fmt::format("{} of {} records", listed, size->used));
  }
  AddBmcSource(rows, parts, "sel", "SELINFO", hasEvents || size.has_value(), {end});
  if (!size) return;
  parts.sources.back().records = size->used;
  parts.sources.back().capacity = size->capacity;
}

void ReadFru(const CollectedRows& rows, Parts& parts) {
  bool hasFacts = false;
  const ListingEnd end = ReadLineRows(
      rows, "FRUINFO", "korvaxoem fru", [&](std::string_view line, const Place& /*at*/) {
        // "[Baseboard,20,00] Product Name        : R208"
        hasFacts = hasFacts || (line.starts_with('[') && line.find("] ") != std::string_view::npos);
      });
  AddBmcSource(rows, parts, "fru", "FRUINFO", hasFacts, {end});
}

// --- the maker's own queries ---

/// A controller of another maker has nothing to answer to them.
void AddOwnSource(const CollectedRows& rows, Parts& parts, const char* id, const char* className,
                  bool hasParts, const ListingEnd& end) {
  const CollectedTable* table = rows.FindTable(className);
  if (table != nullptr && table->status.outcome == "nothing printed") {
    AddSource(parts, id, className, SourceState::kNone, table->status.text);
  } else {
    AddBmcSource(rows, parts, id, className, hasParts, {end});
  }
}

/// The number right before `unit`, a word of `line`, after the first of `label`.
Real FindAmount(std::string_view line, std::string_view label, std::string_view unit) {
  const std::size_t at = line.find(label);
  if (at == std::string_view::npos) return std::nullopt;
  const std::vector<std::string_view> words = ListWords(line.substr(at + label.size()));
  const auto found = std::find(words.begin(), words.end(), unit);
  if (found == words.begin() || found == words.end()) return std::nullopt;
  return ReadLeadingReal(*(found - 1));
}

//   PSU 1  present   NG-PS-1100T   serial PSN2204117   1100 W
//          AC input  231.0 V  0.92 A  208 W
//          DC output  12.08 V  15.6 A  188 W   fan 6240 RPM   temperature 34 C   status OK
void ReadPowerSupplies(const CollectedRows& rows, Parts& parts) {
  constexpr std::string_view kBegin = "PSU";
  constexpr std::string_view kStatus = "status ";
  PowerSupply* supply = nullptr;
  const ListingEnd end =
      ReadLineRows(rows, "PSUINFO", "korvaxoem psu", [&](std::string_view line, const Place& at) {
        const Integer number = line.starts_with(kBegin)
                                   ? ReadLeadingInteger(line.substr(kBegin.size()))
                                   : std::nullopt;
        if (number) {
          supply = &parts.powerSupplies.emplace_back();
          supply->id = "PSU " + std::to_string(*number);
          supply->readAt = at;
        }
        if (IsTalk(line) || supply == nullptr) return;
        supply->text.append(supply->text.empty() ? "" : " / ").append(line);
        const auto learn = [&](std::string_view column, Real& member, Real amount) {
          if (!amount || member) return;
          member = amount;
          NotePlace(*supply, column, at);
        };
        learn("ac_volts", supply->acVolts, FindAmount(line, "AC input", "V"));
        learn("output_watts", supply->outputWatts, FindAmount(line, "DC output", "W"));
        const std::size_t status = line.find(kStatus);
        if (status == std::string_view::npos || !supply->status.empty()) return;
        supply->status = Trim(line.substr(status + kStatus.size()));
        NotePlace(*supply, "status", at);
      });
  AddOwnSource(rows, parts, "power supplies", "PSUINFO", supply != nullptr, end);
}

//   Fan fault LED      amber   off
void ReadLeds(const CollectedRows& rows, Parts& parts) {
  bool isMissing = false;
  const ListingEnd end =
      ReadLineRows(rows, "LEDINFO", "korvaxoem led", [&](std::string_view line, const Place& at) {
        isMissing = isMissing || NamesProgram(line);
        if (IsTalk(line) || isMissing) return;
        const std::vector<std::string_view> words = ListWords(line);
        const auto label = std::find(words.begin(), words.end(), "LED");
        const std::ptrdiff_t after = words.end() - label - 1;
        if (after != 1 && after != 2) {
          KeepUnread(parts, line, at);
          return;
        }
        Led& led = parts.leds.emplace_back();
        led.id = line.substr(0, line.size() - GetAfter(line, *label).size());
        led.readAt = at;
        if (after == 2) led.colour = LowerCase(label[1]);
        led.state = LowerCase(label[after]);
      });
  AddOwnSource(rows, parts, "leds", "LEDINFO", !parts.leds.empty(), end);
}

/// Whether what the table has as a label is a line by itself, so that the value is the next line.
bool IsLineBreak(const CollectedRows& rows, const std::string& label) {
  const CollectedAnswer* const answer = rows.FindAnswer(kIpmiutil, kSelfTestArguments);
  if (answer == nullptr) return false;
  const DecodedText text = rows.Decode(answer->output);
  ReportLine line;
  for (ReportLines lines(text.View()); lines.Next(line);) {
    if (Trim(line.text) == label) return true;
  }
  return false;
}

//   Selftest result : 57h 02h,
//   SDR repository empty
void ReadSelfTest(const CollectedRows& rows, Parts& parts) {
  constexpr std::string_view kCodes[] = {"55", "56", "57", "58", "ff"};
  ListingEnd end;
  for (const CollectedRow& row : rows.ListRows("SELFINFO")) {
    SelfTest test;
    test.id = "BMC self-test";
    test.readAt = row.PlaceOf("self1", "ipmiutil " + std::string(kSelfTestArguments));
    for (const char* key : {"self1", "self2"}) {
      const std::string label = row.GetLabel(key);
      const std::string value = row.Get(key);
      if (label.empty() && value.empty()) continue;
      if (!test.text.empty()) test.text += ' ';
      test.text.append(label).append(IsLineBreak(rows, label) ? ", " : ": ").append(value);
    }
    end.Take(test.text);
    // "55h", "0x55"
    for (std::string_view word : ListWords(test.text)) {
      if (word.starts_with("0x")) word.remove_prefix(2);
      const std::string code = LowerCase(word.substr(0, 2));
      const bool isCode =
          word.size() == 2 || (word.size() > 2 && (word[2] == 'h' || word[2] == ','));
      if (!isCode || std::find(std::begin(kCodes), std::end(kCodes), code) == std::end(kCodes)) {
        continue;
      }
      test.code = code;
      break;
    }
    if (!test.text.empty() && !NamesProgram(test.text)) parts.selfTests.push_back(std::move(test));
  }
  TakeExitCode(rows, kSelfTestArguments, end);
  AddOwnSource(rows, parts, "self-test", "SELFINFO", !parts.selfTests.empty(), end);
}

}  // namespace

void ReadBmc(const CollectedRows& rows, Parts& parts) {
  ReadSensors(rows, parts);
  ReadSel(rows, parts);
  ReadFru(rows, parts);
  ReadPowerSupplies(rows, parts);
  ReadLeds(rows, parts);
  ReadSelfTest(rows, parts);
}

}  // namespace host
