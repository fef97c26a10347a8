#include "host/formats/health_formats.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <vector>

#include "host/text/ascii.h"
#include "host/text/json_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::array<Severity, 4> kWorstFirst{Severity::kCritical, Severity::kWarning,
                                              Severity::kUnknown, Severity::kNotice};

std::string JoinCounts(const Health& health) {
  std::vector<std::string> counts;
  for (const Severity severity : kWorstFirst) {
    counts.push_back(fmt::format("{} {}", CountFindings(health, severity), GetWord(severity)));
  }
  return fmt::format("{}", fmt::join(counts, ", "));
}

/// "missing_drives" for people.
std::string NameKind(std::string_view table) {
  std::string name(table);
  std::replace(name.begin(), name.end(), '_', ' ');
  return name;
}

std::string JoinChecked(const Health& health) {
  if (health.checked.empty()) return "nothing";
  std::vector<std::string> kinds;
  for (const auto& [table, count] : health.checked) {
    std::string kind = NameKind(table);
    if (count == 1) {
      const bool isIes = kind.ends_with("ies");
      kind.resize(kind.size() - (isIes ? 3 : 1));
      if (isIes) kind += 'y';
    }
    kinds.push_back(fmt::format("{} {}", count, kind));
  }
  return fmt::format("{}", fmt::join(kinds, ", "));
}

/// "storcli /c0 show, line 131 (LSILINK 1 lsishowall)"; empty when nobody knows.
std::string DescribePlace(const Place& place) {
  std::string text = place.tool;
  if (place.line > 0) text += fmt::format("{}line {}", text.empty() ? "" : ", ", place.line);
  if (place.className.empty()) return text;
  std::string cell = place.className;
  if (place.row > 0) cell += fmt::format(" {}", place.row);
  if (!place.key.empty()) cell += " " + place.key;
  return text.empty() ? cell : fmt::format("{} ({})", text, cell);
}

std::string DescribeSuppression(const HealthHit& hit) {
  if (!hit.suppressed) return {};
  return fmt::format(" (would be {}; suppressed: {})", GetWord(*hit.suppressed), hit.reason);
}

const char* GetColor(Severity severity) {
  constexpr std::array<const char*, 4> kColors{"", "\x1b[35m", "\x1b[33m", "\x1b[31m"};
  return kColors[static_cast<std::size_t>(severity)];
}

/// Lines with a word in front, broken to the screen's width.
class LinesWriter {
 public:
  LinesWriter(const Screen& screen, std::ostream& out) : screen(screen), out(out) {}

  void Write(std::size_t indent, std::string_view word, std::string_view text,
             const char* color = "") {
    constexpr std::size_t kWord = 10;
    constexpr std::size_t kLeast = 20;
    const std::size_t before = indent + kWord;
    const std::size_t width = std::max(kLeast, static_cast<std::size_t>(screen.width) - before);
    std::string lead = std::string(indent, ' ') + PadText(std::string(word), kWord);
    const bool isColored = screen.colors && *color != '\0';
    for (const std::string& line : WrapText(EscapeControls(text), width)) {
      out << (isColored ? color : "") << lead << (isColored ? "\x1b[0m" : "") << line << '\n';
      lead.assign(before, ' ');
      color = "";
    }
  }

 private:
  const Screen& screen;
  std::ostream& out;
};

void WriteFinding(const HealthFinding& finding, bool isBrief, LinesWriter& lines) {
  constexpr std::size_t kIndent = 10;
  const HealthHit& title = finding.hits.front();
  lines.Write(0, GetWord(finding.severity), title.text + DescribeSuppression(title),
              GetColor(finding.severity));
  if (isBrief) return;
  for (const HealthHit& hit : finding.hits) {
    const std::string place = DescribePlace(hit.place);
    lines.Write(kIndent, GetWord(hit.severity),
                fmt::format("{}, {}: {}{}{}", hit.rule, hit.id, hit.observed,
                            &hit == &title ? std::string() : DescribeSuppression(hit),
                            place.empty() ? place : fmt::format(" [{}]", place)));
  }
  if (!title.why.empty()) lines.Write(kIndent, "why", title.why);
  if (!title.next.empty()) lines.Write(kIndent, "next", title.next);
}

/// Notices of one rule and nothing else share a line, so that what matters is seen.
struct SharedNotice {
  std::string rule;
  std::vector<const HealthFinding*> findings;
};

std::vector<SharedNotice> ShareNotices(const Health& health) {
  std::vector<SharedNotice> shared;
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity != Severity::kNotice) continue;
    const HealthHit& title = finding.hits.front();
    const bool isAlone = finding.hits.size() == 1 && !title.suppressed;
    const auto known = std::find_if(shared.begin(), shared.end(), [&](const SharedNotice& one) {
      return isAlone && one.rule == title.rule;
    });
    if (known != shared.end()) {
      known->findings.push_back(&finding);
    } else {
      shared.push_back({isAlone ? title.rule : std::string(), {&finding}});
    }
  }
  return shared;
}

void WriteNotice(const SharedNotice& notice, bool isBrief, LinesWriter& lines) {
  const HealthFinding& first = *notice.findings.front();
  if (notice.findings.size() == 1) return WriteFinding(first, isBrief, lines);
  std::vector<std::string> told;
  for (const HealthFinding* finding : notice.findings) {
    const HealthHit& hit = finding->hits.front();
    told.push_back(fmt::format("{} ({})", hit.id, hit.observed));
  }
  const HealthHit& title = first.hits.front();
  lines.Write(0, GetWord(Severity::kNotice),
              fmt::format("{}, {} {}: {}", title.rule, told.size(), NameKind(title.part),
                          fmt::join(told, ", ")));
  if (isBrief) return;
  constexpr std::size_t kIndent = 10;
  if (!title.why.empty()) lines.Write(kIndent, "why", title.why);
  if (!title.next.empty()) lines.Write(kIndent, "next", title.next);
}

// --- JSON ---

void AppendPlace(std::string& json, const Place& place) {
  JsonObject object;
  object.AddText("tool", place.tool).AddText("class", place.className);
  object.AddNumber("row", place.row).AddText("key", place.key).AddNumber("line", place.line);
  json += object.Take();
}

void AppendHit(std::string& json, const HealthHit& hit) {
  JsonObject object;
  object.AddText("rule", hit.rule).AddText("severity", GetWord(hit.severity));
  object.AddText("part", hit.part).AddText("id", hit.id).AddText("serial", hit.serial);
  object.AddText("area", hit.area).AddText("observed", hit.observed).AddText("text", hit.text);
  if (hit.suppressed) {
    object.AddText("suppressed", GetWord(*hit.suppressed)).AddText("reason", hit.reason);
  }
  object.Add("because", [&](std::string& list) {
    AppendJsonList(list, hit.because,
                   [](std::string& text, const std::string& id) { AppendJsonText(text, id); });
  });
  object.Add("place", [&](std::string& text) { AppendPlace(text, hit.place); });
  json += object.Take();
}

void AppendFinding(std::string& json, const HealthFinding& finding) {
  const HealthHit& title = finding.hits.front();
  JsonObject object;
  object.AddText("key", finding.key).AddText("severity", GetWord(finding.severity));
  object.AddText("area", title.area).AddText("part", title.part).AddText("id", title.id);
  object.AddText("serial", title.serial).AddText("rule", title.rule);
  object.AddText("observed", title.observed).AddText("text", title.text);
  object.AddText("why", title.why).AddText("next", title.next);
  object.Add("evidence", [&](std::string& list) { AppendJsonList(list, finding.hits, AppendHit); });
  json += object.Take();
}

void AppendSource(std::string& json, const PartSource& source) {
  JsonObject object;
  object.AddText("id", source.id).AddText("state", source.state);
  object.AddText("observed", source.observed);
  json += object.Take();
}

// --- Nagios ---

/// Without what separates the performance data, in one line.
std::string MakePlain(std::string_view text) {
  std::string plain = EscapeControls(text);
  std::replace(plain.begin(), plain.end(), '|', '/');
  return plain;
}

}  // namespace

void WriteHealthTable(const Health& health, bool isBrief, const Screen& screen, std::ostream& out) {
  LinesWriter lines(screen, out);
  lines.Write(0, GetVerdict(health),
              fmt::format("{}; checked {}", JoinCounts(health), JoinChecked(health)),
              GetColor(health.worst.value_or(Severity::kNotice)));
  lines.Write(0, "", fmt::format("as of {} ({})", health.asOf, health.asOfFrom));
  if (!health.findings.empty()) out << '\n';
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity != Severity::kNotice) WriteFinding(finding, isBrief, lines);
  }
  for (const SharedNotice& notice : ShareNotices(health)) WriteNotice(notice, isBrief, lines);
}

void WriteHealthJson(const Health& health, std::ostream& out) {
  JsonObject object;
  object.AddNumber("format", 1).AddText("asOf", health.asOf).AddText("asOfFrom", health.asOfFrom);
  object.AddText("verdict", LowerCase(GetVerdict(health))).AddNumber("exit", GetExitCode(health));
  object.Add("counts", [&](std::string& json) {
    JsonObject counts;
    for (const Severity severity : kWorstFirst) {
      counts.AddNumber(GetWord(severity), CountFindings(health, severity));
    }
    json += counts.Take();
  });
  object.Add("checked", [&](std::string& json) {
    JsonObject counts;
    for (const auto& [table, count] : health.checked) counts.AddNumber(table, count);
    json += counts.Take();
  });
  object.Add("sources",
             [&](std::string& json) { AppendJsonList(json, health.sources, AppendSource); });
  object.Add("findings",
             [&](std::string& json) { AppendJsonList(json, health.findings, AppendFinding); });
  WriteJsonForTerminal(object.Take(), out);
  out << '\n';
}

void WriteHealthNagios(const Health& health, std::ostream& out) {
  std::vector<std::string> titles;
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity != Severity::kNotice) titles.push_back(finding.hits.front().text);
  }
  std::string head = titles.empty() ? fmt::format("checked {}", JoinChecked(health))
                                    : fmt::format("{}", fmt::join(titles, "; "));
  out << GetVerdict(health) << " - " << MakePlain(head) << " |";
  for (const Severity severity : kWorstFirst) {
    out << ' ' << GetWord(severity) << '=' << CountFindings(health, severity);
  }
  out << '\n';
  for (const HealthFinding& finding : health.findings) {
    const HealthHit& title = finding.hits.front();
    out << GetWord(finding.severity) << ": " << MakePlain(title.text + DescribeSuppression(title))
        << '\n';
    for (const HealthHit& hit : finding.hits) {
      out << "  " << MakePlain(fmt::format("{}, {}: {}", hit.rule, hit.id, hit.observed)) << '\n';
    }
  }
}

}  // namespace host
