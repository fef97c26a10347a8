// A single named table is plain CSV: a head with the columns' labels, then the rows. Otherwise
// every table is a section of its own, with the class as first column, an empty line between them.

#include <map>

#include "host/collect/row_cells.h"
#include "host/formats/formats.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

class CsvWriter {
 public:
  CsvWriter(const Collection& collection, const Screen& screen, std::ostream& out)
      : decode(collection.machine.codePage),
        escapes(screen.isTerminal),
        withClass(!collection.tablesNamed || collection.tables.size() != 1),
        out(out) {}

  void Write(const CollectedTable& table) {
    if (table.rows == nullptr) return;
    if (withClass && !first) EndRecord();
    first = false;
    WriteHead(*table.rows);
    RowCells cells(*table.rows);
    for (const Row& row : table.rows->rows) {
      if (withClass) WriteField(decode(table.className));
      for (const std::size_t place : cells.PlacesIn(row)) {
        WriteField(place == RowCells::kMissing ? "" : decode(row.Values()[place]));
      }
      EndRecord();
    }
  }

 private:
  void WriteHead(const Table& table) {
    std::map<std::string, int> uses;
    for (const Column& column : table.columns) ++uses[column.label];
    if (withClass) WriteField("class");
    for (const Column& column : table.columns) {
      const bool unique = !column.label.empty() && uses[column.label] == 1;
      const std::string key = decode(column.key);
      WriteField(unique                 ? decode(column.label)
                 : column.label.empty() ? key
                                        : decode(column.label) + " (" + key + ")");
    }
    EndRecord();
  }

  void WriteField(const std::string& text) {
    if (inRecord) out << ',';
    inRecord = true;
    const std::string shown = escapes ? EscapeControls(text) : text;
    if (shown.find_first_of(",\"\r\n") == std::string::npos) {
      out << shown;
      return;
    }
    out << '"';
    for (const char c : shown) {
      if (c == '"') out << '"';
      out << c;
    }
    out << '"';
  }

  void EndRecord() {
    out << "\r\n";
    inRecord = false;
  }

  TextDecoder decode;
  bool escapes;
  bool withClass;
  std::ostream& out;
  bool first = true;
  bool inRecord = false;
};

}  // namespace

void WriteCsv(const Collection& collection, const Screen& screen, std::ostream& out) {
  CsvWriter writer(collection, screen, out);
  for (const CollectedTable& table : collection.tables) writer.Write(table);
}

}  // namespace host
