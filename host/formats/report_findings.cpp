#include "host/formats/report_findings.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "host/formats/report_areas.h"
#include "host/formats/report_size.h"
#include "host/text/count_text.h"

namespace host {
namespace {

constexpr std::size_t kOpenFindings = 8;    ///< that are seen at once; the rest folds
constexpr std::size_t kMostFindings = 200;  ///< of the report
constexpr std::size_t kMostEvidence = 12;   ///< of a finding
constexpr std::size_t kWidestQuote = 200;
constexpr std::size_t kMostFindingBytes = std::size_t{1} << 20;

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

std::string_view NameReportArea(std::string_view id) {
  const std::string_view title = FindReportAreaTitle(id);
  return title.empty() ? id : title;
}

class FindingsWriter {
 public:
  FindingsWriter(const std::vector<const HealthFinding*>& findings, const FindingSources& sources,
                 HtmlWriter& html)
      : findings(findings), sources(sources), logs(ReadPartLogs(sources.parts)), html(html) {}

  void Write() {
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

 private:
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
    html.ShortText(title.text, kWidestReportText).Add("</b><span class=\"sub\">");
    html.ShortText(title.why, kWidestReportText).Add(" ").ShortText(title.next, kWidestReportText);
    html.Add("</span></span><span class=\"where\">").Text(NameReportArea(title.area));
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
    const Evidence found = sources.evidence.Find(hit.place);
    html.Add("<li>");
    if (!found.address.empty()) {
      html.Add("<a class=\"evidence\" href=\"").Text(found.address).Add("\">");
      html.ShortText(found.where, kWidestReportText).Add("</a>: ");
    } else if (!found.where.empty()) {
      html.ShortText(found.where, kWidestReportText).Add(": ");
    }
    html.ShortText(hit.observed, kWidestReportText);
    if (hit.severity == Severity::kNotice) html.Add(" <span class=\"faint\">(notice)</span>");
    if (!found.quote.empty())
      html.Add("<code>").ShortText(found.quote, kWidestQuote).Add("</code>");
    html.Add("</li>");
  }

  void WritePart(const HealthHit& title) {
    const std::string row = sources.tables.FindRowId(title.part, title.id);
    if (!row.empty()) {
      html.Add("<dt>Part</dt><dd><a href=\"#")
          .Text(row)
          .Add("\">")
          .ShortText(title.id, kWidestReportText);
      html.Add("</a> in ").Text(NameReportArea(title.area)).Add("</dd>");
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

  const std::vector<const HealthFinding*>& findings;
  const FindingSources& sources;
  const PartLogs logs;
  HtmlWriter& html;
};

}  // namespace

std::vector<const HealthFinding*> SortReportFindings(const Health& health) {
  std::vector<const HealthFinding*> findings;
  for (const HealthFinding& finding : health.findings) findings.push_back(&finding);
  std::ranges::stable_sort(findings, [](const HealthFinding* one, const HealthFinding* other) {
    if (one->severity != other->severity) return one->severity > other->severity;
    return RankReportArea(one->hits.front().area) < RankReportArea(other->hits.front().area);
  });
  return findings;
}

void WriteReportFindings(const std::vector<const HealthFinding*>& findings,
                         const FindingSources& sources, HtmlWriter& html) {
  FindingsWriter(findings, sources, html).Write();
}

}  // namespace host
