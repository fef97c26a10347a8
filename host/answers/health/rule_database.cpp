#include "host/answers/health/rule_database.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "host/answers/collection_database.h"
#include "host/answers/health/machine_areas.h"
#include "host/answers/health/wall_time.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/report_lines.h"
#include "host/database/database_writer.h"
#include "host/database/sql_names.h"

namespace host {
namespace {

std::optional<Severity> FindSeverity(std::string_view word) {
  for (const Severity one :
       {Severity::kNotice, Severity::kUnknown, Severity::kWarning, Severity::kCritical}) {
    if (GetWord(one) == word) return one;
  }
  return std::nullopt;
}

double FindSetting(const HealthSettings& settings, std::string_view name) {
  if (const auto given = settings.find(name); given != settings.end()) return given->second;
  for (const HealthSetting& known : ListHealthSettings()) {
    if (known.name == name) return known.value;
  }
  throw DatabaseError(fmt::format("there is no setting {}", name));
}

std::string_view ViewText(const SqlValue& value) {
  const auto* text = std::get_if<std::string_view>(&value);
  return text == nullptr ? std::string_view() : *text;
}

constexpr std::int64_t kDay = 86'400;  // seconds

/// 1 for a time of the window, 0 for an earlier one; nothing for none. The clock of a log may be
/// ahead of the one that told when the collection was: what comes after it may well be of today.
SqlValue IsRecent(std::optional<std::int64_t> now, double days, std::string_view time) {
  const std::optional<std::int64_t> at = ReadWallTime(time);
  if (!at || !now) return {};
  const std::int64_t age = *now - *at;
  return std::int64_t{static_cast<double>(age) <= days * static_cast<double>(kDay)};
}

/// 1 for a time that had not come, time zones aside; 0 for another; nothing for none.
SqlValue IsAhead(std::optional<std::int64_t> now, std::string_view time) {
  const std::optional<std::int64_t> at = ReadWallTime(time);
  if (!at || !now) return {};
  return std::int64_t{*at - *now > kDay};
}

// --- parts by table and id ---

const PartTable* FindPartTable(std::string_view name) {
  const auto tables = GetPartTables();
  const auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const PartTable& table) { return table.name == name; });
  return found == tables.end() ? nullptr : &*found;
}

/// Finds parts of one table by their ids, going through it once: a log can have a hundred thousand.
class PartSearch {
 public:
  void Add(const std::string& id) { found.emplace(id, nullptr); }

  void Run(const PartTable& table, const Parts& parts) {
    const std::size_t count = table.count(parts);
    for (std::size_t row = 0; row < count; ++row) {
      const PartValue id = table.Get(parts, row, kIdColumn);
      const auto* text = std::get_if<std::string_view>(&id);
      const auto wanted = found.find(text == nullptr ? std::string_view() : *text);
      if (wanted != found.end() && !wanted->second) wanted->second = table.at(parts, row);
    }
  }

  /// Null when there is none.
  const Part* Get(const std::string& id) const { return found.at(id).get(); }

 private:
  static constexpr std::size_t kIdColumn = 0;

  std::map<std::string, std::shared_ptr<const Part>, std::less<>> found;
};

std::string FindSerial(const PartTable& table, const Part& part) {
  for (const PartColumn& column : table.columns) {
    if (column.name == "serial") return FormatPartValue(column.get(part), "");
  }
  return {};
}

bool HasValue(const PartTable& table, const Part& part, std::string_view name) {
  const auto column = std::ranges::find(table.columns, name, &PartColumn::name);
  return column != table.columns.end() && !FormatPartValue(column->get(part), "").empty();
}

/// Tells the hit where people see it: the first of `columns` that has a place of its own, otherwise
/// the first with a value.
void TellEvidence(HealthHit& hit, const PartTable& table, const Part& part,
                  std::string_view columns) {
  hit.place = part.readAt;
  while (!columns.empty()) {
    const std::size_t end = std::min(columns.find(','), columns.size());
    const std::string_view column = Trim(columns.substr(0, end));
    const auto own = std::ranges::find(part.columnPlaces, column, &ColumnPlace::column);
    if (own != part.columnPlaces.end()) {
      hit.column = column;
      hit.place = own->place;
      return;
    }
    if (hit.column.empty() && HasValue(table, part, column)) hit.column = column;
    columns.remove_prefix(std::min(end + 1, columns.size()));
  }
}

/// Without `self`: nothing is its own cause.
std::vector<std::string> SplitIds(std::string_view text, std::string_view self) {
  std::vector<std::string> ids;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(';'), text.size());
    if (end > 0 && text.substr(0, end) != self) ids.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return ids;
}

// --- answers ---

/// Where the columns of a rule's answer are: the first by their place, the others by name.
struct AnswerColumns {
  enum Fixed : std::size_t { kSeverity, kId, kObserved, kBecause, kText, kFixedCount };
  static constexpr std::size_t kNone = ~std::size_t{0};
  std::size_t part = kNone;
  std::size_t area = kNone;
  std::size_t event = kNone;
};

AnswerColumns FindColumns(const Database::Names& names) {
  if (names.size() <= AnswerColumns::kObserved) {
    throw DatabaseError("the answer needs three columns: severity, id, observed");
  }
  AnswerColumns columns;
  for (std::size_t i = AnswerColumns::kFixedCount; i < names.size(); ++i) {
    if (names[i] == "part") {
      columns.part = i;
    } else if (names[i] == "area") {
      columns.area = i;
    } else if (names[i] == "event") {
      columns.event = i;
    } else {
      throw DatabaseError(
          fmt::format("column {} of the answer has to be part, area or event", i + 1));
    }
  }
  return columns;
}

/// The text of a column; `otherwise` when there is none, or it is NULL.
std::string TakeText(const Database::Values& values, std::size_t column,
                     const std::string& otherwise = {}) {
  if (column >= values.size() || values[column].kind == CellKind::kNothing) return otherwise;
  return values[column].text;
}

/// A line of a tool can have any length; a sentence that quotes it must not. The parts have all of
/// it.
std::string Shorten(std::string text) {
  constexpr std::size_t kMost = 500;  // bytes
  const auto isWithin = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
  if (text.size() <= kMost) return text;
  std::size_t end = kMost;
  while (end > 0 && isWithin(text[end])) --end;
  const auto rest = std::count_if(text.begin() + static_cast<std::ptrdiff_t>(end), text.end(),
                                  [&](char c) { return !isWithin(c); });
  text.resize(end);
  return text + fmt::format("… ({} more characters)", rest);
}

/// A hit whose part has still to be looked for.
struct NamedHit {
  HealthHit hit;
  const Rule* rule;
  const PartTable* table;
  std::string event;  ///< id of the entry that tells of it; may be empty
};

NamedHit ReadHit(const Rule& rule, const AnswerColumns& columns, const Database::Values& values) {
  std::string word = TakeText(values, AnswerColumns::kSeverity);
  const std::optional<Severity> severity = FindSeverity(word);
  if (!severity) {
    std::replace(word.begin(), word.end(), '\n', ' ');  // an error is one line
    throw DatabaseError(
        fmt::format("\"{}\" is no severity: critical, warning, notice or unknown", word));
  }
  HealthHit hit;
  hit.rule = rule.id;
  hit.severity = *severity;
  hit.part = TakeText(values, columns.part, rule.part);
  hit.id = TakeText(values, AnswerColumns::kId);
  hit.observed = Shorten(TakeText(values, AnswerColumns::kObserved));
  hit.area = TakeText(values, columns.area, rule.area);
  if (const std::string wrong = DescribeUnknownArea(hit.area); !wrong.empty()) {
    throw DatabaseError(wrong);
  }
  hit.why = rule.why;
  hit.next = rule.next;
  hit.isOfLog = rule.isOfLog;
  hit.because = SplitIds(TakeText(values, AnswerColumns::kBecause), hit.id);
  hit.text = Shorten(TakeText(values, AnswerColumns::kText));
  if (hit.text.empty()) hit.text = hit.id + ": " + hit.observed;
  const PartTable* table = FindPartTable(hit.part);
  if (table == nullptr) throw DatabaseError(fmt::format("there is no table of parts {}", hit.part));
  return {std::move(hit), &rule, table, TakeText(values, columns.event)};
}

/// Adds to each hit what its part tells of it.
std::vector<HealthHit> FindParts(std::vector<NamedHit> named, const Parts& parts) {
  const PartTable* const events = FindPartTable("events");
  std::map<const PartTable*, PartSearch> searches;
  for (const NamedHit& one : named) {
    searches[one.table].Add(one.hit.id);
    searches[events].Add(one.event);
  }
  for (auto& [table, search] : searches) search.Run(*table, parts);
  std::vector<HealthHit> hits;
  hits.reserve(named.size());
  for (NamedHit& one : named) {
    if (const Part* part = searches[one.table].Get(one.hit.id)) {
      one.hit.serial = FindSerial(*one.table, *part);
      TellEvidence(one.hit, *one.table, *part, one.rule->column);
    }
    if (const Part* event = searches[events].Get(one.event)) one.hit.place = event->readAt;
    hits.push_back(std::move(one.hit));
  }
  return hits;
}

std::string NameFile(const Rule& rule) { return rule.file.empty() ? "rules.sql" : rule.file; }

/// Throws why `rule` could not be asked: HealthFileError, except where only this machine is too
/// much for it.
[[noreturn]] void Refuse(const Rule& rule, const DatabaseError& error) {
  // The rule is one that other machines can be judged by.
  if (const auto* limit = dynamic_cast<const DatabaseLimitError*>(&error)) {
    throw std::runtime_error(
        fmt::format("{}:{}: {}: for this machine {}; take the rule away, or let it ask for less",
                    NameFile(rule), rule.line, rule.id, limit->Excess()));
  }
  throw HealthFileError(NameFile(rule), rule.line, rule.id + ": " + error.what());
}

bool IsOfUser(const Rule& rule) { return !rule.file.empty(); }

}  // namespace

/// One that is filled anew for each machine.
struct RuleDatabase::Table {
  PreparedQuery clear;
  PreparedQuery fill;
};

struct RuleDatabase::Question {
  const Rule* rule;
  std::optional<PreparedQuery> query;  ///< none: it is the user's
  AnswerColumns columns = {};
};

RuleDatabase::RuleDatabase(const HealthOptions& options, const Collection* collection)
    : options(options),
      recentDays(FindSetting(options.settings, "recent_days")),
      database(kUsualQueryTime,
               options.opensNoFile ? Database::Temporary::kNoFile : Database::Temporary::kInFile) {
  // Nothing is ever taken back.
  database.Run("PRAGMA journal_mode=OFF");
  if (collection != nullptr) {
    DatabaseWriter writer(database, Machines::kOne);
    writer.Add(CollectionView(*collection));
    writer.Complete();
  }
  AddFunctions();
  AddPartTables();
  const std::vector<RuleTable>& made = GetBuiltInRules().tables;
  for (const RuleTable& table : made) AddTable(table);
  // Every new table would have them prepared again.
  for (const RuleTable& table : made) {
    if (!table.isFixed) PrepareTable(table);
  }
  for (const Rule& rule : options.rules) AddQuestion(rule);
}

RuleDatabase::~RuleDatabase() = default;

void RuleDatabase::AddFunctions() {
  database.AddFunction("setting", [this](const SqlValue& name) {
    return SqlValue(FindSetting(options.settings, ViewText(name)));
  });
  database.AddFunction(
      "recent", [this](const SqlValue& time) { return IsRecent(now, recentDays, ViewText(time)); });
  database.AddFunction("ahead",
                       [this](const SqlValue& time) { return IsAhead(now, ViewText(time)); });
}

void RuleDatabase::AddPartTables() {
  for (const PartTable& table : GetPartTables()) {
    OutsideTable outside;
    outside.name = table.name;
    for (const PartColumn& column : table.columns) {
      outside.columns.push_back({column.name, NameSqlType(column.type)});
    }
    outside.countRows = [this, &table] { return table.count(*parts); };
    outside.getValue = [this, &table](std::size_t row, std::size_t column) {
      return table.Get(*parts, row, column);
    };
    database.AddTable(std::move(outside));
  }
}

void RuleDatabase::AddTable(const RuleTable& table) {
  const std::string name = "temp." + QuoteName(table.name);
  database.Run(fmt::format("CREATE TABLE {} AS {}", name, table.sql));
  for (const std::string& columns : table.indexes) {
    const std::string index = QuoteName(fmt::format("{} by {}", table.name, columns));
    database.Run(
        fmt::format("CREATE INDEX temp.{} ON {} ({})", index, QuoteName(table.name), columns));
  }
}

void RuleDatabase::PrepareTable(const RuleTable& table) {
  const std::string name = "temp." + QuoteName(table.name);
  tables.push_back({PreparedQuery(database, fmt::format("DELETE FROM {}", name)),
                    PreparedQuery(database, fmt::format("INSERT INTO {} {}", name, table.sql))});
}

void RuleDatabase::AddQuestion(const Rule& rule) {
  Question question{&rule, std::nullopt};
  if (!IsOfUser(rule)) {
    try {
      question.query.emplace(database, rule.sql);
      question.columns = FindColumns(question.query->Columns());
    } catch (const DatabaseError& error) {
      Refuse(rule, error);
    }
  }
  questions.push_back(std::move(question));
}

std::vector<HealthHit> RuleDatabase::Ask(const Parts& asked, std::optional<std::int64_t> time) {
  parts = &asked;
  now = time;
  // Also after an exception the next machine finds nothing of this one.
  const struct Forgetting {
    ~Forgetting() { rules.parts = &rules.none; }
    RuleDatabase& rules;
  } forgetting{*this};
  const auto ignore = [](const Database::Values&) {};
  for (Table& table : tables) {
    table.clear.Run(ignore);
    table.fill.Run(ignore);
  }
  std::vector<NamedHit> hits;
  for (std::size_t i = 0; i < questions.size(); ++i) {
    Question& question = questions[i];
    const auto take = [&](const Database::Values& values) {
      hits.push_back(ReadHit(*question.rule, question.columns, values));
      hits.back().hit.ruleNumber = i + 1;
    };
    try {
      if (question.query) {
        question.query->Run(take);
      } else {
        database.Query(
            question.rule->sql,
            [&](const Database::Names& names) { question.columns = FindColumns(names); }, take);
      }
    } catch (const DatabaseError& error) {
      Refuse(*question.rule, error);
    }
  }
  return FindParts(std::move(hits), asked);
}

}  // namespace host
