#include "host/answers/health/rule_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

#include "host/answers/health/built_in_rules.h"
#include "host/answers/health/machine_areas.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/report_lines.h"
#include "host/text/decoder.h"

namespace host {
namespace {

struct TextTag {
  std::string_view name;
  std::string Rule::*member;
};
constexpr TextTag kTextTags[] = {
    {"part", &Rule::part}, {"area", &Rule::area}, {"column", &Rule::column},
    {"why", &Rule::why},   {"next", &Rule::next}, {"source", &Rule::source},
};

bool IsPartTable(std::string_view name) {
  const auto tables = GetPartTables();
  return std::any_of(tables.begin(), tables.end(),
                     [&](const PartTable& table) { return table.name == name; });
}

/// "-- @why Text": "why" and "Text".
struct Tag {
  std::string_view name;
  std::string_view value;
};
std::optional<Tag> ReadTag(std::string_view line) {
  constexpr std::string_view kBegin = "-- @";
  if (!line.starts_with(kBegin)) return std::nullopt;
  line.remove_prefix(kBegin.size());
  const std::size_t end = std::min(line.find(' '), line.size());
  return Tag{line.substr(0, end), Trim(line.substr(end))};
}

class RuleFileReader {
 public:
  explicit RuleFileReader(const std::string& file) : file(file) {}

  void Take(std::string_view line) {
    ++number;
    const std::string_view text = Trim(line);
    std::string Rule::*const before = std::exchange(openText, nullptr);
    if (const std::optional<Tag> tag = ReadTag(text)) {
      TakeTag(*tag);
    } else if (before != nullptr && text.starts_with(kMore)) {
      (rule.*before).append(" ").append(Trim(text.substr(kMore.size())));
      openText = before;
    } else if (isOpen) {
      TakeSql(line, text);
    } else if (!text.empty() && !text.starts_with("--")) {
      Refuse("a statement begins with a line \"-- @rule ID\"");
    }
  }

  RuleFile Finish() {
    EndBlock();
    return std::move(read);
  }

 private:
  [[noreturn]] void Refuse(std::string_view reason) const {
    throw HealthFileError(file, number, reason);
  }

  void TakeTag(const Tag& tag) {
    if (tag.name == "rule" || tag.name == "table" || tag.name == "words") {
      EndBlock();
      if (tag.value.empty()) Refuse(fmt::format("@{} needs a name", tag.name));
      if (!names.insert(std::string(tag.value)).second) {
        Refuse(fmt::format("there is a {} before", tag.value));
      }
      isOpen = true;
      isRule = tag.name == "rule";
      beginLine = number;
      rule = {};
      rule.id = tag.value;
      rule.file = file;
      table = {};
      table.name = tag.value;
      table.isFixed = tag.name == "words";
      return;
    }
    if (!isOpen) Refuse(fmt::format("@{} comes before any rule", tag.name));
    if (isRule ? TakeRuleTag(tag) : TakeTableTag(tag)) return;
    Refuse(fmt::format("there is no @{}", tag.name));
  }

  bool TakeTableTag(const Tag& tag) {
    if (tag.name != "index") return false;
    table.indexes.emplace_back(tag.value);
    return true;
  }

  bool TakeRuleTag(const Tag& tag) {
    if (tag.name == "log") {
      rule.isOfLog = true;
      return true;
    }
    const auto* known = std::find_if(std::begin(kTextTags), std::end(kTextTags),
                                     [&](const TextTag& one) { return one.name == tag.name; });
    if (known == std::end(kTextTags)) return false;
    if (tag.value.empty()) Refuse(fmt::format("@{} needs a text", tag.name));
    if (tag.name == "part" && !IsPartTable(tag.value)) {
      Refuse(fmt::format("there is no table of parts {}", tag.value));
    }
    if (tag.name == "area") {
      if (const std::string wrong = DescribeUnknownArea(tag.value); !wrong.empty()) Refuse(wrong);
    }
    rule.*known->member = tag.value;
    openText = known->member;
    return true;
  }

  void TakeSql(std::string_view line, std::string_view text) {
    // Comments of a block's own line belong to nobody, so that an error's line is that of a word.
    if (text.empty() || text.starts_with("--")) {
      if (!sql.empty()) sql += '\n';
      return;
    }
    if (sql.empty()) sqlLine = number;
    sql.append(line).push_back('\n');
  }

  void EndBlock() {
    if (!std::exchange(isOpen, false)) return;
    const std::string statement = std::exchange(sql, {});
    const auto refuse = [&](std::string_view reason) {
      throw HealthFileError(file, beginLine, fmt::format("{} {}", rule.id, reason));
    };
    if (statement.empty()) refuse("has no SELECT");
    if (!isRule) {
      table.sql = Trim(statement);
      if (table.sql.ends_with(';')) table.sql.pop_back();
      read.tables.push_back(std::move(table));
      return;
    }
    if (rule.part.empty()) refuse("does not say which parts it judges: add -- @part TABLE");
    if (rule.area.empty()) rule.area = FindAreaOfTable(rule.part);
    rule.sql = Trim(statement);
    rule.line = sqlLine;
    read.rules.push_back(std::move(rule));
  }

  static constexpr std::string_view kMore = "--   ";  ///< of a line that goes on with a text

  const std::string& file;
  std::size_t number = 0;
  RuleFile read;
  std::set<std::string> names;

  bool isOpen = false;
  bool isRule = false;
  std::size_t beginLine = 0;
  Rule rule;
  std::string Rule::*openText = nullptr;  ///< of the tag of the line before
  RuleTable table;
  std::string sql;
  std::size_t sqlLine = 0;
};

}  // namespace

HealthFileError::HealthFileError(std::string_view file, std::size_t line, std::string_view reason)
    : runtime_error(fmt::format("{}:{}: {}", file, line, reason)) {}

RuleFile ReadRuleFile(std::string_view text, const std::string& file) {
  RuleFileReader reader(file);
  ReportLine line;
  for (ReportLines lines(text); lines.Next(line);) reader.Take(line.text);
  return reader.Finish();
}

std::vector<Rule> ReadOwnRules(std::string_view text, const std::string& file) {
  RuleFile read = ReadRuleFile(SkipByteOrderMark(text), file);
  if (!read.tables.empty()) {
    throw HealthFileError(
        file, 1,
        fmt::format("{} is a table; write it into the rule: WITH NAME AS (SELECT ...)",
                    read.tables.front().name));
  }
  if (read.rules.empty()) throw HealthFileError(file, 1, "there is no rule in it");
  return std::move(read.rules);
}

const RuleFile& GetBuiltInRules() {
  static const RuleFile kRules = [] {
    RuleFile read = ReadRuleFile(kBuiltInRules, "rules.sql");
    for (Rule& rule : read.rules) rule.file.clear();
    return read;
  }();
  return kRules;
}

void AddRules(std::vector<Rule>& rules, const std::vector<Rule>& more) {
  for (const Rule& rule : more) {
    const auto known = std::find_if(rules.begin(), rules.end(),
                                    [&](const Rule& other) { return other.id == rule.id; });
    if (known == rules.end()) {
      rules.push_back(rule);
    } else {
      *known = rule;
    }
  }
}

}  // namespace host
