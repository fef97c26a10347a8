//   Event Log for Controller 1
//   --------------------------------------------------------------
//   2026-11-14 17:22:08  WARNING  Write cache disabled: backup capacitor charge low (14 C)
#include "host/answers/parts/arcconf_events.h"

#include <algorithm>
#include <utility>

#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

struct SeverityWord {
  std::string_view word;  ///< in lower case, or its beginning
  std::int64_t level;
};
constexpr SeverityWord kSeverityWords[] = {
    {"info", 0}, {"warning", 1}, {"error", 2}, {"critical", 2}, {"fatal", 3},
};

Integer FindLevel(std::string_view word) {
  const std::string lower = LowerCase(word);
  const auto* found =
      std::find_if(std::begin(kSeverityWords), std::end(kSeverityWords),
                   [&](const SeverityWord& one) { return lower.starts_with(one.word); });
  if (found == std::end(kSeverityWords)) return std::nullopt;
  return found->level;
}

bool IsHead(std::string_view line) {
  return line.empty() || IsRule(line, '-', 3) || LowerCase(line).starts_with("event log for");
}

}  // namespace

void ReadArcconfEvents(const Report& report, Parts& parts) {
  std::int64_t number = 0;
  bool wasUnread = false;
  ReportLine line;
  for (ReportLines lines(report.text); lines.Next(line);) {
    const std::string_view told = Trim(line.text);
    if (IsHead(told)) continue;
    const std::vector<std::string_view> words = ListWords(told);
    const std::string time = ReadTime(told);
    const Integer level = words.size() < 3 ? std::nullopt : FindLevel(words[2]);
    if (time.empty() || !level) {
      if (!std::exchange(wasUnread, true)) KeepUnread(parts, report, line);
      continue;
    }
    wasUnread = false;
    Event event;
    event.id = report.controller + " " + time;
    event.readAt = PlaceOfLine(report, line);
    event.source = "Microchip";
    event.controller = report.controller;
    event.number = ++number;
    event.time = time;
    event.level = level;
    event.asserted = 1;
    if (words.size() > 3) event.text = GetFrom(told, words[3]);
    event.part = "controllers";
    event.partId = report.controller;
    parts.events.push_back(event);
  }
}

}  // namespace host
