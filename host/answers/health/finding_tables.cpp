#include "host/answers/health/finding_tables.h"

#include <string>

namespace host {
namespace {

PartValue MakeText(std::string_view text) { return text.empty() ? PartValue() : PartValue(text); }

PartValue MakeNumber(std::int64_t number) { return number == 0 ? PartValue() : PartValue(number); }

/// The column of a text of the hit.
template <std::string HealthHit::*member>
FindingColumn HitColumn(std::string_view name, std::string_view description) {
  return {name, PartType::kText, description,
          [](const FindingRow& row) { return MakeText(row.hit.*member); }};
}

FindingColumn PositionColumn(std::string_view description) {
  return {"position", PartType::kInteger, description,
          [](const FindingRow& row) { return PartValue(row.position); }};
}

FindingColumn KeyColumn() {
  return {"finding", PartType::kText,
          "rule and id of the finding's title; the same in the next collection",
          [](const FindingRow& row) { return MakeText(row.finding.key); }};
}

FindingColumn SuppressedColumn() {
  return {"suppressed", PartType::kText, "severity that it would have if nobody had suppressed it",
          [](const FindingRow& row) {
            return row.hit.suppressed ? MakeText(GetWord(*row.hit.suppressed)) : PartValue();
          }};
}

template <auto member>
PartValue GetOfPlace(const FindingRow& row) {
  if constexpr (requires { MakeText(row.hit.place.*member); }) {
    return MakeText(row.hit.place.*member);
  } else {
    return MakeNumber(row.hit.place.*member);
  }
}

std::vector<FindingTable> MakeTables() {
  const FindingColumn part =
      HitColumn<&HealthHit::part>("part", "table of the part that it is about");
  const FindingColumn id = HitColumn<&HealthHit::id>("id", "of that part");
  const FindingColumn serial = HitColumn<&HealthHit::serial>("serial", "number of that part");
  const FindingColumn rule = HitColumn<&HealthHit::rule>("rule", "rule that says so");
  const FindingColumn area = HitColumn<&HealthHit::area>("area", "of the machine");
  const FindingColumn observed =
      HitColumn<&HealthHit::observed>("observed", "what was seen, in the tool's words");
  const FindingColumn text =
      HitColumn<&HealthHit::text>("text", "a sentence for whoever has to act");
  const FindingColumn reason = HitColumn<&HealthHit::reason>("reason", "why it was suppressed");

  FindingTable findings{"findings", "what is wrong, the worst first", /*hasEachHit=*/false, {}};
  findings.columns = {
      PositionColumn("from 1"),
      KeyColumn(),
      {"severity", PartType::kText, "critical, warning, unknown or notice",
       [](const FindingRow& row) { return MakeText(GetWord(row.finding.severity)); }},
      area,
      part,
      id,
      serial,
      rule,
      observed,
      text,
      HitColumn<&HealthHit::why>("why", "why the rule says so"),
      HitColumn<&HealthHit::next>("next", "what to do"),
      SuppressedColumn(),
      reason,
  };
  FindingTable evidence{"evidence",
                        "how that is known: the answers of rules that are a finding",
                        /*hasEachHit=*/true,
                        {}};
  evidence.columns = {
      KeyColumn(),
      PositionColumn("in the finding, from 1, which is its title"),
      rule,
      {"severity", PartType::kText, "critical, warning, unknown or notice",
       [](const FindingRow& row) { return MakeText(GetWord(row.hit.severity)); }},
      area,
      part,
      id,
      serial,
      observed,
      text,
      SuppressedColumn(),
      reason,
      {"class", PartType::kText, "table class it was read from", GetOfPlace<&Place::className>},
      {"row", PartType::kInteger, "row of the class, from 1", GetOfPlace<&Place::row>},
      {"key", PartType::kText, "property of the row", GetOfPlace<&Place::key>},
      {"line", PartType::kInteger, "line of the property's text, from 1", GetOfPlace<&Place::line>},
      {"tool", PartType::kText, "tool whose report it is", GetOfPlace<&Place::tool>},
  };
  return {findings, evidence};
}

}  // namespace

std::span<const FindingTable> GetFindingTables() {
  static const std::vector<FindingTable> kTables = MakeTables();
  return kTables;
}

std::vector<FindingRow> ListRows(const FindingTable& table, const Health& health) {
  std::vector<FindingRow> rows;
  std::int64_t position = 0;
  for (const HealthFinding& finding : health.findings) {
    if (!table.hasEachHit) {
      rows.push_back({finding, finding.hits.front(), ++position});
      continue;
    }
    position = 0;
    for (const HealthHit& hit : finding.hits) rows.push_back({finding, hit, ++position});
  }
  return rows;
}

}  // namespace host
