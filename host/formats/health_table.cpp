// A verdict for a screen:
//
//   WARNING   0 critical, 1 warning, 0 unknown, 0 notice; checked 2 controllers, 4 drives
//             as of 2026-11-18T14:02:55 (the machine's clock, as its controller tells)
//
//   warning   Look at Fan 5: 1140.0 RPM, beyond a limit
//             warning   sensor.threshold, Fan 5: 1140.0 RPM, nc [ipmiutil sensor (SENSORINFO 23)]

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/part_names.h"
#include "host/formats/health_formats.h"
#include "host/formats/health_words.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

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

const char* GetColor(Severity severity) {
  constexpr std::array<const char*, 4> kColors{"", "\x1b[35m", "\x1b[33m", "\x1b[31m"};
  return kColors[static_cast<std::size_t>(severity)];
}

constexpr std::size_t kWordWidth = 10;

/// Lines with a word in front, broken to the screen's width.
class LinesWriter {
 public:
  LinesWriter(const Screen& screen, std::ostream& out) : screen(screen), out(out) {}

  /// All lines from now on are so many columns in.
  void Indent(std::size_t columns) { margin = columns; }

  void Write(std::size_t indent, std::string_view word, std::string_view text,
             const char* color = "") {
    constexpr std::size_t kNarrowest = 20;
    constexpr std::size_t kLeast = 20;
    const std::size_t screenWidth = std::max<std::size_t>(screen.width, kNarrowest);
    std::string lead = std::string(margin + indent, ' ') + PadText(std::string(word), kWordWidth);
    if (lead.size() + kLeast > screenWidth) {  // The text goes below the word.
      lead.erase(lead.find_last_not_of(' ') + 1);
      if (!lead.empty()) WriteLine(std::exchange(lead, "  "), {}, std::exchange(color, ""));
    }
    for (const std::string& line : WrapText(EscapeControls(text), screenWidth - lead.size())) {
      WriteLine(lead, line, std::exchange(color, ""));
      lead.assign(lead.size(), ' ');
    }
  }
  void WriteEmpty() { out << '\n'; }

 private:
  void WriteLine(std::string_view lead, std::string_view text, const char* color) {
    const bool isColored = screen.colors && *color != '\0';
    out << (isColored ? color : "") << lead << (isColored ? "\x1b[0m" : "") << text << '\n';
  }

  const Screen& screen;
  std::ostream& out;
  std::size_t margin = 0;
};

/// The first line of a machine.
void WriteVerdictLine(const Health& health, const std::string& text, LinesWriter& lines) {
  lines.Write(0, GetVerdict(health), text, GetColor(FindWorst(health)));
}

std::string DescribeVerdict(const Health& health) {
  return fmt::format("{}; checked {}", CountBySeverity(health), CountChecked(health));
}

void WriteAsOf(const Health& health, LinesWriter& lines) {
  if (health.asOf.empty()) return;
  lines.Write(0, "", fmt::format("as of {} ({})", health.asOf, health.asOfFrom));
}

void WriteFinding(const HealthFinding& finding, bool isBrief, LinesWriter& lines) {
  const HealthHit& title = finding.hits.front();
  lines.Write(0, GetWord(finding.severity), title.text + DescribeSuppression(title),
              GetColor(finding.severity));
  if (isBrief) return;
  for (const HealthHit& hit : finding.hits) {
    const std::string place = DescribePlace(hit.place);
    lines.Write(kWordWidth, GetWord(hit.severity),
                fmt::format("{}, {}: {}{}{}", hit.rule, hit.id, hit.observed,
                            &hit == &title ? std::string() : DescribeSuppression(hit),
                            place.empty() ? place : fmt::format(" [{}]", place)));
  }
  if (!title.why.empty()) lines.Write(kWordWidth, "why", title.why);
  if (!title.next.empty()) lines.Write(kWordWidth, "next", title.next);
}

/// Notices of one rule and nothing else share a line, so that what matters is seen.
struct SharedNotice {
  std::vector<const HealthFinding*> findings;
};

std::vector<SharedNotice> ShareNotices(const Health& health) {
  std::vector<SharedNotice> shared;
  std::map<std::string_view, std::size_t> places;  // of what a rule's notices share
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity != Severity::kNotice) continue;
    const HealthHit& title = finding.hits.front();
    const bool isAlone = finding.hits.size() == 1 && !title.suppressed;
    if (isAlone) {
      const auto [place, isNew] = places.try_emplace(title.rule, shared.size());
      if (!isNew) {
        shared[place->second].findings.push_back(&finding);
        continue;
      }
    }
    shared.push_back({{&finding}});
  }
  return shared;
}

void WriteNotice(const SharedNotice& notice, bool isBrief, LinesWriter& lines) {
  const HealthFinding& first = *notice.findings.front();
  if (notice.findings.size() == 1) return WriteFinding(first, isBrief, lines);
  std::vector<std::string> others;
  for (const HealthFinding* finding : notice.findings) {
    if (finding == &first) continue;
    const HealthHit& hit = finding->hits.front();
    others.push_back(fmt::format("{} ({})", hit.id, hit.observed));
  }
  const HealthHit& title = first.hits.front();
  lines.Write(0, GetWord(Severity::kNotice),
              fmt::format("{}; likewise {} more {}: {}", title.text, others.size(),
                          NameParts(title.part, others.size()), fmt::join(others, ", ")));
  if (isBrief) return;
  lines.Write(kWordWidth, "rule", title.rule);
  if (!title.why.empty()) lines.Write(kWordWidth, "why", title.why);
  if (!title.next.empty()) lines.Write(kWordWidth, "next", title.next);
}

void WriteFindings(const Health& health, bool isBrief, LinesWriter& lines) {
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity != Severity::kNotice) WriteFinding(finding, isBrief, lines);
  }
  for (const SharedNotice& notice : ShareNotices(health)) WriteNotice(notice, isBrief, lines);
}

/// "vroc: ", or "two-socket-server (NODE31, serial NGR208-0031): ".
std::string NameForPeople(const JudgedMachine& one) {
  std::vector<std::string> more;
  if (!one.name.empty() && one.name != one.machine) more.push_back(one.name);
  if (!one.serial.empty()) more.push_back("serial " + one.serial);
  if (more.empty()) return one.machine + ": ";
  return fmt::format("{} ({}): ", one.machine, fmt::join(more, ", "));
}

}  // namespace

void WriteHealthTable(const Health& health, bool isBrief, const Screen& screen, std::ostream& out) {
  LinesWriter lines(screen, out);
  WriteVerdictLine(health, DescribeVerdict(health), lines);
  WriteAsOf(health, lines);
  if (!health.findings.empty()) lines.WriteEmpty();
  WriteFindings(health, isBrief, lines);
}

void WriteHealthTable(const std::vector<JudgedMachine>& machines, bool isBrief,
                      const Screen& screen, std::ostream& out) {
  constexpr std::size_t kBriefIndent = 2;
  LinesWriter lines(screen, out);
  const Severity worst = FindWorst(machines);
  lines.Write(0, GetVerdict(worst), CountByVerdict(machines), GetColor(worst));
  if (isBrief) lines.WriteEmpty();
  for (const JudgedMachine* one : SortByVerdict(machines)) {
    const Health& health = one->health;
    if (isBrief) {
      WriteVerdictLine(health, NameForPeople(*one) + CountBySeverity(health), lines);
      lines.Indent(kBriefIndent);
    } else {
      lines.WriteEmpty();
      WriteVerdictLine(health, NameForPeople(*one) + DescribeVerdict(health), lines);
      WriteAsOf(health, lines);
    }
    WriteFindings(health, isBrief, lines);
    lines.Indent(0);
  }
}

void WriteHealthSummary(const Health& health, const Screen& screen, std::ostream& out) {
  constexpr std::size_t kMostLines = 8;
  LinesWriter lines(screen, out);
  WriteVerdictLine(health, DescribeVerdict(health), lines);
  std::size_t lineCount = 0;
  std::array<std::size_t, kWorstFirst.size()> leftOut{};  // by severity
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity == Severity::kNotice) continue;
    if (++lineCount <= kMostLines) {
      WriteFinding(finding, /*isBrief=*/true, lines);
    } else {
      ++leftOut[static_cast<std::size_t>(finding.severity)];
    }
  }
  for (const SharedNotice& notice : ShareNotices(health)) {
    if (++lineCount <= kMostLines) {
      WriteNotice(notice, /*isBrief=*/true, lines);
    } else {
      leftOut[static_cast<std::size_t>(Severity::kNotice)] += notice.findings.size();
    }
  }
  std::vector<std::string> counts;
  for (const Severity severity : kWorstFirst) {
    const std::size_t count = leftOut[static_cast<std::size_t>(severity)];
    if (count > 0) counts.push_back(fmt::format("{} {}", count, GetWord(severity)));
  }
  if (counts.empty()) return;
  lines.Write(0, "", fmt::format("and {} more; pqhost health shows all", fmt::join(counts, ", ")));
}

}  // namespace host
