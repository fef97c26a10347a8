// A single named table is plain CSV: a head with the columns' labels, then the rows. Otherwise
// every table is a section of its own, with the class as first column and an empty line between two
// sections. A table without rows has its head, if its columns are known.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>

#include "host/answers/assessment.h"
#include "host/answers/health/finding_tables.h"
#include "host/answers/parts/part_tables.h"
#include "host/collect/table_view.h"
#include "host/database/sql_names.h"
#include "host/files/output_file.h"
#include "host/formats/csv_folder.h"
#include "host/formats/csv_records.h"
#include "host/formats/formats.h"
#include "host/formats/row_identity.h"
#include "host/text/ascii.h"
#include "host/text/path_text.h"

namespace host {
namespace {

/// A class as a file's name on every system.
std::string MakeFileName(std::string_view className) {
  std::string name(className);
  std::ranges::replace_if(
      name, [](char c) { return !IsAsciiLetterOrDigit(c) && c != '_' && c != '-'; }, '_');
  return name;
}

class CsvWriter {
 public:
  CsvWriter(const Collection& collection, bool withClass, const Screen& screen, std::ostream& out)
      : records(screen.isTerminal, out), withClass(withClass) {
    if (screen.identifiesRows && collection.machineIsKnown) {
      identity = MakeRowIdentity(collection);
    }
  }

  void Write(const TableView& table) {
    const std::vector<KnownColumn> columns = table.ListKnownColumns();
    if (columns.empty() && table.RowCount() == 0) return;
    if (withClass && !first) EndRecord();
    first = false;
    WriteHead(columns);
    const DecodedText className = table.ClassName();
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      const RowView row = table.RowAt(i);
      WriteIdentity();
      if (withClass) WriteField(className);
      for (const KnownColumn& column : columns) {
        const std::optional<CellView> cell =
            column.place == KnownColumn::kNotThere ? std::nullopt : row.FindCell(column.place);
        WriteField(cell ? cell->Text() : DecodedText(std::string_view()));
      }
      EndRecord();
    }
  }

  void Write(const PartTable& table, const Parts& parts) {
    WriteHead(table);
    for (std::size_t row = 0; row < table.count(parts); ++row) {
      WriteRow(table, *table.at(parts, row));
    }
  }

  void Write(const FindingTable& table, const Health& health) {
    WriteHead(table);
    for (const FindingRow& row : ListRows(table, health)) WriteRow(table, row);
  }

 private:
  /// Of parts, or of findings.
  template <typename Table>
  void WriteHead(const Table& table) {
    WriteIdentityHead();
    for (const auto& column : table.columns) WriteField(column.name);
    EndRecord();
  }

  template <typename Table, typename Row>
  void WriteRow(const Table& table, const Row& row) {
    WriteIdentity();
    for (const auto& column : table.columns) WriteField(FormatPartValue(column.get(row), ""));
    EndRecord();
  }

  void WriteHead(const std::vector<KnownColumn>& columns) {
    std::map<std::string_view, int> uses;
    for (const KnownColumn& column : columns) ++uses[column.label];
    WriteIdentityHead();
    if (withClass) WriteField("class");
    for (const KnownColumn& column : columns) {
      if (column.label.empty()) {
        WriteField(column.key);
      } else if (uses[column.label] == 1) {
        WriteField(column.label);
      } else {
        WriteField(fmt::format("{} ({})", column.label, column.key));
      }
    }
    EndRecord();
  }

  void WriteIdentityHead() {
    if (!identity) return;
    for (const char* column : {"machine", "serial", "recordedAt", "collection"}) {
      WriteField(column);
    }
  }

  void WriteIdentity() {
    if (!identity) return;
    WriteField(identity->machine);
    WriteField(identity->serial);
    WriteField(identity->recordedAt);
    WriteField(identity->collection);
  }

  void WriteField(std::string_view text) { records.WriteField(text); }
  void EndRecord() { records.EndRecord(); }

  CsvRecords records;
  bool withClass;
  std::optional<RowIdentity> identity;
  bool first = true;
};

}  // namespace

void WriteCsv(const Collection& collection, const Screen& screen, std::ostream& out) {
  const CollectionView view(collection, ChooseAttachments(screen));
  const bool isPlain = collection.tablesNamed && collection.tables.size() == 1;
  CsvWriter writer(collection, !isPlain, screen, out);
  for (const CollectedTable& table : collection.tables) writer.Write(view.ViewTable(table));
}

void WriteCsvFolder(const Collection& collection, const Screen& screen,
                    const std::filesystem::path& folder) {
  const CollectionView view(collection, ChooseAttachments(screen));
  UniqueNames names;
  const auto write = [&](std::string_view name, const auto&... table) {
    OutputFile file(folder / PathFromText(names.Take(MakeFileName(name)) + ".csv"));
    CsvWriter(collection, /*withClass=*/false, screen, file.Stream()).Write(table...);
    file.Complete();
  };
  const auto [parts, health] = Assess(collection);
  for (const PartTable& table : GetPartTables()) write(table.name, table, parts);
  for (const FindingTable& table : GetFindingTables()) write(table.name, table, health);
  for (const CollectedTable& collected : collection.tables) {
    const TableView table = view.ViewTable(collected);
    write(table.ClassName(), table);
  }
}

}  // namespace host
