// The report: one HTML file with everything in it, which opens offline. Its first screen is plain
// HTML (report_summary.h); the tools' tables are drawn by the page's own script (report/) from a
// data block.

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <set>
#include <sstream>
#include <vector>

#include "host/answers/assessment.h"
#include "host/collect/table_view.h"
#include "host/formats/collection_summary.h"
#include "host/formats/formats.h"
#include "host/formats/html_text.h"
#include "host/formats/json_buffer.h"
#include "host/formats/packed_data.h"
#include "host/formats/report/report_page.h"
#include "host/formats/report_evidence.h"
#include "host/formats/report_size.h"
#include "host/formats/report_summary.h"
#include "host/formats/row_identity.h"
#include "host/text/json_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

/// A table that asks for one property per line is shown by rows if it has more than this: nobody
/// reads that many rows side by side.
constexpr std::size_t kMaxPropertyRows = 4;

/// Writes JSON that may be inside a script element. No text can end the element, open another or
/// start a comment in it.
void WriteJsonForScript(std::string_view json, std::ostream& out) {
  for (std::size_t at = 0; (at = json.find_first_of("<>")) != std::string_view::npos;) {
    out << json.substr(0, at) << (json[at] == '<' ? "\\u003c" : "\\u003e");
    json.remove_prefix(at + 1);
  }
  out << json;
}

/// The same for a page that goes to a terminal.
void WriteJsonForScriptOnTerminal(std::string_view json, std::ostream& out) {
  std::ostringstream escaped;
  escaped.exceptions(std::ios::badbit);  // Else data for which memory is short is cut.
  WriteJsonForScript(json, escaped);
  WriteJsonForTerminal(escaped.str(), out);
}

/// The script's files as one function, which knows the same unseen characters as a screen: as
/// ranges of a regular expression, in the place @UNSEEN@ of the first file.
void WriteScript(std::ostream& out) {
  constexpr std::string_view kPlace = "@UNSEEN@";
  const std::size_t at = kReportTexts.find(kPlace);
  out << "\"use strict\";\n(() => {\n" << kReportTexts.substr(0, at);
  for (const auto [first, last] : ListUnseenCharacters()) {
    out << fmt::format("\\u{{{:x}}}-\\u{{{:x}}}", static_cast<std::uint32_t>(first),
                       static_cast<std::uint32_t>(last));
  }
  out << kReportTexts.substr(at + kPlace.size()) << kReportTables << kReportScript << "})();\n";
}

class ReportData {
 public:
  /// `parts`: what is shown of each table.
  ReportData(const CollectionView& view, const std::vector<ShownPart>& parts, const Screen& screen,
             std::ostream& out)
      : collection(view.GetCollection()),
        view(view),
        parts(parts),
        json(screen.isTerminal ? &WriteJsonForScriptOnTerminal : &WriteJsonForScript, out) {}

  void Write() {
    json.AppendText("{\"outcome\":", DescribeOutcome(collection));
    // Of a machine, the first screen tells them.
    json += ",\"notes\":";
    json.AppendList(collection.machineIsKnown ? std::vector<std::string>() : collection.problems,
                    &AppendJsonText);
    json += ",\"areas\":[";
    const char* separator = "";
    for (const TableGroup& group : GroupTables(collection)) {
      json += separator;
      WriteArea(group);
      separator = ",\n";
    }
    json += "]}";
    json.Flush();
  }

 private:
  void WriteArea(const TableGroup& group) {
    json.AppendText("{\"title\":", view.Excerpt(group.area));
    json += ",\"modules\":";
    json.AppendList(group.modules, [&](std::string& text, const std::string& module) {
      AppendJsonText(text, view.Excerpt(module));
    });
    json += ",\"tables\":[";
    const char* separator = "";
    for (const std::size_t i : group.tables) {
      json += separator;
      WriteTable(view.ViewTable(collection.tables[i]), parts[i]);
      separator = ",\n";
    }
    json += "]}";
  }

  void WriteTable(const TableView& table, const ShownPart& part) {
    std::vector<std::size_t> shown;  // Whole files are shown below the table.
    for (std::size_t i = 0; i < table.Columns().size(); ++i) {
      if (!table.Columns()[i].hasFiles) shown.push_back(i);
    }
    json.AppendText("{\"class\":", table.ClassName());
    json.AppendText(",\"title\":", table.Title());
    json.AppendText(",\"kind\":", ChooseKind(table, shown.size()));
    json.AppendText(",\"status\":", table.Status().text);
    json += ",\"notes\":";
    json.AppendList(table.Status().notes, &AppendJsonText);
    json += fmt::format(",\"rowCount\":{},\"firstRow\":{},\"columns\":", table.RowCount(),
                        part.firstRow);
    json.AppendList(shown, [&](std::string& text, std::size_t i) {
      const ColumnView& column = table.Columns()[i];
      text += JsonObject().AddText("key", column.key).AddText("label", column.label).Take();
    });
    json += ",\"attachments\":[";
    WriteAttachments(table, part);
    json += "],\"rows\":[";
    WriteRows(table, shown, part);
    json += "]}";
    json.Flush();
  }

  static const char* ChooseKind(const TableView& table, std::size_t columnCount) {
    if (columnCount == 1 && table.Columns().size() == 1 && table.RowCount() > 1) return "log";
    return !table.IsByRow() && table.RowCount() <= kMaxPropertyRows ? "properties" : "rows";
  }

  void WriteRows(const TableView& table, const std::vector<std::size_t>& shown,
                 const ShownPart& part) {
    if (shown.empty()) return;
    for (std::size_t i = part.firstRow; i < table.RowCount(); ++i) {
      const RowView row = table.RowAt(i);
      if (i > part.firstRow) json += ",\n";
      json.AppendList(shown, [&](std::string& text, std::size_t column) {
        if (const std::optional<CellView> cell = row.FindCell(column)) {
          AppendJsonText(text, CutToEnd(cell->Text(), part.mostValueBytes));
        } else {
          text += "null";
        }
      });
      json.Flush();
    }
  }

  void WriteAttachments(const TableView& table, const ShownPart& part) {
    std::set<std::string_view> fileKeys;
    for (const ColumnView& column : table.Columns()) {
      if (column.hasFiles) fileKeys.insert(column.key);
    }
    if (fileKeys.empty()) return;
    const char* separator = "";
    for (std::size_t i = part.firstRow; i < table.RowCount(); ++i) {
      const RowView row = table.RowAt(i);
      for (std::size_t place = 0; place < row.CellCount(); ++place) {
        const CellView cell = row.CellAt(place);
        if (!fileKeys.contains(cell.Key()) || cell.Kind() == CellKind::kNothing) continue;
        const DecodedText text = cell.Text();
        const std::string_view end = CutToEnd(text, part.mostValueBytes);
        json += separator;
        json.AppendText("{\"label\":", cell.Label());
        json.AppendText(",\"filename\":", cell.FileName().value_or(cell.Key()));
        json.AppendText(",\"key\":", cell.Key());
        json += fmt::format(",\"row\":{},\"firstLine\":{}", i + 1, FindFirstLine(text, end));
        json.AppendText(",\"text\":", end);
        json += "}";
        separator = ",\n";
        json.Flush();
      }
    }
  }

  const Collection& collection;
  const CollectionView& view;
  const std::vector<ShownPart>& parts;
  JsonBuffer json;
};

}  // namespace

void WriteHtml(const Collection& collection, const Screen& screen, std::ostream& out) {
  WriteReport(collection, nullptr, screen, out);
}

void WriteReport(const Collection& collection, const NamedDifference* changes, const Screen& screen,
                 std::ostream& out) {
  const std::string nonce = MakeRandomText();  // Used once, for this report's own script.
  const CollectionView view(collection, ChooseAttachments(screen));
  const std::vector<ShownPart> shown = FitIntoReport(collection);
  std::optional<Assessment> assessed;
  if (collection.machineIsKnown) assessed = Assess(collection);
  const Assessment* assessment = assessed ? &*assessed : nullptr;
  HtmlWriter html(out);
  std::string_view page = kReportPage;
  for (std::size_t at = 0; (at = page.find('@')) != std::string_view::npos;) {
    out << page.substr(0, at);
    page.remove_prefix(at);
    const std::string_view place = page.substr(0, page.find('@', 1) + 1);
    page.remove_prefix(place.size());
    if (place == "@NONCE@") {
      out << nonce;
    } else if (place == "@STYLE@") {
      out << kReportStyle;
    } else if (place == "@TITLE@") {
      WriteReportTitle(collection, assessment, html);
    } else if (place == "@HEADER@") {
      WriteReportHeader(collection, html);
    } else if (place == "@SUMMARY@") {
      if (assessment != nullptr) WriteReportSummary(view, shown, *assessment, changes, html);
    } else if (place == "@FOOTER@") {
      WriteReportFooter(view, assessment, html);
    } else if (place == "@SCRIPT@") {
      WriteScript(out);
    } else if (place == "@DATA@") {
      ReportData(view, shown, screen, out).Write();
    } else if (place == "@PACKED@") {
      WritePackedData(collection, assessment, screen, out);
    }
  }
  out << page;
}

}  // namespace host
