#include "fleet/parser.h"

#include <algorithm>
#include <ctime>
#include <exception>
#include <map>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "fleet/copy_text.h"
#include "fleet/parser_sources.h"
#include "host/answers/assessment.h"
#include "host/answers/columns_fit.h"
#include "host/answers/health/finding_tables.h"
#include "host/answers/parts/part_tables.h"
#include "host/collect/collect.h"
#include "host/collect/table_view.h"
#include "host/files/sha256.h"
#include "host/recording/recording_format.h"
#include "host/recording/recording_reader.h"
#include "host/text/ascii.h"
#include "host/text/json_text.h"
#include "host/text/version.h"

namespace fleet {
namespace {

/// Of a verdict as many are kept as anybody reads.
constexpr std::size_t kMostReasons = 50;
/// Of a digest as many tell one build from another.
constexpr std::size_t kEnoughDigits = 12;

/// A whole file is in the recording; its cell says which, and how to know it again.
std::string DescribeFile(std::string_view name, std::string_view bytes) {
  return host::JsonObject()
      .AddText("file", name)
      .AddNumber("bytes", bytes.size())
      .AddText("sha256", host::ComputeSha256(bytes))
      .Take();
}

/// The rows of a class, dealt over the columns of its table.
class ClassRows {
 public:
  explicit ClassRows(const RowTable& table) : places(table.columns.size()) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) columns[table.columns[i].name] = i;
  }

  std::string Write(const host::TableView& view) {
    const host::RowShape* shape = nullptr;
    for (const host::Row& stored : view.StoredRows()) {
      const host::RowView row = view.View(stored);
      if (stored.shape != shape) DealCells(row);
      shape = stored.shape;
      AddRow(row, stored);
    }
    return std::move(rows);
  }

 private:
  static constexpr std::size_t kNoCell = static_cast<std::size_t>(-1);

  /// Finds where the cells of rows like `row` go.
  void DealCells(const host::RowView& row) {
    std::fill(places.begin(), places.end(), kNoCell);
    more.clear();
    for (std::size_t place = 0; place < row.CellCount(); ++place) {
      const host::CellView cell = row.CellAt(place);
      if (cell.Kind() == host::CellKind::kNothing) continue;
      const auto column = columns.find(cell.Key().View());
      if (cell.Kind() == host::CellKind::kText && column != columns.end()) {
        places[column->second] = place;
      } else {
        more.push_back(place);
      }
    }
  }

  void AddRow(const host::RowView& row, const host::Row& stored) {
    for (std::size_t column = 0; column < places.size(); ++column) {
      if (column > 0) rows += '\t';
      if (column + 1 == places.size() && !more.empty()) {
        AppendCopyCell(rows, WriteMore(row, stored));
      } else if (places[column] == kNoCell) {
        rows += kCopyNull;
      } else {
        AppendCopyCell(rows, ReadCell(row.CellAt(places[column]), stored, places[column]));
      }
    }
    rows += '\n';
  }

  std::string WriteMore(const host::RowView& row, const host::Row& stored) const {
    host::JsonObject json;
    for (const std::size_t place : more) {
      const host::CellView cell = row.CellAt(place);
      const host::DecodedText text = ReadCell(cell, stored, place);
      json.Add(cell.Key(), [&](std::string& value) {
        if (cell.Kind() == host::CellKind::kText) {
          host::AppendJsonText(value, text);
        } else {
          value += text.View();
        }
      });
    }
    return json.Take();
  }

  static host::DecodedText ReadCell(const host::CellView& cell, const host::Row& stored,
                                    std::size_t place) {
    if (!cell.IsFile()) return cell.Text();
    const std::optional<host::DecodedText> name = cell.FileName();
    return host::DecodedText(
        DescribeFile(name ? name->View() : std::string_view(), stored.Value(place)));
  }

  std::map<std::string, std::size_t, std::less<>> columns;
  std::vector<std::size_t> places;  ///< of each column's cell in the rows of the shape at hand
  std::vector<std::size_t> more;    ///< places of the cells that have no column
  std::string rows;
};

void AppendValue(std::string& rows, const host::PartValue& value) {
  if (std::holds_alternative<std::monostate>(value)) {
    rows += kCopyNull;
  } else if (const auto* text = std::get_if<std::string_view>(&value)) {
    AppendCopyCell(rows, *text);
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    rows += std::to_string(*integer);
  } else {
    rows += host::FormatPartValue(value, "");
  }
}

/// A row of what `columns` get of `described`.
template <typename Columns, typename Described>
void AppendDescribed(std::string& rows, const Columns& columns, const Described& described) {
  const char* separator = "";
  for (const auto& column : columns) {
    rows += separator;
    separator = "\t";
    AppendValue(rows, column.get(described));
  }
  rows += '\n';
}

bool IsUnwell(const host::Drive& drive) {
  return drive.mediaErrors.value_or(0) > 0 || drive.otherErrors.value_or(0) > 0 ||
         drive.predictiveFailures.value_or(0) > 0 || drive.smartAlert.starts_with("Yes");
}

std::string WriteDriveErrors(const host::Parts& parts) {
  std::string rows;
  for (const host::Drive& drive : parts.drives) {
    if (!IsUnwell(drive)) continue;
    // In the order of kDriveErrorColumns.
    for (const std::string* text :
         {&drive.id, &drive.controller, &drive.serial, &drive.model, &drive.firmware}) {
      AppendCopyCell(rows, *text);
      rows += '\t';
    }
    for (const host::Integer& number :
         {drive.mediaErrors, drive.otherErrors, drive.predictiveFailures}) {
      AppendValue(rows, number ? host::PartValue(*number) : host::PartValue());
      rows += '\t';
    }
    AppendCopyCell(rows, drive.smartAlert);
    rows += '\n';
  }
  return rows;
}

std::string WriteStatuses(const host::CollectionView& view) {
  host::JsonObject statuses;
  for (const host::CollectedTable& table : view.GetCollection().tables) {
    if (table.status.outcome == "rows") continue;
    statuses.AddText(view.ViewTable(table).ClassName().View(), table.status.outcome);
  }
  return statuses.Take();
}

void AddVerdict(const host::Health& health, Parsed& parsed) {
  parsed.verdict = host::LowerCase(host::GetVerdict(health));
  const auto count = [&](host::Severity severity) {
    return static_cast<std::uint32_t>(host::CountFindings(health, severity));
  };
  parsed.counts = {count(host::Severity::kCritical), count(host::Severity::kWarning),
                   count(host::Severity::kUnknown), count(host::Severity::kNotice)};
  for (const host::HealthFinding& finding : health.findings) {
    if (finding.severity == host::Severity::kNotice) continue;
    if (parsed.reasons.size() == kMostReasons) break;
    parsed.reasons.push_back(finding.hits.front().text);
  }
}

Parsed Refuse(std::string reason) {
  Parsed refused;
  refused.refusal = std::move(reason);
  return refused;
}

}  // namespace

std::string DescribeParser() {
  return std::string(host::kVersion) + "+" +
         std::string(host::kParserSources.substr(0, kEnoughDigits));
}

std::string DescribeReaders() {
  host::JsonObject readers;
  for (std::size_t i = 0; i < host::kReaderCount; ++i) {
    readers.AddText(host::kReaders[i].name, host::kReaders[i].digest.substr(0, kEnoughDigits));
  }
  return readers.Take();
}

Parser::Parser(const RowTables& tables) : tables(tables), judge({.opensNoFile = true}) {
  tzset();
  for (const std::uint32_t codePage : host::kRecordingCodePages) {
    decoders.push_back(std::make_unique<host::TextDecoder>(codePage));
    // The first character of two bytes is looked up by the system.
    (*decoders.back())("\x88\x9f\xe4");
  }
  // An empty machine takes every step that loads something.
  Read(host::Recording{}, {});
}

Parsed Parser::Parse(std::string zip, const std::string& key,
                     const std::optional<host::LocalTime>& taken) {
  try {
    host::Recording recording = host::LoadZippedRecording(std::move(zip), "recording");
    if (recording.contentKey != key) {
      return Refuse("what is in the store has another content key than its name says");
    }
    return Read(std::move(recording), taken);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return Refuse(error.what());
  }
}

Parsed Parser::Read(host::Recording recording, const std::optional<host::LocalTime>& taken) {
  // The same content gives the same rows, whoever sent it: of its submission only the time counts.
  recording.submission = host::Submission{.recordedAt = taken};
  host::Collection collection = host::Collect(recording);
  host::NoteUnfitColumns(collection);
  const host::Assessment assessment = host::Assess(collection, judge);
  const host::CollectionView view(collection);
  Parsed parsed;
  const auto add = [&](std::size_t table, std::string rows) {
    if (!rows.empty()) {
      parsed.tables.push_back({static_cast<std::uint32_t>(table), std::move(rows)});
    }
  };
  for (const host::CollectedTable& table : collection.tables) {
    if (table.RowCount() == 0) continue;
    const auto place = tables.Find(NameClassTable(table.className));
    if (!place) return Refuse("no module describes the class " + table.className);
    add(*place, ClassRows(tables.At(*place)).Write(view.ViewTable(table)));
  }
  for (const host::PartTable& part : host::GetPartTables()) {
    std::string rows;
    for (std::size_t row = 0; row < part.count(assessment.parts); ++row) {
      AppendDescribed(rows, part.columns, *part.at(assessment.parts, row));
    }
    add(*tables.Find(NamePartTable(part.name)), std::move(rows));
  }
  for (const host::FindingTable& table : host::GetFindingTables()) {
    std::string rows;
    for (const host::FindingRow& row : host::ListRows(table, assessment.health)) {
      AppendDescribed(rows, table.columns, row);
    }
    add(*tables.Find(NamePartTable(table.name)), std::move(rows));
  }
  parsed.problems = static_cast<std::uint32_t>(collection.problems.size());
  parsed.statuses = WriteStatuses(view);
  AddVerdict(assessment.health, parsed);
  parsed.driveErrors = WriteDriveErrors(assessment.parts);
  return parsed;
}

}  // namespace fleet
