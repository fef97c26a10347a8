//   AMT event log of 192.0.2.40, 9 records
//
//     4  2022-03-08 06:56:20  Critical       System firmware    No usable memory in slot DIMM3
#include "host/answers/parts/amt.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/answers/parts/sources.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr char kLogClass[] = "AMTLOG";

struct Severity {
  std::string_view word;
  std::int64_t level;
};
constexpr Severity kSeverities[] = {
    {"informational", 0}, {"monitor", 0},  {"unspecified", 0},    {"ok", 0},    {"warning", 1},
    {"noncritical", 1},   {"critical", 2}, {"nonrecoverable", 3}, {"fatal", 3},
};

std::optional<Event> ReadEntry(std::string_view line, const Place& at) {
  constexpr std::size_t kSeverity = 3;
  const std::vector<std::string_view> words = ListWords(line);
  if (words.size() <= kSeverity + 1) return std::nullopt;
  const std::string severity = LowerCase(words[kSeverity]);
  const auto* known = std::find_if(std::begin(kSeverities), std::end(kSeverities),
                                   [&](const Severity& one) { return one.word == severity; });
  Event event;
  event.number = ReadInteger(words[0]);
  event.time = ReadTime(GetFrom(line, words[1]));
  if (!event.number || event.time.empty() || known == std::end(kSeverities)) return std::nullopt;
  event.id = "amt " + std::to_string(*event.number);
  event.readAt = at;
  event.source = "AMT";
  event.level = known->level;
  event.asserted = 1;
  // Two blanks or more part the device from what happened to it.
  const std::string_view rest = Trim(GetFrom(line, words[kSeverity + 1]));
  const std::size_t gap = rest.find("  ");
  if (gap == std::string_view::npos) {
    event.text = rest;
  } else {
    event.kind = rest.substr(0, gap);
    event.text = Trim(rest.substr(gap));
  }
  return event;
}

}  // namespace

void ReadAmt(const CollectedRows& rows, Parts& parts) {
  bool isUnderstood = false;
  std::int64_t declared = 0;
  std::int64_t listed = 0;
  for (const CollectedRow& row : rows.ListRows(kLogClass)) {
    const std::string line = row.Get(kLogClass);
    if (line.starts_with("AMT event log of")) {
      isUnderstood = true;
      declared = ReadLeadingInteger(std::string_view(line).substr(line.find(',') + 1)).value_or(0);
    }
    if (line.empty() || line.front() < '0' || line.front() > '9') continue;
    ++listed;
    const Place at = row.PlaceOf(kLogClass, "amt_log");
    if (std::optional<Event> event = ReadEntry(line, at)) {
      isUnderstood = true;
      parts.events.push_back(*event);
    } else {
      Unread& unread = parts.unread.emplace_back();
      unread.readAt = at;
      unread.text = line;
    }
  }
  const CollectedTable* table = rows.FindTable(kLogClass);
  if (isUnderstood && listed < declared) {
    AddSource(parts, "amt", kLogClass, SourceState::kFailed,
              "the log breaks off: " + std::to_string(listed) + " of " + std::to_string(declared) +
                  " records");
  } else if (isUnderstood) {
    AddSource(parts, "amt", kLogClass, SourceState::kRead);
  } else if (table != nullptr && table->RowCount() > 0) {
    AddSource(parts, "amt", kLogClass, SourceState::kFailed, "no entry in the log");
  } else {
    AddSourceWithoutParts(parts, "amt", kLogClass, table);
  }
}

}  // namespace host
