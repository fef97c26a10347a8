#include "host/formats/difference/difference_formats.h"
#include "host/formats/difference/difference_words.h"
#include "host/formats/difference/report_changes.h"
#include "host/formats/html_text.h"
#include "host/formats/report/report_page.h"
#include "host/text/version.h"

namespace host {
namespace {

constexpr std::size_t kWidestName = 200;

void WriteSide(std::string_view term, const std::string& name, const ComparedSide& side,
               HtmlWriter& html) {
  html.Add("<div><dt>").Text(term).Add("</dt><dd>").ShortText(name, kWidestName);
  html.Add(", as of ").Text(DescribeTime(side));
  html.Add("</dd></div>");
}

}  // namespace

void WriteDifferenceHtml(const NamedDifference& named, const Screen&, std::ostream& out) {
  HtmlWriter html(out);
  html.Add(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
      "style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"referrer\" content=\"no-referrer\">\n<title>Changes since ");
  html.ShortText(named.before, kWidestName).Add(" – ").ShortText(named.after, kWidestName);
  html.Add("</title>\n<style>");
  out << kReportStyle;
  html.Add("</style>\n</head>\n<body>\n<header class=\"page\"><h1>");
  html.ShortText(named.after, kWidestName).Add("</h1><dl class=\"facts\">");
  WriteSide("Before", named.before, named.difference.before, html);
  WriteSide("Now", named.after, named.difference.after, html);
  html.Add("</dl></header>\n<main id=\"main\">");
  WriteChangesSection(
      named, [](std::string_view, const std::string&) { return std::string(); }, html);
  html.Add("</main>\n<footer><p>Made by pqhost ").Text(kVersion).Add(".</p></footer>\n");
  html.Add("</body>\n</html>\n");
}

}  // namespace host
