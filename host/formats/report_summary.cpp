#include "host/formats/report_summary.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/answers/parts/part_names.h"
#include "host/answers/tool_versions.h"
#include "host/formats/difference/report_changes.h"
#include "host/formats/health_words.h"
#include "host/formats/machine_summary.h"
#include "host/formats/report_areas.h"
#include "host/formats/report_evidence.h"
#include "host/formats/report_parts.h"
#include "host/text/count_text.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

constexpr std::size_t kOpenFindings = 8;    ///< that are seen at once; the rest folds
constexpr std::size_t kMostFindings = 200;  ///< of the report
constexpr std::size_t kMostEvidence = 12;   ///< of a finding
constexpr std::size_t kWidestText = 400;    ///< in columns of a screen
constexpr std::size_t kWidestQuote = 200;
constexpr std::size_t kMostFindingBytes = std::size_t{1} << 20;

/// The words of the verdict, which are the report's alone.
std::string_view NameVerdict(const Health& health) {
  constexpr std::array<std::string_view, 4> kNames{"Nothing found", "Not known", "Needs attention",
                                                   "Act now"};
  return kNames[static_cast<std::size_t>(health.worst.value_or(Severity::kNotice))];
}

Tone FindVerdictTone(const Health& health) {
  const Severity worst = health.worst.value_or(Severity::kNotice);
  return worst == Severity::kNotice ? Tone::kOk : GetTone(worst);
}

/// "1 critical, 4 warnings, 2 not known"; empty without findings.
std::string CountAlarms(const Health& health) {
  std::vector<std::string> counts;
  const auto add = [&](Severity severity, const char* one, const char* many) {
    const std::size_t count = CountFindings(health, severity);
    if (count > 0) counts.push_back(fmt::format("{} {}", count, count == 1 ? one : many));
  };
  add(Severity::kCritical, "critical", "critical");
  add(Severity::kWarning, "warning", "warnings");
  add(Severity::kUnknown, "not known", "not known");
  return fmt::format("{}", fmt::join(counts, ", "));
}

/// The worst first, then by area; a notice never alarms and comes last.
std::vector<const HealthFinding*> SortFindings(const Health& health) {
  std::vector<const HealthFinding*> findings;
  for (const HealthFinding& finding : health.findings) findings.push_back(&finding);
  std::ranges::stable_sort(findings, [](const HealthFinding* one, const HealthFinding* other) {
    if (one->severity != other->severity) return one->severity > other->severity;
    return RankReportArea(one->hits.front().area) < RankReportArea(other->hits.front().area);
  });
  return findings;
}

/// What logs tell of a part.
struct PartLog {
  std::size_t count = 0;
  std::string_view first;
  std::string_view last;
};
using PartLogs = std::map<std::pair<std::string_view, std::string_view>, PartLog>;

/// Warnings and worse, by table and id of the part.
PartLogs ReadPartLogs(const Parts& parts) {
  PartLogs logs;
  const Events& events = parts.events;
  for (std::size_t row = 0; row < events.size(); ++row) {
    const std::string_view id = events.GetText(row, EventColumn::kPartId);
    if (id.empty() || events.GetInteger(row, EventColumn::kLevel).value_or(0) < 1) continue;
    PartLog& log = logs[{events.GetText(row, EventColumn::kPart), id}];
    ++log.count;
    const std::string_view time = events.GetText(row, EventColumn::kTime);
    if (time.empty()) continue;
    if (log.first.empty() || time < log.first) log.first = time;
    log.last = std::max(log.last, time);
  }
  return logs;
}

class SummaryWriter {
 public:
  SummaryWriter(const CollectionView& view, const std::vector<ShownPart>& shown,
                const Assessment& assessment, const NamedDifference* compared, HtmlWriter& html)
      : collection(view.GetCollection()),
        view(view),
        health(assessment.health),
        html(html),
        areas(ListReportAreas(collection, assessment)),
        findings(SortFindings(health)),
        compared(compared),
        changes(compared == nullptr ? std::nullopt
                                    : std::optional<ReportChanges>(compared->difference)),
        parts(assessment, areas, changes ? &*changes : nullptr),
        evidence(view, shown, ListPlaces()),
        logs(ReadPartLogs(assessment.parts)) {}

  void Write() {
    WriteVerdict();
    if (compared != nullptr) {
      const auto findAddress = [this](std::string_view table, const std::string& id) {
        return parts.FindRowId(table, id);
      };
      WriteChangesSection(*compared, findAddress, html);
    }
    WriteFindings();
    WriteTiles();
    for (const ReportArea& area : areas) WriteArea(area);
  }

 private:
  std::vector<Place> ListPlaces() const {
    std::vector<Place> places = parts.ListPlaces();
    for (const HealthFinding* finding : findings) {
      for (const HealthHit& hit : finding->hits) places.push_back(hit.place);
    }
    return places;
  }

  // --- is it well ---

  std::size_t CountAreas(bool (*fits)(const ReportArea&)) const {
    return static_cast<std::size_t>(std::ranges::count_if(areas, fits));
  }

  void WriteVerdict() {
    const Tone tone = FindVerdictTone(health);
    const std::size_t well = CountAreas([](const ReportArea& a) { return a.tone == Tone::kOk; });
    const std::size_t partly = CountAreas([](const ReportArea& a) { return a.isReadInPart; });
    const std::size_t open = CountAreas([](const ReportArea& a) { return a.isNotChecked; });
    html.Add("<section class=\"verdict ").Text(GetStyleClass(tone));
    html.Add("\" id=\"verdict\" aria-label=\"Verdict\"><span class=\"sign\" aria-hidden=\"true\">");
    html.Text(GetSign(tone)).Add("</span><div><h2>");
    if (tone == Tone::kOk) {
      html.Text(fmt::format("Nothing found in {} of {} areas", well, well + partly + open));
      if (partly > 0) html.Text(fmt::format("; {} could be read in part", partly));
      if (open > 0) html.Text(fmt::format("; {} could not be asked", open));
    } else {
      html.Text(NameVerdict(health)).Add(": ");
      html.ShortText(findings.front()->hits.front().text, kWidestText);
    }
    html.Add("</h2><p>");
    if (tone == Tone::kOk) {
      html.Text(DescribeChecked());
    } else {
      html.Text(CountAlarms(health)).Add("; ");
      html.Text(FormatCount(well, "area")).Add(" without a finding");
      if (partly > 0) html.Add(", ").Number(partly).Add(" read in part");
      if (open > 0) html.Add(", ").Number(open).Add(" not checked");
      html.Add(". Every finding opens to what it was read from.");
    }
    html.Add("</p></div></section>");
  }

  /// What was looked at.
  std::string DescribeChecked() const {
    if (health.checked.empty()) return "Nothing that could be judged was read.";
    std::vector<std::string> kinds;
    for (const auto& [table, count] : health.checked) {
      kinds.push_back(fmt::format("{} {}", NameParts(table, 0), count));
    }
    return fmt::format("Looked at: {}.", fmt::join(kinds, ", "));
  }

  // --- what to do ---

  void WriteFindings() {
    const auto isNotice = [](const HealthFinding* one) {
      return one->severity == Severity::kNotice;
    };
    const auto firstNotice = std::ranges::find_if(findings, isNotice);
    const std::vector<const HealthFinding*> alarms(findings.begin(), firstNotice);
    const std::vector<const HealthFinding*> notices(firstNotice, findings.end());
    html.Add("<section id=\"findings\" aria-labelledby=\"findings-title\">");
    html.Add("<h2 class=\"caption\" id=\"findings-title\">What is wrong</h2>");
    if (alarms.empty()) {
      html.Add("<p class=\"panel none\">The rules find nothing in what was looked at.</p>");
    } else {
      html.Add("<div class=\"panel findings\">");
      WriteSome(alarms, 0, kOpenFindings);
      if (alarms.size() > kOpenFindings) {
        html.Add("<details class=\"more\"><summary>and ").Number(alarms.size() - kOpenFindings);
        html.Add(" more</summary>");
        WriteSome(alarms, kOpenFindings, kMostFindings);
        html.Add("</details>");
      }
      html.Add("</div>");
    }
    if (!notices.empty()) {
      html.Add("<details class=\"panel more notices\"><summary>");
      html.Text(FormatCount(notices.size(), "notice"));
      html.Add(" <span class=\"faint\">that ").Text(notices.size() == 1 ? "raises" : "raise");
      html.Add(" no alarm</span></summary>");
      WriteSome(notices, 0, kMostFindings);
      html.Add("</details>");
    }
    html.Add(
        "<p class=\"on-paper faint\">Of findings that are closed, the evidence is not "
        "printed.</p>");
    html.Add("</section>");
  }

  void WriteSome(const std::vector<const HealthFinding*>& some, std::size_t from,
                 std::size_t most) {
    const std::size_t begin = html.CountBytes();
    std::size_t i = from;
    for (; i < some.size() && i < most && html.CountBytes() - begin < kMostFindingBytes; ++i) {
      WriteFinding(*some[i]);
    }
    if (i < some.size() && most == kMostFindings) {
      html.Add("<p class=\"cut\">").Number(some.size() - i);
      html.Add(" more are left out here; pqhost health shows all of them.</p>");
    }
  }

  void WriteFinding(const HealthFinding& finding) {
    const HealthHit& title = finding.hits.front();
    const Tone tone = GetTone(finding.severity);
    html.Add("<details class=\"finding\"><summary><span class=\"chip ").Text(GetStyleClass(tone));
    html.Add("\"><span aria-hidden=\"true\">").Text(GetSign(tone)).Add(" </span>");
    html.Text(NameSeverity(finding.severity)).Add("</span><span class=\"finding-text\"><b>");
    html.ShortText(title.text, kWidestText).Add("</b><span class=\"sub\">");
    html.ShortText(title.why, kWidestText).Add(" ").ShortText(title.next, kWidestText);
    html.Add("</span></span><span class=\"where\">").Text(NameArea(title.area));
    html.Add("</span></summary><div class=\"proof\"><dl><dt>Read from</dt><dd><ul>");
    for (std::size_t i = 0; i < finding.hits.size() && i < kMostEvidence; ++i) {
      WriteEvidence(finding.hits[i]);
    }
    html.Add("</ul>");
    if (finding.hits.size() > kMostEvidence) {
      html.Add("<p class=\"cut\">and ").Number(finding.hits.size() - kMostEvidence);
      html.Add(" more, which pqhost health shows</p>");
    }
    html.Add("</dd>");
    WritePart(title);
    html.Add("<dt>Rule</dt><dd>").Text(title.rule).Add("</dd></dl></div></details>");
  }

  void WriteEvidence(const HealthHit& hit) {
    const Evidence found = evidence.Find(hit.place);
    html.Add("<li>");
    if (!found.address.empty()) {
      html.Add("<a class=\"evidence\" href=\"").Text(found.address).Add("\">");
      html.ShortText(found.where, kWidestText).Add("</a>: ");
    } else if (!found.where.empty()) {
      html.ShortText(found.where, kWidestText).Add(": ");
    }
    html.ShortText(hit.observed, kWidestText);
    if (hit.severity == Severity::kNotice) html.Add(" <span class=\"faint\">(notice)</span>");
    if (!found.quote.empty())
      html.Add("<code>").ShortText(found.quote, kWidestQuote).Add("</code>");
    html.Add("</li>");
  }

  void WritePart(const HealthHit& title) {
    const std::string row = parts.FindRowId(title.part, title.id);
    if (!row.empty()) {
      html.Add("<dt>Part</dt><dd><a href=\"#")
          .Text(row)
          .Add("\">")
          .ShortText(title.id, kWidestText);
      html.Add("</a> in ").Text(NameArea(title.area)).Add("</dd>");
    }
    const auto log = logs.find({title.part, title.id});
    if (log == logs.end()) return;
    const PartLog& entries = log->second;
    html.Add("<dt>In logs</dt><dd>");
    html.Text(FormatCount(entries.count, "warning")).Add(" or worse");
    if (!entries.first.empty() && entries.first == entries.last) {
      html.Add(", on ").Text(entries.first);
    } else if (!entries.first.empty()) {
      html.Add(", from ").Text(entries.first).Add(" to ").Text(entries.last);
    }
    html.Add("</dd>");
  }

  static std::string_view NameArea(std::string_view id) {
    const std::string_view title = FindReportAreaTitle(id);
    return title.empty() ? id : title;
  }

  // --- everything by area ---

  void WriteTiles() {
    html.Add(
        "<section aria-labelledby=\"areas-title\"><h2 class=\"caption\" id=\"areas-title\">"
        "Everything by area</h2><div class=\"tiles\">");
    for (const ReportArea& area : areas) {
      if (!IsEmptyForGood(area)) WriteTile(area);
    }
    html.Add("</div></section>");
  }

  void WriteTile(const ReportArea& area) {
    const bool hasMore = HasMore(area);
    if (hasMore) {
      html.Add("<a href=\"#area-").Text(area.id).Add("\" class=\"tile ");
    } else {
      html.Add("<div class=\"tile ");
    }
    html.Text(GetStyleClass(area.tone)).Add("\"><span class=\"tile-head\"><b>").Text(area.title);
    html.Add("</b><span class=\"mark\">").Text(area.mark);
    html.Add("</span></span><small>").ShortText(area.fact, kWidestTile).Add("</small>");
    if (hasMore) {
      html.Add("</a>");
    } else {
      html.Add("</div>");
    }
  }

  /// Areas that few machines have need no tile where they are not there.
  static bool IsEmptyForGood(const ReportArea& area) {
    return area.parts.empty() && area.tone == Tone::kAbsent &&
           (area.id == "memory" || area.id == "sensors");
  }

  /// There is more to see of the area than its tile says.
  bool HasMore(const ReportArea& area) const {
    return !area.parts.empty() || (area.id == "collection" && !collection.problems.empty()) ||
           (area.id == "network" && HasNetwork());
  }

  void WriteArea(const ReportArea& area) {
    if (!HasMore(area)) return;
    html.Add("<section class=\"area\" aria-labelledby=\"area-").Text(area.id);
    html.Add("\"><h2 id=\"area-").Text(area.id).Add("\">").Text(area.title);
    html.Add(" <span class=\"mark ").Text(GetStyleClass(area.tone)).Add("\">").Text(area.mark);
    html.Add("</span></h2><p class=\"fact\">").ShortText(area.fact, kWidestText).Add("</p>");
    if (area.id == "collection") WriteProblems();
    if (area.id == "network") WriteNetwork();
    parts.WriteArea(area, evidence, html);
    html.Add("</section>");
  }

  void WriteProblems() {
    constexpr std::size_t kMostProblems = 100;
    if (collection.problems.empty()) return;
    html.Add("<ul class=\"panel problems\">");
    for (std::size_t i = 0; i < std::min(collection.problems.size(), kMostProblems); ++i) {
      html.Add("<li>").ShortText(collection.problems[i], kWidestProblem).Add("</li>");
    }
    html.Add("</ul>");
    if (collection.problems.size() > kMostProblems) {
      html.Add("<p class=\"cut\">and ").Number(collection.problems.size() - kMostProblems);
      html.Add(" more, on standard error</p>");
    }
  }

  bool HasNetwork() const { return std::ranges::any_of(collection.tables, IsOfNetwork); }

  void WriteNetwork() {
    html.Add("<ul class=\"panel problems\">");
    for (const CollectedTable& table : collection.tables) {
      if (!IsOfNetwork(table)) continue;
      Place place;
      place.className = table.className;
      html.Add("<li><a href=\"").Text(MakeAddress(place)).Add("\">");
      html.Text(view.ViewTable(table).Title().View()).Add("</a>: ");
      html.ShortText(table.status.text, kWidestText).Add("</li>");
    }
    html.Add("</ul>");
  }

  static constexpr std::size_t kWidestTile = 160;
  static constexpr std::size_t kWidestProblem = 2000;

  const Collection& collection;
  const CollectionView& view;
  const Health& health;
  HtmlWriter& html;
  const std::vector<ReportArea> areas;
  const std::vector<const HealthFinding*> findings;
  const NamedDifference* compared;
  const std::optional<ReportChanges> changes;
  const ReportParts parts;
  const EvidenceIndex evidence;
  const PartLogs logs;
};

void WriteFact(std::string_view name, std::string_view value, HtmlWriter& html) {
  if (value.empty()) return;
  constexpr std::size_t kWidestFact = 200;
  html.Add("<div><dt>")
      .Text(name)
      .Add("</dt><dd>")
      .ShortText(value, kWidestFact)
      .Add("</dd></div>");
}

}  // namespace

void WriteReportTitle(const Collection& collection, const Assessment* assessment,
                      HtmlWriter& html) {
  const std::string name = NameMachine(collection);
  if (assessment == nullptr) {
    html.ShortText(name, kWidestText).Add(" – server report");
    return;
  }
  const std::string counts = CountAlarms(assessment->health);
  html.Text(counts.empty() ? std::string(NameVerdict(assessment->health)) : counts);
  html.Add(" – ").ShortText(name, kWidestText);
}

void WriteReportHeader(const Collection& collection, HtmlWriter& html) {
  html.Add("<header class=\"page\"><h1>").ShortText(NameMachine(collection), kWidestText);
  html.Add("</h1>");
  html.Add("<dl class=\"facts\">");
  for (const auto& [name, value] : ListMachineFacts(collection)) WriteFact(name, value, html);
  const auto& recordedAt = collection.machine.recordedAt;
  html.Add("</dl><div class=\"tools\" id=\"tools\"");
  if (collection.machineIsKnown && recordedAt) {
    html.Add(" data-recorded=\"").Text(FormatIsoTime(*recordedAt)).Add("\"");
  }
  html.Add("></div></header>");
}

void WriteReportSummary(const CollectionView& view, const std::vector<ShownPart>& shown,
                        const Assessment& assessment, const NamedDifference* changes,
                        HtmlWriter& html) {
  SummaryWriter(view, shown, assessment, changes, html).Write();
}

void WriteReportFooter(const CollectionView& view, const Assessment* assessment, HtmlWriter& html) {
  const Collection& collection = view.GetCollection();
  html.Add("<footer>");
  if (assessment != nullptr) {
    const MachineFacts& machine = collection.machine;
    html.Add("<h2>About this report</h2><dl class=\"facts\">");
    WriteFact("From", machine.recorded ? "a recording" : "this machine, live", html);
    WriteFact("Judged as of",
              fmt::format("{} ({})", assessment->health.asOf, assessment->health.asOfFrom), html);
    WriteFact("Language", std::to_string(machine.languageId), html);
    WriteFact("Code page", std::to_string(machine.PrintedCodePage()), html);
    WriteFact("Host program", view.HostExecutable(), html);
    for (const ToolVersion& tool : FindToolVersions(collection)) {
      WriteFact(tool.tool, view.Excerpt(tool.version), html);
    }
    html.Add("</dl>");
  }
  html.Add("<p>Made ").Text(FormatTimeForPeople(collection.collected)).Add(" by pqhost ");
  html.Text(kVersion).Add(".</p></footer>");
}

}  // namespace host
