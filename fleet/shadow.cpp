#include "fleet/shadow.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "fleet/copy_text.h"
#include "fleet/isolated_parse.h"
#include "fleet/server_state.h"
#include "host/text/screen_text.h"

namespace fleet {
namespace {

constexpr std::size_t kMostExamples = 10;
constexpr std::size_t kWidestCell = 60;

std::string Quote(const Value& value) {
  return value ? '"' + host::CutText(host::EscapeControls(*value), kWidestCell) + '"' : "nothing";
}

}  // namespace

struct Shadow::Server {
  std::int64_t id;
  std::string name;
  std::string key;
  ServerState before;
  std::string verdict;
  std::optional<host::LocalTime> taken;  ///< as workers have it
};

Shadow::Shadow(Connection& connection, const Store& store, const RowTables& tables, Parser& parser)
    : connection(connection), store(store), tables(tables), parser(parser) {
  const Answer known = connection.Ask("select name, id from row_table");
  for (std::size_t row = 0; row < known.RowCount(); ++row) {
    numbers.emplace(known.At(row, 0), static_cast<std::uint16_t>(known.NumberAt(row, 1)));
  }
  const Answer there = connection.Ask(
      "select table_name, column_name from information_schema.columns where table_schema = "
      "'fleet'");
  for (std::size_t row = 0; row < there.RowCount(); ++row) {
    columns[std::string(there.At(row, 0))].emplace_back(there.At(row, 1));
  }
}

ShadowResult Shadow::Look(const std::vector<std::string>& servers,
                          const std::function<bool()>& wantsEnd) {
  std::int64_t after = -1;
  while (!wantsEnd()) {
    const std::vector<Server> next = FindNext(servers, after);
    if (next.empty()) break;
    for (const Server& server : next) {
      if (wantsEnd()) break;
      LookAt(server);
      ++result.servers;
    }
    after = next.back().id;
  }
  return std::move(result);
}

std::vector<Shadow::Server> Shadow::FindNext(const std::vector<std::string>& names,
                                             std::int64_t after) {
  const Answer answer = connection.Ask(
      "select e.server, v.name, encode(o.key, 'hex'), encode(e.rows, 'hex'), r.verdict,"
      "  extract(epoch from s.taken)::bigint, s.taken_offset "
      "from server_state e join server v on v.id = e.server join object o on o.id = e.object "
      "left join result r on r.object = e.object "
      "left join lateral (select taken, taken_offset from submission"
      "  where object = e.object and note is null order by taken limit 1) s on true "
      "where e.server > $1 and ($2::text[] = '{}' or v.name = any($2::text[])) "
      "order by e.server limit 256",
      {std::to_string(after), WriteTexts(names)});
  std::vector<Server> servers;
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    Server server{answer.NumberAt(row, 0),        std::string(answer.At(row, 1)),
                  std::string(answer.At(row, 2)), UnpackState(DecodeHex(answer.At(row, 3))),
                  std::string(answer.At(row, 4)), std::nullopt};
    if (!answer.IsNull(row, 5)) {
      server.taken = {
          std::chrono::system_clock::time_point(std::chrono::seconds(answer.NumberAt(row, 5))),
          std::chrono::minutes(answer.NumberAt(row, 6))};
    }
    servers.push_back(std::move(server));
  }
  return servers;
}

void Shadow::LookAt(const Server& server) {
  const WorkedRecording worked =
      ParseIsolated(store, parser, tables, server.key, server.taken, {}, Sandbox::kStrict);
  const std::string& refusal = worked.failure.empty() ? worked.parsed.refusal : worked.failure;
  if (!refusal.empty()) {
    ShadowChanges& parked = Count("parked", 1);
    if (parked.examples.size() < kMostExamples) {
      parked.examples.push_back(fmt::format("{}: {}", server.name, refusal));
    }
    return;
  }
  if (worked.parsed.verdict != server.verdict) {
    ShadowChanges& verdicts = Count("verdict", 1);
    if (verdicts.examples.size() < kMostExamples) {
      verdicts.examples.push_back(
          fmt::format("{}: {} -> {}", server.name, server.verdict, worked.parsed.verdict));
    }
  }
  std::map<std::size_t, const std::string*> rows;
  for (const ParsedTable& table : worked.parsed.tables) rows.emplace(table.table, &table.rows);
  static const std::string kNoRows;
  for (std::size_t table = 0; table < tables.All().size(); ++table) {
    const auto found = rows.find(table);
    CompareTable(server, table, found == rows.end() ? kNoRows : *found->second);
  }
}

void Shadow::CompareTable(const Server& server, std::size_t table, const std::string& text) {
  const RowTable& described = tables.At(table);
  const std::vector<std::string_view> rows = SplitCopyRows(text, described.columns.size());
  std::vector<std::uint64_t> hashes;
  for (const std::string_view row : rows) hashes.push_back(HashRow(row));
  const auto number = numbers.find(described.name);
  const auto before =
      number == numbers.end() ? server.before.end() : server.before.find(number->second);
  const TableChange change = FindChange(
      before == server.before.end() ? TableState{0, described.isLog, {}} : before->second, hashes,
      described.isLog);
  if (change.IsEmpty()) return;
  std::set<std::uint32_t> changed(change.removed.begin(), change.removed.end());
  changed.insert(change.added.begin(), change.added.end());
  ShadowChanges& counted = Count(described.name, changed.size());
  for (const std::uint32_t row : changed) {
    if (counted.examples.size() >= kMostExamples) return;
    counted.examples.push_back(DescribeRow(server, described, row,
                                           row > rows.size() ? std::string_view() : rows[row - 1]));
  }
}

std::string Shadow::DescribeRow(const Server& server, const RowTable& table, std::uint32_t row,
                                std::string_view now) {
  const std::string place = fmt::format("{} row {}: ", server.name, row);
  if (now.empty()) return place + "gone";
  const std::vector<Value> cells = ReadCopyCells(now);
  // PostgreSQL writes both sides, so that the same number is the same text.
  std::string sides = "t._row";
  std::vector<Value> values = {std::to_string(server.id), std::to_string(row)};
  const std::vector<std::string>& there = columns[table.name];
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const RowColumn& column = table.columns[i];
    const bool isThere = std::find(there.begin(), there.end(), column.name) != there.end();
    values.push_back(cells[i]);
    sides += fmt::format(", {}, (${}::text)::{}::text",
                         isThere ? "t." + QuoteName(column.name) + "::text" : "null", values.size(),
                         column.type);
  }
  const Answer answer = connection.Ask(
      fmt::format("select {} from (select) one left join {} t on t._server = $1 and t._row = $2",
                  sides,
                  there.empty() ? "(select 0 as _server, 0 as _row)" : QuoteName(table.name)),
      values);
  if (answer.IsNull(0, 0)) return place + "new";
  std::string text;
  const auto side = [&](std::size_t column) {
    return answer.IsNull(0, column) ? Value() : Value(std::string(answer.At(0, column)));
  };
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const Value before = side(1 + 2 * i);
    const Value after = side(2 + 2 * i);
    if (before == after) continue;
    text += fmt::format("{}{} {} -> {}", text.empty() ? "" : ", ", table.columns[i].name,
                        Quote(before), Quote(after));
  }
  return place + (text.empty() ? "the same, written anew" : text);
}

ShadowChanges& Shadow::Count(const std::string& what, std::size_t rows) {
  ShadowChanges& counted = result.changes[what];
  counted.rows += rows;
  ++counted.servers;
  return counted;
}

}  // namespace fleet
