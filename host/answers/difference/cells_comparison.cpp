#include "host/answers/difference/cells_comparison.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/answers/difference/compared.h"
#include "host/answers/parts/report_lines.h"
#include "host/collect/table_view.h"
#include "host/text/count_text.h"
#include "host/text/trim.h"

namespace host {
namespace {

/// Label and value of each cell that has one.
using Cells = std::vector<std::pair<std::string, std::string>>;

/// What is compared of a table: cells by the key of their row. Several rows may have one key.
class KeyedCells {
 public:
  void Add(std::string key, Cells cells) {
    const auto [known, isNew] = byKey.try_emplace(key);
    if (isNew) keys.push_back(std::move(key));
    known->second.push_back(std::move(cells));
  }

  /// In the order in which they came.
  const std::vector<std::string>& Keys() const { return keys; }
  const std::vector<Cells>* Find(const std::string& key) const {
    const auto found = byKey.find(key);
    return found == byKey.end() ? nullptr : &found->second;
  }

 private:
  std::vector<std::string> keys;
  std::unordered_map<std::string, std::vector<Cells>> byKey;
};

/// "[Baseboard,20,00] Product Name        : NG-2U-R208" as its key and its value.
std::optional<LabelledValue> SplitLine(std::string_view line) {
  line = Trim(line);
  const std::size_t bracket = line.find("] ");
  if (!line.starts_with('[') || bracket == std::string_view::npos) return std::nullopt;
  const std::size_t colon = line.find(':', bracket);
  if (colon == std::string_view::npos) return std::nullopt;
  return LabelledValue{Trim(line.substr(0, colon)), Trim(line.substr(colon + 1))};
}

/// The device with one blank before the field.
std::string SimplifyKey(std::string_view key) {
  std::string simple;
  for (const std::string_view word : ListWords(key)) {
    if (!simple.empty()) simple += ' ';
    simple += word;
  }
  return simple;
}

class TableReader {
 public:
  TableReader(const Side& side, const ComparedTable& compared, const DifferenceOptions& options)
      : side(side), compared(compared), options(options), view(side.GetCollection()) {}

  KeyedCells Read() {
    const std::vector<CollectedTable>& tables = side.GetCollection().tables;
    const auto table = std::ranges::find(tables, compared.className, &CollectedTable::className);
    if (table == tables.end() || table->RowCount() == 0) return {};
    const TableView rows = view.ViewTable(*table);
    for (std::size_t i = 0; i < rows.RowCount(); ++i) TakeRow(rows.RowAt(i));
    return std::move(read);
  }

 private:
  void TakeRow(const RowView& row) {
    Cells cells;
    std::map<std::string_view, std::string> keys;
    for (std::size_t place = 0; place < row.CellCount(); ++place) {
      const CellView cell = row.CellAt(place);
      const DecodedText key = cell.Key();
      const DecodedText text = cell.Text();
      const std::string_view value = Trim(text);
      if (compared.form == TableForm::kLines) {
        if (const auto line = SplitLine(value)) TakeCell(SimplifyKey(line->label), line->value);
        continue;
      }
      if (const auto named = std::ranges::find(compared.keys, key.View());
          named != compared.keys.end()) {
        keys.emplace(*named, value);
        continue;
      }
      if (std::ranges::find(compared.leftOut, key.View()) != compared.leftOut.end()) continue;
      const DecodedText label = cell.Label();
      std::string name(Trim(label).empty() ? key.View() : Trim(label));
      if (IsIgnored(options, compared.className, key) ||
          IsIgnored(options, compared.className, name)) {
        continue;
      }
      if (compared.form == TableForm::kLabels) {
        TakeCell(SimplifyKey(name), value);
      } else if (!value.empty()) {
        cells.emplace_back(std::move(name), value);
      }
    }
    if (compared.form == TableForm::kRows) read.Add(JoinKeys(keys), std::move(cells));
  }

  void TakeCell(std::string key, std::string_view value) {
    if (value.empty() || IsIgnored(options, compared.className, key)) return;
    read.Add(std::move(key), {{std::string(), std::string(value)}});
  }

  std::string JoinKeys(const std::map<std::string_view, std::string>& keys) const {
    std::string joined;
    for (const std::string_view key : compared.keys) {
      const auto found = keys.find(key);
      if (!joined.empty()) joined += ' ';
      if (found != keys.end()) joined += found->second;
    }
    return joined;
  }

  const Side& side;
  const ComparedTable& compared;
  const DifferenceOptions& options;
  CollectionView view;
  KeyedCells read;
};

class TableComparison {
 public:
  TableComparison(const ComparedTable& compared, const KeyedCells& before, const KeyedCells& after,
                  Difference& difference)
      : compared(compared), before(before), after(after), difference(difference) {}

  void Compare() {
    for (const std::string& key : after.Keys()) CompareKey(key);
    for (const std::string& key : before.Keys()) {
      if (after.Find(key) == nullptr) CompareKey(key);
    }
  }

 private:
  /// Of rows with one key those that are equal say nothing, and order says nothing.
  void CompareKey(const std::string& key) {
    static const std::vector<Cells> kNone;
    const std::vector<Cells>* found = before.Find(key);
    std::vector<Cells> old = found == nullptr ? kNone : *found;
    found = after.Find(key);
    std::vector<Cells> now = found == nullptr ? kNone : *found;
    std::ranges::sort(old);
    std::ranges::sort(now);
    std::vector<Cells> gone;
    std::vector<Cells> come;
    std::ranges::set_difference(old, now, std::back_inserter(gone));
    std::ranges::set_difference(now, old, std::back_inserter(come));
    const std::size_t pairs = std::min(gone.size(), come.size());
    for (std::size_t i = 0; i < pairs; ++i) CompareRows(key, gone[i], come[i]);
    if (compared.comesAndGoes) return;
    for (std::size_t i = pairs; i < gone.size(); ++i) {
      Add(key, {}, Join(gone[i]), std::nullopt);
    }
    for (std::size_t i = pairs; i < come.size(); ++i) {
      Add(key, {}, std::nullopt, Join(come[i]));
    }
  }

  void CompareRows(const std::string& key, const Cells& old, const Cells& now) {
    const auto find = [](const Cells& cells, const std::string& label) -> OptionalText {
      for (const auto& [name, value] : cells) {
        if (name == label) return value;
      }
      return std::nullopt;
    };
    for (const auto& [label, value] : now) {
      const OptionalText was = find(old, label);
      if (was != value) Add(key, label, was, value);
    }
    for (const auto& [label, value] : old) {
      if (!find(now, label)) Add(key, label, value, std::nullopt);
    }
  }

  void Add(const std::string& key, const std::string& column, OptionalText was, OptionalText is) {
    difference.cells.push_back(
        {std::string(compared.className), key, column, std::move(was), std::move(is)});
  }

  static std::string Join(const Cells& cells) {
    std::string joined;
    for (const auto& [label, value] : cells) {
      if (!joined.empty()) joined += ", ";
      if (!label.empty()) joined += label + " ";
      joined += value;
    }
    return joined;
  }

  const ComparedTable& compared;
  const KeyedCells& before;
  const KeyedCells& after;
  Difference& difference;
};

bool HaveKeyInCommon(const KeyedCells& before, const KeyedCells& after) {
  return std::ranges::any_of(before.Keys(),
                             [&](const std::string& key) { return after.Find(key) != nullptr; });
}

/// Takes the cells away that show something else than what the tool told; returns how many. In a
/// table of rows all of them may.
std::size_t DropUnfit(const ComparedTable& compared, const std::vector<std::string>& labels,
                      std::vector<CellDifference>& cells) {
  if (labels.empty() || compared.form != TableForm::kLabels) return 0;
  return std::erase_if(cells, [&](const CellDifference& cell) {
    return std::ranges::any_of(labels, [&](const std::string& label) {
      return label == kAnyLabel || SimplifyKey(label) == cell.key;
    });
  });
}

void CompareTable(const Sides& sides, const ComparedTable& compared,
                  const DifferenceOptions& options, Difference& difference) {
  const std::string className(compared.className);
  const std::string whyNotBefore = sides.before.FindWhyUnread(className);
  const std::string whyNotAfter = sides.after.FindWhyUnread(className);
  // The parts tell.
  if (sides.before.SaysNone(className) || sides.after.SaysNone(className)) return;
  if (!whyNotBefore.empty() && !whyNotAfter.empty()) return;
  if (!whyNotBefore.empty() || !whyNotAfter.empty()) {
    const bool isBefore = !whyNotBefore.empty();
    difference.notCompared.push_back({className,
                                      isBefore ? DifferenceSide::kBefore : DifferenceSide::kAfter,
                                      isBefore ? whyNotBefore : whyNotAfter});
    return;
  }
  if (sides.renaming.Rename(compared.controller) != compared.controller) {
    difference.notCompared.push_back(
        {className, DifferenceSide::kAfter,
         "it is of " + std::string(compared.controller) + ", which was another controller"});
    return;
  }
  const KeyedCells before = TableReader(sides.before, compared, options).Read();
  const KeyedCells after = TableReader(sides.after, compared, options).Read();
  // Facts that are all called otherwise are no facts, but what a tool said in their place.
  if (compared.form != TableForm::kRows && !HaveKeyInCommon(before, after)) {
    const bool isBefore = before.Keys().size() < after.Keys().size();
    if (before.Keys().empty() && after.Keys().empty()) return;
    difference.notCompared.push_back({className,
                                      isBefore ? DifferenceSide::kBefore : DifferenceSide::kAfter,
                                      "nothing of what the other collection has is in it"});
    return;
  }
  Difference all;
  TableComparison(compared, before, after, all).Compare();
  for (const Side* side : {&sides.before, &sides.after}) {
    const std::size_t unfit = DropUnfit(compared, side->ListUnfitLabels(className), all.cells);
    if (unfit == 0) continue;
    difference.notCompared.push_back({FormatCount(unfit, "cell") + " of " + className,
                                      side->Which(), "its columns do not fit its report"});
  }
  std::ranges::move(all.cells, std::back_inserter(difference.cells));
}

// --- reports ---

/// How many lines of `text` are not in `other`, each as often as it is there.
std::size_t CountOtherLines(std::string_view text, std::string_view other) {
  std::unordered_map<std::string_view, std::size_t> known;
  ReportLine line;
  for (ReportLines lines(other); lines.Next(line);) ++known[line.text];
  std::size_t count = 0;
  for (ReportLines lines(text); lines.Next(line);) {
    const auto found = known.find(line.text);
    if (found == known.end() || found->second == 0) {
      ++count;
    } else {
      --found->second;
    }
  }
  return count;
}

/// The reports of a class by the key of their property, after that of their row.
std::map<std::string, std::string> ListReports(const Side& side, std::string_view className,
                                               const Renaming& renaming) {
  std::map<std::string, std::string> reports;
  const CollectionView view(side.GetCollection());
  const std::vector<CollectedTable>& tables = side.GetCollection().tables;
  const auto table = std::ranges::find(tables, className, &CollectedTable::className);
  if (table == tables.end()) return reports;
  const TableView rows = view.ViewTable(*table);
  for (std::size_t i = 0; i < rows.RowCount(); ++i) {
    const RowView row = rows.RowAt(i);
    // "Controller1" is lsi1; of others there is one.
    std::string controller;
    for (std::size_t place = 0; place < row.CellCount(); ++place) {
      const CellView cell = row.CellAt(place);
      const DecodedText key = cell.Key();
      const DecodedText text = cell.Text();
      if (key.View() == "index") {
        constexpr std::string_view kController = "Controller";
        const std::string_view name = Trim(text);
        controller =
            name.starts_with(kController)
                ? renaming.Rename("lsi" + std::string(name.substr(kController.size()))) + ' '
                : std::string();
      } else {
        reports.emplace(controller + std::string(key.View()), text.View());
      }
    }
  }
  return reports;
}

}  // namespace

void CompareCells(const Sides& sides, const DifferenceOptions& options, Difference& difference) {
  for (const ComparedTable& compared : ListComparedTables()) {
    const bool isNamed =
        std::ranges::find(options.tables, compared.className) != options.tables.end();
    const bool isAlways = compared.turn == TableTurn::kAlways && options.parts.empty();
    if (isNamed || isAlways) CompareTable(sides, compared, options, difference);
  }
}

void CompareReports(const Sides& sides, Difference& difference) {
  for (const ComparedTable& compared : ListComparedTables()) {
    if (compared.turn != TableTurn::kAsReports) continue;
    const auto before = ListReports(sides.before, compared.className, sides.renaming);
    const auto after = ListReports(sides.after, compared.className, {});
    for (const auto& [key, text] : after) {
      const auto old = before.find(key);
      if (old == before.end() || old->second == text) continue;
      difference.reports.push_back({std::string(compared.className), key,
                                    CountOtherLines(old->second, text),
                                    CountOtherLines(text, old->second)});
    }
  }
}

}  // namespace host
