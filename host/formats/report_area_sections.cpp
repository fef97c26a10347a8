#include "host/formats/report_area_sections.h"

#include <algorithm>
#include <cstddef>

#include "host/formats/report_size.h"

namespace host {
namespace {

constexpr std::size_t kWidestTile = 160;  ///< in columns of a screen
constexpr std::size_t kWidestProblem = 2000;

/// Areas that few machines have need no tile where they are not there.
bool IsEmptyForGood(const ReportArea& area) {
  return area.parts.empty() && area.tone == Tone::kAbsent &&
         (area.id == "memory" || area.id == "sensors");
}

bool HasNetwork(const Collection& collection) {
  return std::ranges::any_of(collection.tables, IsOfNetwork);
}

/// There is more to see of the area than its tile says.
bool HasMore(const Collection& collection, const ReportArea& area) {
  return !area.parts.empty() || (area.id == "collection" && !collection.problems.empty()) ||
         (area.id == "network" && HasNetwork(collection));
}

void WriteTile(const Collection& collection, const ReportArea& area, HtmlWriter& html) {
  const bool hasMore = HasMore(collection, area);
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

void WriteProblems(const Collection& collection, HtmlWriter& html) {
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

void WriteNetwork(const CollectionView& view, HtmlWriter& html) {
  html.Add("<ul class=\"panel problems\">");
  for (const CollectedTable& table : view.GetCollection().tables) {
    if (!IsOfNetwork(table)) continue;
    Place place;
    place.className = table.className;
    html.Add("<li><a href=\"").Text(MakeAddress(place)).Add("\">");
    html.Text(view.ViewTable(table).Title().View()).Add("</a>: ");
    html.ShortText(table.status.text, kWidestReportText).Add("</li>");
  }
  html.Add("</ul>");
}

}  // namespace

void WriteAreaTiles(const Collection& collection, const std::vector<ReportArea>& areas,
                    HtmlWriter& html) {
  html.Add(
      "<section aria-labelledby=\"areas-title\"><h2 class=\"caption\" id=\"areas-title\">"
      "Everything by area</h2><div class=\"tiles\">");
  for (const ReportArea& area : areas) {
    if (!IsEmptyForGood(area)) WriteTile(collection, area, html);
  }
  html.Add("</div></section>");
}

void WriteAreaSections(const CollectionView& view, const std::vector<ReportArea>& areas,
                       const ReportParts& tables, const EvidenceIndex& evidence, HtmlWriter& html) {
  for (const ReportArea& area : areas) {
    if (!HasMore(view.GetCollection(), area)) continue;
    html.Add("<section class=\"area\" aria-labelledby=\"area-").Text(area.id);
    html.Add("\"><h2 id=\"area-").Text(area.id).Add("\">").Text(area.title);
    html.Add(" <span class=\"mark ").Text(GetStyleClass(area.tone)).Add("\">").Text(area.mark);
    html.Add("</span></h2><p class=\"fact\">").ShortText(area.fact, kWidestReportText).Add("</p>");
    if (area.id == "collection") WriteProblems(view.GetCollection(), html);
    if (area.id == "network") WriteNetwork(view, html);
    tables.WriteArea(area, evidence, html);
    html.Add("</section>");
  }
}

}  // namespace host
