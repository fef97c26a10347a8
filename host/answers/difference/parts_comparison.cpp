#include "host/answers/difference/parts_comparison.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/answers/difference/compared.h"
#include "host/answers/parts/part_names.h"
#include "host/answers/parts/report_lines.h"

namespace host {
namespace {

const PartTable& GetPartTable(std::string_view name) {
  return *std::ranges::find(GetPartTables(), name, &PartTable::name);
}

/// A compared column with its values; `get` is null for a column that there is not.
struct Column {
  const ComparedColumn* compared;
  const PartColumn* part;
};

/// White space is layout.
bool AreSameWords(std::string_view one, std::string_view other) {
  return one == other || ListWords(one) == ListWords(other);
}

bool IsNothing(const PartValue& value) { return std::holds_alternative<std::monostate>(value); }

OptionalText MakeText(const PartValue& value) {
  if (IsNothing(value)) return std::nullopt;
  return FormatPartValue(value, {});
}

/// The parts of one side by their names and their serial numbers.
class Candidates {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void Add(std::string id, std::string_view serial) {
    const std::size_t row = ids.size();
    byId.emplace(id, row);
    ids.push_back(std::move(id));
    if (!IsUsableSerial(serial)) return;
    const auto [known, isNew] = bySerial.emplace(serial, row);
    if (!isNew) known->second = kNone;  // Two have it: it tells neither.
  }

  std::size_t Count() const { return ids.size(); }
  const std::string& IdOf(std::size_t row) const { return ids[row]; }
  std::size_t FindId(const std::string& id) const {
    const auto found = byId.find(id);
    return found == byId.end() ? kNone : found->second;
  }
  const std::unordered_map<std::string_view, std::size_t>& BySerial() const { return bySerial; }

 private:
  std::vector<std::string> ids;
  std::unordered_map<std::string, std::size_t> byId;
  std::unordered_map<std::string_view, std::size_t> bySerial;
};

struct Pair {
  std::size_t before;
  std::size_t after;
  bool hasSameSerial;
};

/// Compares one table of parts.
class PartTableComparison {
 public:
  PartTableComparison(const Sides& sides, const DifferenceOptions& options,
                      const ComparedPart& compared, Difference& difference)
      : sides(sides),
        compared(compared),
        table(GetPartTable(compared.table)),
        difference(difference),
        serial(FindColumn("serial")),
        model(FindColumn("model")),
        state(FindColumn("state")) {
    for (const ComparedColumn& column : compared.columns) {
      if (column.use == ColumnUse::kLeftOut || IsIgnored(options, table.name, column.name)) {
        continue;
      }
      columns.push_back({&column, FindColumn(column.name)});
    }
  }

  void Compare() {
    const Candidates before = ListCandidates(sides.before);
    const Candidates after = ListCandidates(sides.after);
    std::vector<bool> isOld(after.Count(), false);
    std::vector<bool> isStill(before.Count(), false);
    std::vector<Pair> pairs;
    const auto pair = [&](std::size_t one, std::size_t other, bool hasSameSerial) {
      if (one == Candidates::kNone || other == Candidates::kNone) return;
      if (isStill[one] || isOld[other]) return;
      isStill[one] = isOld[other] = true;
      pairs.push_back({one, other, hasSameSerial});
    };
    if (compared.hasSerials) {
      for (const auto& [number, row] : before.BySerial()) {
        const auto found = after.BySerial().find(number);
        if (found != after.BySerial().end()) pair(row, found->second, /*hasSameSerial=*/true);
      }
    }
    for (std::size_t row = 0; row < before.Count(); ++row) {
      pair(row, after.FindId(before.IdOf(row)), /*hasSameSerial=*/false);
    }
    std::ranges::sort(pairs, {}, &Pair::after);
    for (const Pair& one : pairs) ComparePair(one, after.IdOf(one.after));
    for (std::size_t row = 0; row < before.Count(); ++row) {
      if (!isStill[row]) TakeLone(sides.before, row, before.IdOf(row), PartChange::kRemoved);
    }
    for (std::size_t row = 0; row < after.Count(); ++row) {
      if (!isOld[row]) TakeLone(sides.after, row, after.IdOf(row), PartChange::kAdded);
    }
    TellUntold();
  }

 private:
  const PartColumn* FindColumn(std::string_view name) const {
    const auto found = std::ranges::find(table.columns, name, &PartColumn::name);
    return found == table.columns.end() ? nullptr : &*found;
  }

  std::shared_ptr<const Part> GetPart(const Side& side, std::size_t row) const {
    return table.at(side.GetParts(), row);
  }

  static std::string_view GetText(const PartColumn* column, const Part& part) {
    if (column == nullptr) return {};
    const PartValue value = column->get(part);
    const auto* text = std::get_if<std::string_view>(&value);
    return text == nullptr ? std::string_view() : *text;
  }

  Candidates ListCandidates(const Side& side) const {
    Candidates candidates;
    const std::size_t count = table.count(side.GetParts());
    for (std::size_t row = 0; row < count; ++row) {
      const std::shared_ptr<const Part> shared = GetPart(side, row);
      const Part& part = *shared;
      candidates.Add(&side == &sides.before ? sides.renaming.Rename(part.id) : part.id,
                     compared.hasSerials ? GetText(serial, part) : std::string_view());
    }
    return candidates;
  }

  /// A text that may begin with a controller's name, as the later collection has it.
  bool IsRenamed(const PartColumn& column) const {
    return column.name == "controller" || column.name == "grp";
  }

  bool IsReplaced(const Part& before, const Part& after) const {
    if (!compared.hasSerials) return false;
    const std::string_view oldSerial = GetText(serial, before);
    const std::string_view newSerial = GetText(serial, after);
    const std::string_view oldModel = GetText(model, before);
    const std::string_view newModel = GetText(model, after);
    return (IsUsableSerial(oldSerial) && IsUsableSerial(newSerial) && oldSerial != newSerial) ||
           (!oldModel.empty() && !newModel.empty() && !AreSameWords(oldModel, newModel));
  }

  /// Whether the values make a difference; `isWhole`: all of both sides was read.
  bool Differ(const Column& column, const Part& before, const Part& after,
              const PartValue& oldValue, const PartValue& newValue, bool isWhole) const {
    if (oldValue == newValue) return false;
    if (IsNothing(oldValue) || IsNothing(newValue)) {
      return column.compared->use == ColumnUse::kSign && isWhole;
    }
    const auto* oldText = std::get_if<std::string_view>(&oldValue);
    const auto* newText = std::get_if<std::string_view>(&newValue);
    if (oldText != nullptr && newText != nullptr && AreSameWords(*oldText, *newText)) return false;
    if (column.compared->unlike.empty()) return true;
    const PartColumn& exact = *FindColumn(column.compared->unlike);
    return IsNothing(exact.get(before)) || IsNothing(exact.get(after)) ||
           exact.get(before) != exact.get(after);
  }

  void ComparePair(const Pair& pair, const std::string& id) {
    const std::shared_ptr<const Part> partBefore = GetPart(sides.before, pair.before);
    const std::shared_ptr<const Part> partAfter = GetPart(sides.after, pair.after);
    const Part& before = *partBefore;
    const Part& after = *partAfter;
    PartDifference found{std::string(table.name), id, std::string(GetText(serial, after)),
                         PartChange::kChanged,    {}, {}};
    if (found.serial.empty()) found.serial = GetText(serial, before);
    const bool isReplaced = !pair.hasSameSerial && IsReplaced(before, after);
    if (isReplaced) found.change = PartChange::kReplaced;
    const bool isWhole = sides.before.IsSourceRead(table.name, before.id) &&
                         sides.after.IsSourceRead(table.name, after.id);
    for (const Column& column : columns) {
      if (isReplaced && column.compared->use == ColumnUse::kCounter) continue;
      PartValue oldValue = column.part->get(before);
      std::string renamed;
      if (const auto* text = std::get_if<std::string_view>(&oldValue);
          text != nullptr && IsRenamed(*column.part)) {
        renamed = sides.renaming.Rename(*text);
        oldValue = std::string_view(renamed);
      }
      const PartValue newValue = column.part->get(after);
      if (!Differ(column, before, after, oldValue, newValue, isWhole)) continue;
      found.columns.push_back({std::string(column.part->name), column.part->type,
                               MakeText(oldValue), MakeText(newValue)});
      if (column.compared->use == ColumnUse::kPlace && !isReplaced) {
        found.change = PartChange::kMoved;
      }
    }
    if (!found.columns.empty()) difference.parts.push_back(std::move(found));
  }

  /// A part of `side` that the other one does not tell of.
  void TakeLone(const Side& side, std::size_t row, const std::string& id, PartChange change) {
    const Side& other = sides.Other(side);
    const std::shared_ptr<const Part> shared = GetPart(side, row);
    const Part& part = *shared;
    std::string why = other.FindWhyUntold(table.name, sides.Translate(side, part.id), part.readAt);
    if (why.empty()) {
      difference.parts.push_back({std::string(table.name),
                                  id,
                                  std::string(GetText(serial, part)),
                                  change,
                                  std::string(GetText(state, part)),
                                  {}});
      return;
    }
    ++untold[{other.Which(), side.NameSource(table.name, part.id), std::move(why)}];
  }

  void TellUntold() {
    for (const auto& [key, count] : untold) {
      const auto& [side, source, why] = key;
      std::string counted = CountParts(table.name, count);
      if (NameParts(table.name, 0) != source) counted += " of " + source;
      difference.notCompared.push_back({std::move(counted), side, why});
    }
  }

  const Sides& sides;
  const ComparedPart& compared;
  const PartTable& table;
  Difference& difference;
  const PartColumn* serial;
  const PartColumn* model;
  const PartColumn* state;
  std::vector<Column> columns;
  /// By the side that does not tell, the source, and why.
  std::map<std::tuple<DifferenceSide, std::string, std::string>, std::size_t> untold;
};

}  // namespace

void CompareParts(const Sides& sides, const DifferenceOptions& options, Difference& difference) {
  for (const ComparedPart& compared : ListComparedParts()) {
    const bool isWanted = options.parts.empty() ||
                          std::ranges::find(options.parts, compared.table) != options.parts.end();
    if (isWanted) PartTableComparison(sides, options, compared, difference).Compare();
  }
}

}  // namespace host
