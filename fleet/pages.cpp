#include "fleet/pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "host/formats/html_text.h"
#include "host/formats/report/report_page.h"
#include "host/text/version.h"

namespace fleet {
namespace {

using host::EncodeForAddress;
using host::HtmlWriter;

constexpr std::size_t kRowsOfPage = 100;
constexpr std::size_t kWidestText = 300;

constexpr std::string_view kMoreStyle = R"(
nav.pages { display: flex; flex-wrap: wrap; gap: .2rem 1.1rem; }
nav.pages [aria-current] { font-weight: 600; color: inherit; text-decoration: none; }
form.bar { border: 0; padding: .8rem 0; }
select { font: inherit; color: inherit; background: var(--panel); border: 1px solid var(--line); border-radius: 6px; padding: .3rem; }
.scroll { max-height: none; }
.chip { white-space: nowrap; }
.tiles { margin-top: .8rem; }
td { white-space: normal; overflow-wrap: break-word; }
td.number, th.number { text-align: right; white-space: nowrap; }
td.time { white-space: nowrap; }
.next { padding: .6rem .9rem; margin: 0; }
)";

/// The severities, as the table of servers numbers them.
constexpr std::array<std::string_view, 5> kVerdicts = {"critical", "warning", "unknown", "ok",
                                                       "waiting"};

std::string FindWord(const PageWords& words, const std::string& name) {
  const auto found = words.find(name);
  return found == words.end() ? std::string() : found->second;
}

/// `path` with these words; those that are empty are left out.
std::string WriteAddress(std::string_view path, const PageWords& words) {
  std::string address(path);
  char sign = '?';
  for (const auto& [name, value] : words) {
    if (value.empty()) continue;
    address += fmt::format("{}{}={}", std::exchange(sign, '&'), name, EncodeForAddress(value));
  }
  return address;
}

/// A statement that grows with its values.
class Question {
 public:
  explicit Question(std::string sql) : sql(std::move(sql)) {}

  Question& Add(std::string_view text) {
    sql += text;
    return *this;
  }
  Question& Put(std::string value) {
    values.emplace_back(std::move(value));
    sql += fmt::format("${}", values.size());
    return *this;
  }
  Answer Ask(Connection& connection) const { return connection.Ask(sql, values); }

 private:
  std::string sql;
  std::vector<Value> values;
};

class PageWriter {
 public:
  explicit PageWriter(std::string_view title, std::string_view current = {}) : html(out) {
    out.exceptions(std::ios::badbit);  // Else a page for which memory is short is cut.
    html.Add(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>");
    html.ShortText(title, kWidestText);
    html.Add(
        "</title>\n<link rel=\"icon\" href=\"data:,\">\n"
        "<link rel=\"stylesheet\" href=\"style.css\">\n</head>\n<body>\n"
        "<a class=\"skip\" href=\"#main\">To the content</a><header class=\"page\"><h1>");
    html.ShortText(title, kWidestText).Add("</h1><nav class=\"pages\" aria-label=\"Pages\">");
    for (const auto& [address, name] : kPages) {
      html.Add("<a href=\"").Text(address).Add("\"");
      if (address == current) html.Add(" aria-current=\"page\"");
      html.Add(">").Text(name).Add("</a>");
    }
    html.Add("</nav></header>\n<main id=\"main\" tabindex=\"-1\">\n");
  }

  HtmlWriter& Html() { return html; }

  void Cell(std::string_view text) { html.Add("<td>").ShortText(text, kWidestText).Add("</td>"); }
  void NumberCell(std::string_view text) {
    html.Add("<td class=\"number\">").Text(text).Add("</td>");
  }
  void TimeCell(std::string_view text) { html.Add("<td class=\"time\">").Text(text).Add("</td>"); }

  void VerdictCell(std::string_view verdict) {
    html.Add("<td><span class=\"chip ").Text(ChooseTone(verdict)).Add("\">").Text(verdict);
    html.Add("</span></td>");
  }

  void ServerCell(const Answer& answer, std::size_t row, std::size_t server, std::size_t site) {
    const std::string address =
        WriteAddress("server", {{"name", std::string(answer.At(row, server))},
                                {"site", std::string(answer.At(row, site))}});
    html.Add("<th scope=\"row\"><a href=\"").Text(address).Add("\">");
    html.ShortText(answer.At(row, server), kWidestText).Add("</a></th>");
  }

  /// `columns` that begin with a # are of numbers.
  void BeginTable(std::string_view caption, const std::vector<std::string_view>& columns) {
    html.Add(
        "<div class=\"panel\"><div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"");
    html.Text(caption).Add("\"><table><thead><tr>");
    for (std::string_view column : columns) {
      const bool isNumber = column.starts_with('#');
      if (isNumber) column.remove_prefix(1);
      html.Add("<th scope=\"col\"");
      if (isNumber) html.Add(" class=\"number\"");
      html.Add(">").Text(column).Add("</th>");
    }
    html.Add("</tr></thead><tbody>");
  }
  void EndTable() { html.Add("</tbody></table></div></div>\n"); }

  void Link(std::string_view address, std::string_view text) {
    html.Add("<p class=\"next\"><a href=\"").Text(address).Add("\">").Text(text).Add("</a></p>");
  }

  static std::string_view ChooseTone(std::string_view verdict) {
    const auto* const found = std::find(kVerdicts.begin(), kVerdicts.end() - 1, verdict);
    return found == kVerdicts.end() - 1 ? "absent" : *found;
  }

  Page Take(int status = 200) {
    html.Add("</main>\n<footer><p>Times are in UTC. Made by pqfleet ").Text(host::kVersion);
    html.Add(".</p></footer>\n</body>\n</html>\n");
    return {status, std::move(out).str()};
  }

 private:
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kPages = {
      {{"./", "Servers"}, {"drives", "Growing errors"}, {"silent", "Silent"}, {"queue", "Queue"}}};

  std::ostringstream out;
  HtmlWriter html;
};

void WriteTiles(Connection& connection, PageWriter& page) {
  const Answer counts = connection.Ask("select severity, count(*) from servers group by 1");
  std::array<std::int64_t, kVerdicts.size()> numbers{};
  for (std::size_t row = 0; row < counts.RowCount(); ++row) {
    const auto severity = static_cast<std::size_t>(counts.NumberAt(row, 0));
    if (severity < numbers.size()) numbers[severity] = counts.NumberAt(row, 1);
  }
  page.Html().Add("<div class=\"tiles\">");
  for (std::size_t i = 0; i < kVerdicts.size(); ++i) {
    page.Html().Add("<a class=\"tile ").Text(PageWriter::ChooseTone(kVerdicts[i]));
    page.Html()
        .Add("\" href=\"")
        .Text(WriteAddress("./", {{"verdict", std::string(kVerdicts[i])}}));
    page.Html().Add("\"><span class=\"tile-head\"><b>").Text(std::to_string(numbers[i]));
    page.Html().Add("</b><span class=\"mark\">").Text(kVerdicts[i]).Add("</span></span></a>");
  }
  page.Html().Add("</div>\n");
}

void WriteSearch(const PageWords& words, PageWriter& page) {
  HtmlWriter& html = page.Html();
  html.Add(
      "<form class=\"bar\" role=\"search\"><label>Server <input type=\"search\" name=\"q\" "
      "value=\"");
  html.Text(FindWord(words, "q")).Add("\"></label><label>Site <input name=\"site\" value=\"");
  html.Text(FindWord(words, "site")).Add("\"></label><label>Verdict <select name=\"verdict\">");
  html.Add("<option value=\"\">all</option>");
  for (const std::string_view verdict : kVerdicts) {
    html.Add("<option");
    if (verdict == FindWord(words, "verdict")) html.Add(" selected");
    html.Add(">").Text(verdict).Add("</option>");
  }
  html.Add("</select></label><button>Find</button> <a href=\"./\">All servers</a></form>\n");
}

/// Where the next page begins: after this row of the index. The name, last, may have colons.
std::string WriteMark(const Answer& answer, std::size_t row) {
  return fmt::format("{}:{}:{}", answer.At(row, 0), answer.At(row, 1), answer.At(row, 2));
}

/// The rows of servers after `mark`, in the order of an index.
Answer FindServers(const PageWords& words, Connection& connection) {
  Question question(
      "select v.severity, v.id, v.server, v.site, to_char(n.taken, 'YYYY-MM-DD HH24:MI'),"
      "  n.critical, n.warning, n.unknown, n.reasons[1], n.note from ("
      "  select severity, server_id as id, server, site from servers where true");
  const std::string mark = FindWord(words, "after");
  const std::size_t first = mark.find(':');
  const std::size_t second = first == std::string::npos ? first : mark.find(':', first + 1);
  if (second != std::string::npos) {
    question.Add(" and (severity, server, server_id) > (")
        .Put(mark.substr(0, first))
        .Add("::smallint, ");
    question.Put(mark.substr(second + 1)).Add(", ");
    question.Put(mark.substr(first + 1, second - first - 1)).Add("::int)");
  }
  const std::string verdict = FindWord(words, "verdict");
  const auto* const severity = std::find(kVerdicts.begin(), kVerdicts.end(), verdict);
  if (severity != kVerdicts.end()) {
    question.Add(" and severity = ").Put(std::to_string(severity - kVerdicts.begin()));
  }
  if (const std::string site = FindWord(words, "site"); !site.empty()) {
    question.Add(" and site = ").Put(site);
  }
  if (const std::string text = FindWord(words, "q"); !text.empty()) {
    question.Add(" and position(lower(").Put(text).Add(") in lower(server)) > 0");
  }
  question.Add(fmt::format(
      "  order by severity, server, server_id limit {}) v "
      "left join lateral (select * from verdict_now w where w.server_id = v.id limit 1) n on true "
      "order by v.severity, v.server, v.id",
      kRowsOfPage + 1));
  return question.Ask(connection);
}

Page MakeServersPage(const PageWords& words, Connection& connection) {
  PageWriter page("Servers", "./");
  WriteTiles(connection, page);
  WriteSearch(words, page);
  const Answer answer = FindServers(words, connection);
  page.BeginTable("Servers", {"Server", "Site", "Verdict", "Why", "#Critical", "#Warning",
                              "#Unknown", "Recorded"});
  const std::size_t shown = std::min(answer.RowCount(), kRowsOfPage);
  for (std::size_t row = 0; row < shown; ++row) {
    page.Html().Add("<tr>");
    page.ServerCell(answer, row, 2, 3);
    page.Cell(answer.At(row, 3));
    page.VerdictCell(kVerdicts.at(static_cast<std::size_t>(answer.NumberAt(row, 0))));
    page.Cell(answer.At(row, 8));
    for (const std::size_t column : {5, 6, 7}) page.NumberCell(answer.At(row, column));
    // With a note, it is when the recording came.
    page.TimeCell(answer.IsNull(row, 9) ? answer.At(row, 4) : "not known");
    page.Html().Add("</tr>\n");
  }
  page.EndTable();
  if (shown == 0) page.Html().Add("<p class=\"none\">No server is like that.</p>");
  if (shown < answer.RowCount()) {
    PageWords next = words;
    next["after"] = WriteMark(answer, shown - 1);
    page.Link(WriteAddress("./", next), "Next servers");
  }
  return page.Take();
}

void WriteFindings(const std::string& name, const std::string& site, Connection& connection,
                   PageWriter& page) {
  const Answer findings = connection.Ask(
      "select severity, text from findings where server = $1 and site = $2 order by position",
      {name, site});
  page.Html().Add("<h2>Findings</h2>\n");
  page.BeginTable("Findings", {"Severity", "Finding"});
  for (std::size_t row = 0; row < findings.RowCount(); ++row) {
    page.Html().Add("<tr>");
    page.VerdictCell(findings.At(row, 0));
    page.Cell(findings.At(row, 1));
    page.Html().Add("</tr>\n");
  }
  page.EndTable();
}

void WriteHistory(const PageWords& words, const std::string& id, Connection& connection,
                  PageWriter& page) {
  Question question(
      "select to_char(taken, 'YYYY-MM-DD HH24:MI'), taken, verdict, critical, warning, unknown,"
      "  reasons[1], note, recording from verdict_history where server_id = ");
  question.Put(id);
  if (const std::string before = FindWord(words, "before"); !before.empty()) {
    question.Add(" and taken < ").Put(before).Add("::timestamptz");
  }
  question.Add(fmt::format(" order by taken desc limit {}", kRowsOfPage + 1));
  const Answer answer = question.Ask(connection);
  page.Html().Add("<h2>History</h2>\n");
  page.BeginTable("History",
                  {"Recorded", "Verdict", "Why", "#Critical", "#Warning", "#Unknown", "Note"});
  const std::size_t shown = std::min(answer.RowCount(), kRowsOfPage);
  const PageWords server = {{"name", FindWord(words, "name")}, {"site", FindWord(words, "site")}};
  for (std::size_t row = 0; row < shown; ++row) {
    PageWords report = server;
    report["at"] = answer.At(row, 1);
    page.Html().Add("<tr><th scope=\"row\"><a href=\"").Text(WriteAddress("report", report));
    page.Html().Add("\">").Text(answer.At(row, 0)).Add("</a></th>");
    page.VerdictCell(answer.At(row, 2));
    page.Cell(answer.At(row, 6));
    for (const std::size_t column : {3, 4, 5}) page.NumberCell(answer.At(row, column));
    page.Cell(answer.At(row, 7));
    page.Html().Add("</tr>\n");
  }
  page.EndTable();
  if (shown < answer.RowCount()) {
    PageWords older = server;
    older["before"] = answer.At(shown - 1, 1);
    page.Link(WriteAddress("server", older), "Older recordings");
  }
}

Page MakeServerPage(const PageWords& words, Connection& connection) {
  const std::string name = FindWord(words, "name");
  const std::string site = FindWord(words, "site");
  const Answer server = connection.Ask(
      "select server_id, verdict, to_char(received, 'YYYY-MM-DD HH24:MI') from servers "
      "where server = $1 and site = $2",
      {name, site});
  if (server.RowCount() == 0) return MakeErrorPage(404, "There is no such server.");
  PageWriter page(name);
  const std::string verdict(server.IsNull(0, 1) ? kVerdicts.back() : server.At(0, 1));
  HtmlWriter& html = page.Html();
  html.Add("<div class=\"verdict ").Text(PageWriter::ChooseTone(verdict)).Add("\"><div><h2>");
  html.Text(verdict).Add("</h2><p>Site ").ShortText(site, kWidestText);
  html.Add("; the last recording came at ").Text(server.At(0, 2));
  html.Add(". <a href=\"").Text(WriteAddress("report", {{"name", name}, {"site", site}}));
  html.Add("\">Its report</a></p></div></div>\n");
  const std::string id(server.At(0, 0));
  WriteFindings(name, site, connection, page);
  WriteHistory(words, id, connection, page);
  return page.Take();
}

Page MakeDrivesPage(const PageWords&, Connection& connection) {
  const Answer answer = connection.Ask(
      fmt::format("select server, site, drive, controller, serial, model, firmware,"
                  "  media_errors_before, media_errors, to_char(before, 'YYYY-MM-DD') "
                  "from growing_drives order by grown desc, server_id, drive limit {}",
                  kRowsOfPage));
  PageWriter page("Drives that grow errors", "drives");
  page.Html().Add(
      "<p class=\"faint\">Media errors now, and in the oldest recording of a month before.</p>\n");
  page.BeginTable("Drives", {"Server", "Site", "Drive", "Serial", "Model", "Firmware", "#Before",
                             "#Now", "Since"});
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    page.Html().Add("<tr>");
    page.ServerCell(answer, row, 0, 1);
    for (const std::size_t column : {1, 2, 4, 5, 6}) page.Cell(answer.At(row, column));
    for (const std::size_t column : {7, 8}) page.NumberCell(answer.At(row, column));
    page.TimeCell(answer.At(row, 9));
    page.Html().Add("</tr>\n");
  }
  page.EndTable();
  if (answer.RowCount() == 0) page.Html().Add("<p class=\"none\">There is none.</p>");
  if (answer.RowCount() == kRowsOfPage) {
    page.Html().Add(
        "<p class=\"next\">Those that grow most. All: SELECT * FROM growing_drives</p>");
  }
  return page.Take();
}

Page MakeSilentPage(const PageWords& words, Connection& connection) {
  Question question(
      "select server, site, to_char(taken, 'YYYY-MM-DD HH24:MI'),"
      "  to_char(received, 'YYYY-MM-DD HH24:MI'), received,"
      "  extract(epoch from silent_for)::bigint / 86400, server_id from silent where true");
  const std::string mark = FindWord(words, "after");
  if (const std::size_t space = mark.rfind(' '); space != std::string::npos) {
    question.Add(" and (received, server_id) > (").Put(mark.substr(0, space));
    question.Add("::timestamptz, ").Put(mark.substr(space + 1)).Add("::int)");
  }
  question.Add(fmt::format(" order by received, server_id limit {}", kRowsOfPage + 1));
  const Answer answer = question.Ask(connection);
  PageWriter page("Silent servers", "silent");
  page.Html().Add("<p class=\"faint\">Nothing came of them for 36 hours.</p>\n");
  page.BeginTable("Silent servers", {"Server", "Site", "Last recorded", "Last received", "#Days"});
  const std::size_t shown = std::min(answer.RowCount(), kRowsOfPage);
  for (std::size_t row = 0; row < shown; ++row) {
    page.Html().Add("<tr>");
    page.ServerCell(answer, row, 0, 1);
    page.Cell(answer.At(row, 1));
    page.TimeCell(answer.At(row, 2));
    page.TimeCell(answer.At(row, 3));
    page.NumberCell(answer.At(row, 5));
    page.Html().Add("</tr>\n");
  }
  page.EndTable();
  if (shown == 0) page.Html().Add("<p class=\"none\">There is none.</p>");
  if (shown < answer.RowCount()) {
    page.Link(WriteAddress("silent", {{"after", fmt::format("{} {}", answer.At(shown - 1, 4),
                                                            answer.At(shown - 1, 6))}}),
              "Next servers");
  }
  return page.Take();
}

Page MakeQueuePage(const PageWords&, Connection& connection) {
  const Answer queue = connection.Ask(
      "select ready, running, parked, done_last_minute,"
      "  to_char(oldest_waiting, 'YYYY-MM-DD HH24:MI') from queue");
  PageWriter page("Queue", "queue");
  page.BeginTable("Recordings",
                  {"#Ready", "#Running", "#Parked", "#Done in the last minute", "Waiting since"});
  page.Html().Add("<tr>");
  for (const std::size_t column : {0, 1, 2, 3}) page.NumberCell(queue.At(0, column));
  page.TimeCell(queue.At(0, 4));
  page.Html().Add("</tr>");
  page.EndTable();
  const Answer parked = connection.Ask(fmt::format(
      "select recording, reason, servers[1], bytes, to_char(stored, 'YYYY-MM-DD HH24:MI')"
      " from parked order by stored desc limit {}",
      kRowsOfPage));
  page.Html().Add("<h2>Parked</h2>\n");
  page.BeginTable("Parked recordings", {"Recording", "Why", "Server", "#Bytes", "Stored"});
  for (std::size_t row = 0; row < parked.RowCount(); ++row) {
    constexpr std::size_t kShownDigits = 12;
    page.Html().Add("<tr>");
    page.Cell(parked.At(row, 0).substr(0, kShownDigits));
    page.Cell(parked.At(row, 1));
    page.Cell(parked.At(row, 2));
    page.NumberCell(parked.At(row, 3));
    page.TimeCell(parked.At(row, 4));
    page.Html().Add("</tr>\n");
  }
  page.EndTable();
  return page.Take();
}

}  // namespace

Page MakePage(const std::string& path, const PageWords& words, Connection& connection) {
  using Make = Page (*)(const PageWords& words, Connection& connection);
  static const std::map<std::string, Make> kMakers = {{"/", &MakeServersPage},
                                                      {"/server", &MakeServerPage},
                                                      {"/drives", &MakeDrivesPage},
                                                      {"/silent", &MakeSilentPage},
                                                      {"/queue", &MakeQueuePage}};
  const auto found = kMakers.find(path);
  if (found == kMakers.end()) return MakeErrorPage(404, "There is no such page.");
  try {
    return found->second(words, connection);
  } catch (const DatabaseFailure& failure) {
    if (!failure.IsOfValues()) throw;
    return MakeErrorPage(400, fmt::format("This address means nothing: {}", failure.what()));
  }
}

Page MakeErrorPage(int status, const std::string& text) {
  PageWriter page("pqfleet");
  page.Html().Add("<p class=\"none\">").ShortText(text, kWidestText).Add("</p>");
  return page.Take(status);
}

std::string GetPageStyle() { return std::string(host::kReportStyle) + std::string(kMoreStyle); }

}  // namespace fleet
