#include "host/formats/answer_builder.h"

#include <fmt/format.h>

#include <chrono>
#include <memory>
#include <set>
#include <utility>

#include "host/repository/store.h"
#include "host/text/count_text.h"
#include "host/text/decoder.h"

namespace host {
namespace {

using halyard::repository::RRepository;

constexpr char kAnswer[] = "ANSWER";
constexpr int kNoNumber = -1;

/// Column names may repeat in an answer; properties may not.
std::vector<std::string> MakeKeys(const Database::Names& names) {
  std::vector<std::string> keys;
  std::set<std::string> taken;
  for (const std::string& name : names) {
    std::string key = name;
    for (int i = 2; !taken.insert(key).second; ++i) key = fmt::format("{}_{}", name, i);
    keys.push_back(std::move(key));
  }
  return keys;
}

}  // namespace

AnswerBuilder::AnswerBuilder(const std::string& question) : table{kAnswer, "query", {}, {}, {}} {
  answer.repository = std::make_unique<RRepository>();
  answer.machine.codePage = kUtf8CodePage;
  answer.machineIsKnown = false;
  answer.collected = std::chrono::system_clock::now();
  answer.tablesNamed = true;  // One table, which formats show plainly.
  answer.modules.push_back({"query", question});
}

void AnswerBuilder::NameColumns(const Database::Names& names) {
  const std::vector<std::string> keys = MakeKeys(names);
  for (std::size_t i = 0; i < names.size(); ++i) {
    columns.push_back({.key = keys[i], .label = names[i]});
    table.columns.push_back({.key = keys[i], .label = names[i], .text = {}});
  }
}

void AnswerBuilder::AddRow(const Database::Values& values) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto& [kind, text] = values[i];
    // SQLite's word for a number without an end, which JSON has none for.
    columns[i].kind = text.ends_with("Inf") ? CellKind::kText : kind;
    texts.emplace_back(text);
  }
  host::AddRow(*answer.repository, {kAnswer, "query", kNoNumber, columns, {}}, texts);
}

Collection AnswerBuilder::Take() {
  const auto& tables = TablesOf(*answer.repository);
  if (const auto rows = tables.find(kAnswer); rows != tables.end()) table.rows = &rows->second;
  table.status = {"rows", FormatCount(table.RowCount(), "row")};
  answer.tables.push_back(std::move(table));
  return std::move(answer);
}

}  // namespace host
