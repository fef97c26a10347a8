#include "host/answers/parts/ipmiutil_sel.h"

#include <algorithm>
#include <string>
#include <vector>

#include "host/answers/parts/ipmi_types.h"
#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"

namespace host {
namespace {

constexpr std::string_view kSelSeverities[] = {"INF", "MIN", "MAJ", "CRT"};  // by level
constexpr std::int64_t kRedundancyEvent = 0x0b;
// A controller whose clock was never set counts from 1970, or from its firmware's own beginning.
constexpr std::string_view kFirstCredibleTime = "1998";

bool IsHex(std::string_view text, std::size_t digits) {
  return ReadHexDigits(text, digits, digits).has_value();
}

/// The three bytes and the trigger at the end of a record: "Redundancy Lost 0b [01 ff ff]".
struct Trigger {
  std::int64_t trigger = 0;
  std::int64_t data1 = 0;
  std::string_view before;
};
std::optional<Trigger> SplitTrigger(std::string_view detail) {
  const std::vector<std::string_view> words = ListWords(detail);
  if (words.size() < 4) return std::nullopt;
  const std::string_view* last = words.data() + words.size() - 4;
  const bool fits = IsHex(last[0], 2) && last[1].starts_with('[') && IsHex(last[1].substr(1), 2) &&
                    IsHex(last[2], 2) && last[3].ends_with(']') && IsHex(last[3].substr(0, 2), 2);
  if (!fits) return std::nullopt;
  return Trigger{*ReadHex(last[0]), *ReadHex(last[1].substr(1)), Trim(GetBefore(detail, last[0]))};
}

/// "Lo Noncrit thresh ...", "HiC thresh ...": the number of the threshold's event.
Integer FindThresholdOffset(std::string_view text) {
  if (text.find("thresh") == std::string_view::npos) return std::nullopt;
  const bool isHigh = text.starts_with("Hi");
  if (!isHigh && !text.starts_with("Lo")) return std::nullopt;
  const std::string_view rest = Trim(text.substr(2));
  constexpr std::string_view kOrder = "NCU";  // non-critical, critical, unrecoverable
  const std::size_t severity = rest.empty() ? std::string_view::npos : kOrder.find(rest.front());
  if (severity == std::string_view::npos) return std::nullopt;
  return static_cast<std::int64_t>(severity) * 2 + (isHigh ? 7 : 0);
}

void ReadDetail(Event& event, std::string_view detail) {
  event.asserted = 1;
  const std::optional<Trigger> end = SplitTrigger(detail);
  if (!end) {
    event.text = detail;
    event.offset = FindThresholdOffset(detail);
    if (event.offset) event.eventType = kThresholdEvent;
    if (detail.find("OK now") != std::string_view::npos) event.asserted = 0;
    return;
  }
  event.text = end->before == "-" ? "" : end->before;
  event.eventType = end->trigger & 0x7f;
  event.offset = end->data1 & 0x0f;
  if ((end->trigger & 0x80) != 0) event.asserted = 0;
  // "Fully redundant" ends what was lost before.
  if (event.eventType == kRedundancyEvent && event.offset == 0) event.asserted = 0;
}

/// The number after the last label of a line: 26 of "Used=26, Free=486)".
Integer ReadNumberAfter(std::string_view line, std::string_view label) {
  const std::size_t at = line.find(label);
  return at == std::string_view::npos ? std::nullopt
                                      : ReadLeadingInteger(line.substr(at + label.size()));
}

}  // namespace

bool LooksLikeSelRecord(std::string_view line) {
  const std::string_view text = Trim(line);
  return text.size() > 4 && IsHex(text.substr(0, 4), 4) && text[4] == ' ';
}

std::optional<Event> ReadSelRecord(std::string_view line, const Place& at) {
  const std::string_view text = Trim(line);
  if (!LooksLikeSelRecord(text)) return std::nullopt;
  const std::vector<std::string_view> words = ListWords(text);
  // Some records have no time.
  constexpr std::size_t kTimeWords = 2;
  const auto isSeverity = [](std::string_view word) {
    return std::find(std::begin(kSelSeverities), std::end(kSelSeverities), word) !=
           std::end(kSelSeverities);
  };
  std::size_t severity = 1;
  if (words.size() > severity && !isSeverity(words[severity])) severity += kTimeWords;
  if (words.size() <= severity + 1 || !isSeverity(words[severity])) return std::nullopt;

  Event event;
  event.id = "sel " + std::string(words[0]);
  event.readAt = at;
  event.source = "SEL";
  event.number = ReadHex(words[0]);
  event.level = std::find(std::begin(kSelSeverities), std::end(kSelSeverities), words[severity]) -
                std::begin(kSelSeverities);
  if (severity > 1) event.time = ReadTime(GetFrom(text, words[1]));
  if (event.time < kFirstCredibleTime) event.time.clear();
  // "BMC  Power Supply #4c  AC Lost 6f [03 ff ff]"
  const std::string_view rest = Trim(GetFrom(text, words[severity + 1]));
  std::size_t mark = rest.find('#');
  while (mark != std::string_view::npos &&
         !(IsHex(rest.substr(mark + 1, 2), 2) && mark > 0 && rest[mark - 1] == ' ')) {
    mark = rest.find('#', mark + 1);
  }
  if (mark == std::string_view::npos) {
    event.kind = "OEM";
    event.text = rest;
    event.asserted = 1;
    return event;
  }
  event.kind = Trim(rest.substr(words[severity + 1].size(), mark - words[severity + 1].size()));
  event.code = FindSensorType(event.kind);
  event.sensor = ReadHex(rest.substr(mark + 1, 2));
  ReadDetail(event, Trim(rest.substr(mark + 3)));
  return event;
}

std::optional<SelSize> ReadSelSize(std::string_view line) {
  if (!line.starts_with("SEL Ver")) return std::nullopt;
  const Integer capacity = ReadNumberAfter(line, "Size = ");
  const Integer used = ReadNumberAfter(line, "Used=");
  if (!capacity || !used) return std::nullopt;
  return SelSize{*used, *capacity};
}

}  // namespace host
