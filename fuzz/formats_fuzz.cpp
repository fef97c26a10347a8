// Any collection in every format. The first line of the input holds options: the code page, then
// letters (p: tables by property, n: the tables were named) and the width of the screen. Then, each
// begun by its sign: 0x1D and the name of a class, 0x1E and the key of a row's instance, 0x1F and a
// property, whose key, label, value and, if it is a whole file, file name have 0x1C between them. A
// key that begins with # has a whole number for its value.
//
// Every format that a program can read gives back the cells; those for a screen hold nothing that a
// terminal obeys.
#include <cstdint>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/checks.h"
#include "host/database/database.h"
#include "host/text/decoder.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/temporary_folder.h"

namespace {

using fuzz::Require;
using nlohmann::json;
using Texts = std::vector<std::string>;

// Texts are bytes in the machine's code page.

struct Cell {
  std::string key;
  std::string label;
  std::string value;
  std::optional<std::string> fileName;  ///< of a whole file

  bool IsInteger() const { return key.starts_with('#'); }
};

struct Row {
  std::string instanceKey;
  std::vector<Cell> cells;

  const Cell* Find(const std::string& key) const {
    for (const Cell& cell : cells) {
      if (cell.key == key) return &cell;
    }
    return nullptr;
  }
};

struct Table {
  std::string className;
  std::vector<Row> rows;

  /// The keys in the order in which they first came, each with its first label.
  std::vector<std::pair<std::string, std::string>> Columns() const {
    std::vector<std::pair<std::string, std::string>> columns;
    std::set<std::string> known;
    for (const Row& row : rows) {
      for (const Cell& cell : row.cells) {
        if (known.insert(cell.key).second) columns.emplace_back(cell.key, cell.label);
      }
    }
    return columns;
  }
};

struct FormatsInput {
  std::uint32_t codePage = 0;
  std::string letters;
  unsigned width = 0;
  std::vector<Table> tables;

  bool Has(char letter) const { return letters.find(letter) != std::string::npos; }
};

/// A name as the modules give their classes, but none that they describe.
std::string MakeClassName(std::string_view text) {
  std::string name = "Class";
  for (const char c : text) {
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) name += c;
  }
  return name;
}

void AddCell(Row& row, std::string_view text) {
  const std::vector<std::string_view> parts = fuzz::Split(text, '\x1C');
  Cell cell;
  cell.key = parts[0];
  if (parts.size() > 1) cell.label = parts[1];
  if (parts.size() > 2) cell.value = parts[2];
  if (parts.size() > 3) cell.fileName = parts[3];
  if (cell.IsInteger()) {
    cell.value = std::to_string(static_cast<int>(std::strtol(cell.value.c_str(), nullptr, 10)));
    cell.fileName.reset();
  }
  if (row.Find(cell.key) == nullptr) row.cells.push_back(std::move(cell));
}

FormatsInput ReadFormatsInput(std::string text) {
  std::erase(text, '\0');  // Values of modules end there.
  FormatsInput input;
  std::string_view rest = text;
  std::string options(fuzz::TakeUpTo(rest, '\n'));
  char* end = nullptr;
  input.codePage = static_cast<std::uint32_t>(std::strtoul(options.c_str(), &end, 10) % 70000);
  input.letters = end;
  const std::size_t digits = input.letters.find_first_of("0123456789");
  if (digits != std::string::npos) input.width = std::atoi(input.letters.c_str() + digits) % 300;
  constexpr std::string_view kSigns = "\x1D\x1E\x1F";
  std::set<std::string> classNames;
  bool isSkipped = true;
  while (!rest.empty()) {
    const char sign = rest.front();
    rest.remove_prefix(1);
    const std::string_view part = rest.substr(0, rest.find_first_of(kSigns));
    rest.remove_prefix(part.size());
    if (sign == '\x1D') {
      Table table{MakeClassName(part), {}};
      isSkipped = !classNames.insert(table.className).second;
      if (!isSkipped) input.tables.push_back(std::move(table));
    } else if (sign == '\x1E' && !isSkipped) {
      input.tables.back().rows.push_back({std::string(part), {}});
    } else if (sign == '\x1F' && !isSkipped && !input.tables.back().rows.empty()) {
      AddCell(input.tables.back().rows.back(), part);
    }
  }
  return input;
}

void AddRow(test::MadeCollection& made, const Table& table, const Row& row) {
  halyard::repository::RInstance instance(table.className, row.instanceKey, -1);
  for (const Cell& cell : row.cells) {
    if (cell.IsInteger()) {
      instance.AddProperty(cell.key, cell.label, std::atoi(cell.value.c_str()), false);
    } else {
      instance.AddProperty(cell.key, cell.label, cell.value, false);
    }
    if (!cell.fileName) continue;
    instance.AddPropertyAttr(cell.key, "raw", "true");
    instance.AddPropertyAttr(cell.key, "filename", *cell.fileName);
  }
  instance.AddToRepository(made.Repository());
}

class FormatsCheck {
 public:
  explicit FormatsCheck(FormatsInput given) : input(std::move(given)), decode(input.codePage) {
    for (const Table& table : input.tables) {
      made.Table(table.className, !input.Has('p'));
      for (const Row& row : table.rows) AddRow(made, table, row);
    }
    made.Get().machine.codePage = input.codePage;
    made.Get().tablesNamed = input.Has('n');
  }

  void Run() {
    CheckJson();
    CheckJsonLines();
    CheckCsv();
    CheckHtml();
    CheckSqlite();
    CheckTable();
  }

 private:
  json ExpectValue(const Cell& cell) const {
    return cell.IsInteger() ? json(std::atoi(cell.value.c_str())) : json(decode(cell.value));
  }

  /// Of keys that read the same, the last one counts.
  json ExpectRow(const Row& row) const {
    json cells = json::object();
    for (const Cell& cell : row.cells) cells[decode(cell.key)] = ExpectValue(cell);
    return cells;
  }

  static json ReadJson(const std::string& text) {
    for (const char32_t c : fuzz::ReadUtf8(text)) Require(!fuzz::IsControl(c) || c == '\n');
    json read = json::parse(text, nullptr, /*allow_exceptions=*/false);
    Require(!read.is_discarded());
    return read;
  }

  void CheckJson() {
    const json read = ReadJson(made.As("json"));
    Require(read["tables"].size() == input.tables.size());
    for (std::size_t i = 0; i < input.tables.size(); ++i) {
      const Table& table = input.tables[i];
      const json& written = read["tables"][i];
      Require(written["class"] == table.className);
      json columns = json::array();
      for (const auto& [key, label] : table.Columns()) {
        columns.push_back({{"key", decode(key)}, {"label", decode(label)}});
      }
      Require(written["columns"].size() == columns.size());
      for (std::size_t n = 0; n < columns.size(); ++n) {
        Require(written["columns"][n]["key"] == columns[n]["key"]);
        Require(written["columns"][n]["label"] == columns[n]["label"]);
      }
      json rows = json::array();
      for (const Row& row : table.rows) rows.push_back(ExpectRow(row));
      Require(written["rows"] == rows);
    }
  }

  void CheckJsonLines() {
    const std::string written = made.As("ndjson");
    std::string_view rest = written;
    for (const Table& table : input.tables) {
      for (const Row& row : table.rows) {
        json line = ReadJson(std::string(fuzz::TakeUpTo(rest, '\n')));
        for (const char* identity : {"machine", "serial", "recordedAt", "collection"}) {
          Require(line.erase(identity) == 1);
        }
        Require(line == json({{"class", table.className}, {"row", ExpectRow(row)}}));
      }
    }
    Require(rest.empty());
  }

  /// The records of a text after RFC 4180.
  static std::vector<Texts> ReadCsv(std::string_view text) {
    std::vector<Texts> records;
    while (!text.empty()) {
      Texts& record = records.emplace_back();
      while (true) {
        std::string& field = record.emplace_back();
        if (text.starts_with('"')) {
          for (text.remove_prefix(1); !text.starts_with('"') || text.starts_with("\"\"");) {
            Require(!text.empty());
            field += text.front();
            text.remove_prefix(text.front() == '"' ? 2 : 1);
          }
          text.remove_prefix(1);
        } else {
          field = text.substr(0, text.find_first_of(",\r\n\""));
          text.remove_prefix(field.size());
        }
        if (!text.starts_with(',')) break;
        text.remove_prefix(1);
      }
      Require(text.starts_with("\r\n"));
      text.remove_prefix(2);
    }
    return records;
  }

  Texts ExpectHead(const Table& table) const {
    const auto columns = table.Columns();
    std::map<std::string, int> uses;
    for (const auto& [key, label] : columns) ++uses[decode(label)];
    Texts head;
    for (const auto& [key, label] : columns) {
      const std::string title = decode(label);
      head.push_back(title.empty()      ? decode(key)
                     : uses[title] == 1 ? title
                                        : title + " (" + decode(key) + ")");
    }
    return head;
  }

  void CheckCsv() {
    const bool isPlain = input.Has('n') && input.tables.size() == 1;
    std::vector<Texts> expected;
    for (const Table& table : input.tables) {
      if (table.rows.empty()) continue;
      if (!expected.empty()) expected.push_back({""});
      expected.push_back(ExpectHead(table));
      if (!isPlain) expected.back().insert(expected.back().begin(), "class");
      for (const Row& row : table.rows) {
        Texts& record = expected.emplace_back();
        if (!isPlain) record.push_back(table.className);
        for (const auto& [key, label] : table.Columns()) {
          const Cell* cell = row.Find(key);
          record.push_back(cell == nullptr ? "" : decode(cell->value));
        }
      }
    }
    // A record without fields is a line like one with an empty one.
    for (Texts& record : expected) {
      if (record.empty()) record.emplace_back();
    }
    const std::string written = made.As("csv");
    fuzz::ReadUtf8(written);
    Require(ReadCsv(written) == expected);

    std::string shown = made.As("csv", {.isTerminal = true});
    fuzz::RequireForTerminal(shown, U"\r\n");
    Require(ReadCsv(shown).size() == expected.size());
  }

  void CheckHtml() {
    constexpr std::string_view kBegin = "<script type=\"application/json\" id=\"data\">";
    const std::string page = made.As("html");
    const std::size_t begin = page.find(kBegin) + kBegin.size();
    const std::string data = page.substr(begin, page.find("</script>", begin) - begin);
    Require(data.find('<') == std::string::npos);
    const json read = json::parse(data, nullptr, /*allow_exceptions=*/false);
    Require(!read.is_discarded());
    // The classes belong to no area, so all of them are in one.
    const json& areas = read["areas"];
    Require(areas.size() == (input.tables.empty() ? 0 : 1));
    if (areas.empty()) return;
    const json& tables = areas[0]["tables"];
    Require(tables.size() == input.tables.size());
    for (std::size_t i = 0; i < tables.size(); ++i) CheckReported(input.tables[i], tables[i]);
  }

  void CheckReported(const Table& table, const json& reported) const {
    // A column with a whole file in any row is shown below the table.
    std::set<std::string> fileKeys;
    for (const Row& row : table.rows) {
      for (const Cell& cell : row.cells) {
        if (cell.fileName) fileKeys.insert(cell.key);
      }
    }
    Texts shown;
    for (const auto& [key, label] : table.Columns()) {
      if (!fileKeys.contains(key)) shown.push_back(key);
    }
    json rows = json::array();
    for (const Row& row : table.rows) {
      json cells = json::array();
      for (const std::string& key : shown) {
        const Cell* cell = row.Find(key);
        cells.push_back(cell == nullptr ? json() : json(decode(cell->value)));
      }
      if (!shown.empty()) rows.push_back(std::move(cells));
    }
    Require(reported["class"] == table.className);
    Require(reported["rowCount"] == table.rows.size());
    Require(reported["rows"] == rows);
  }

  /// Every cell as what it is; what a row lacks is none.
  void CheckSqlite() {
    folder.Write("x.db", made.As("sqlite"));
    host::Database database(folder.Path() / "x.db");
    const auto ask = [&](const std::string& sql) {
      std::vector<host::Database::Values> rows;
      database.Query(
          sql, [](const host::Database::Names&) {},
          [&](const host::Database::Values& values) { rows.push_back(values); });
      return rows;
    };
    const auto names = ask("SELECT name FROM tables ORDER BY position");
    Require(names.size() == input.tables.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      const Table& table = input.tables[i];
      std::vector<host::Database::Values> expected;
      for (const Row& row : table.rows) {
        host::Database::Values& values = expected.emplace_back();
        values.push_back({host::CellKind::kInteger, std::to_string(expected.size())});
        for (const auto& [key, label] : table.Columns()) {
          const Cell* cell = row.Find(key);
          if (cell == nullptr) {
            values.emplace_back();
          } else {
            values.push_back({cell->IsInteger() ? host::CellKind::kInteger : host::CellKind::kText,
                              decode(cell->value)});
          }
        }
      }
      if (expected.empty()) continue;
      Require(ask("SELECT * FROM \"" + names[i][0].text + "\" ORDER BY 1") == expected);
    }
  }

  void CheckTable() {
    const std::string shown = made.As("table", {.isTerminal = true, .width = input.width});
    fuzz::RequireForTerminal(shown, U"\n");
  }

  FormatsInput input;
  host::TextDecoder decode;
  test::MadeCollection made;
  test::TemporaryFolder folder;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FormatsInput input = ReadFormatsInput(std::string(fuzz::InputText(data, size)));
  for (const Table& table : input.tables) {
    if (table.Columns().size() > 1900) return 0;  // SQLite's limit is 2000.
  }
  FormatsCheck(std::move(input)).Run();
  return 0;
}
