#include "host/formats/csv_records.h"
#include "host/formats/difference/difference_formats.h"
#include "host/formats/difference/rows.h"

namespace host {

void WriteDifferenceCsv(const NamedDifference& named, const Screen& screen, std::ostream& out) {
  CsvRecords records(screen.isTerminal, out);
  const auto writeValue = [&](const OptionalText& value) {
    records.WriteField(value ? std::string_view(*value) : std::string_view());
  };
  for (const DifferenceRowColumn& column : ListDifferenceRowColumns()) {
    records.WriteField(column.name);
  }
  records.EndRecord();
  ForEachDifferenceRow(named.difference, [&](const DifferenceRow& row) {
    for (const DifferenceRowColumn& column : ListDifferenceRowColumns()) {
      writeValue(column.get(row));
    }
    records.EndRecord();
  });
  records.EndRecord();
  for (const NewEntryColumn& column : ListNewEntryColumns()) records.WriteField(column.name);
  records.EndRecord();
  for (const LogDifference& log : named.difference.logs) {
    for (const NewEntry& entry : log.entries) {
      for (const NewEntryColumn& column : ListNewEntryColumns()) {
        writeValue(column.get(log, entry));
      }
      records.EndRecord();
    }
  }
}

}  // namespace host
