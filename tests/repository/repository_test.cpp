// What the host's repository makes of the plug-in's calls.

#include "frame/halyard/repository.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/repository/observer.h"
#include "host/repository/store.h"

namespace host {
namespace {

using halyard::repository::RInstance;
using halyard::repository::RInstancesWrapper;
using halyard::repository::RRepository;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Texts = std::vector<std::string>;

void AddText(RInstance& instance, const std::string& key, const std::string& value) {
  instance.AddProperty(key, "Label " + key, value, false);
}

const Table& TableOf(const RRepository& repository, const std::string& className) {
  return TablesOf(repository).at(className);
}

/// A row as "key=value" texts in its own order.
Texts Cells(const Row& row) {
  Texts cells;
  for (std::size_t i = 0; i < row.ValueCount(); ++i) {
    cells.push_back(row.shape->columns[i].key + "=" + std::string(row.Value(i)));
  }
  return cells;
}

/// Writes every event that it sees as a line.
class Listener : public RepositoryObserver {
 public:
  void OnInstance(std::uint64_t id, const std::string& className, const std::string& key,
                  int number) override {
    Note(id, "instance " + className + " " + key + " " + std::to_string(number));
  }
  void OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                  const std::string& value, bool flag) override {
    Note(id, "text " + key + "," + label + "," + value + (flag ? ",true" : ",false"));
  }
  void OnProperty(std::uint64_t id, const std::string& key, const std::string& label, int value,
                  bool flag) override {
    Note(id, "integer " + key + "," + label + "," + std::to_string(value) +
                 (flag ? ",true" : ",false"));
  }
  void OnAttribute(std::uint64_t id, const std::string& propertyKey, const std::string& name,
                   const std::string& value) override {
    Note(id, "attribute " + propertyKey + "," + name + "," + value);
  }
  void OnAdd(std::uint64_t id) override { Note(id, "add"); }
  void OnRelease(std::uint64_t id) override { Note(id, "release"); }
  void OnRowHeaders(const RInstancesWrapper& table, const Texts& names,
                    const std::vector<unsigned>& widths, bool flag) override {
    events.push_back("row headers of " + table.className + " " + std::to_string(names.size()) +
                     " " + std::to_string(widths.size()) + (flag ? " true" : " false"));
  }
  void OnColumnHeaders(const RInstancesWrapper& table, const Texts& headers, unsigned first,
                       unsigned second) override {
    events.push_back("column headers of " + table.className + " " + std::to_string(headers.size()) +
                     " " + std::to_string(first) + " " + std::to_string(second));
  }

  Texts events;

 private:
  void Note(std::uint64_t id, const std::string& event) {
    events.push_back(std::to_string(id) + " " + event);
  }
};

/// A listener in use as long as it lives.
struct Listening : Listener {
  RepositoryObserverInUse use{*this};
};

TEST(RepositoryObserver, SeesEveryCallInOrder) {
  const Listening listener;
  RRepository repository;
  {
    RInstance instance("ARPINFO", "arp", -1);
    instance.AddProperty("item1", "Address", std::string("10.0.0.1"), false);
    instance.AddProperty("item2", "Count", 7, true);
    instance.AddPropertyAttr("item1", "raw", "true");
    instance.AddToRepository(repository);
  }
  EXPECT_THAT(listener.events,
              ElementsAre("1 instance ARPINFO arp -1", "1 text item1,Address,10.0.0.1,false",
                          "1 integer item2,Count,7,true", "1 attribute item1,raw,true", "1 add",
                          "1 release"));
}

TEST(RepositoryObserver, CountsInstancesFrom1InOrderOfConstruction) {
  const RInstance before("T", "unseen", -1);
  const Listening listener;
  {
    const RInstance first("T", "a", -1);
    const RInstance second("T", "b", -1);
  }
  EXPECT_THAT(listener.events,
              ElementsAre("1 instance T a -1", "2 instance T b -1", "2 release", "1 release"));
}

TEST(RepositoryObserver, CountsFrom1AgainForTheNextOne) {
  for (int i = 0; i < 2; ++i) {
    const Listening listener;
    { const RInstance instance("T", "a", -1); }
    EXPECT_THAT(listener.events, ElementsAre("1 instance T a -1", "1 release"));
  }
}

TEST(RepositoryObserver, SeesLayoutsWithTheirTable) {
  const Listening listener;
  RInstancesWrapper table;
  table.className = "SENSORINFO";
  table.SetRowHeaders({"a"}, {19, 9}, true);
  table.SetColumnHeaders({}, 30, 2);
  EXPECT_THAT(listener.events, ElementsAre("row headers of SENSORINFO 1 2 true",
                                           "column headers of SENSORINFO 0 30 2"));
}

TEST(RepositoryObserver, SeesNothingBeforeAndAfterItsUse) {
  Listener listener;
  { const RInstance instance("T", "before", -1); }
  { const RepositoryObserverInUse use(listener); }
  { const RInstance instance("T", "after", -1); }
  EXPECT_THAT(listener.events, IsEmpty());
}

TEST(RepositoryObserver, SeesItsOwnThreadAlone) {
  Listener listener;
  const RepositoryObserverInUse use(listener);
  std::thread([] { const RInstance instance("T", "elsewhere", -1); }).join();
  EXPECT_THAT(listener.events, IsEmpty());
}

TEST(RepositoryObserver, MakesWayForAnotherAndComesBack) {
  Listener outer;
  Listener inner;
  const RepositoryObserverInUse useOuter(outer);
  {
    const RepositoryObserverInUse useInner(inner);
    const RInstance instance("T", "a", -1);
  }
  { const RInstance instance("T", "b", -1); }
  EXPECT_THAT(inner.events, ElementsAre("1 instance T a -1", "1 release"));
  EXPECT_THAT(outer.events, ElementsAre("1 instance T b -1", "1 release"));
}

TEST(Repository, HoldsOnlyClassesThatHaveRows) {
  RRepository repository;
  const RInstance neverAdded("B", "k", -1);
  RInstance("C", "k", -1).AddToRepository(repository);
  RInstance("A", "k", -1).AddToRepository(repository);
  Texts names;
  for (const auto& [name, table] : TablesOf(repository)) names.push_back(name);
  EXPECT_THAT(names, ElementsAre("A", "C"));
}

TEST(Repository, KeepsRowsInTheOrderInWhichTheyCame) {
  RRepository repository;
  for (const char* value : {"z", "a", "m"}) {
    RInstance instance("T", "k", -1);
    AddText(instance, "item", value);
    instance.AddToRepository(repository);
  }
  Texts values;
  for (const Row& row : TableOf(repository, "T").rows) values.emplace_back(row.Value(0));
  EXPECT_THAT(values, ElementsAre("z", "a", "m"));
}

TEST(Repository, AddsARecordWithoutProperties) {
  RRepository repository;
  RInstance("EMPTY", "k", -1).AddToRepository(repository);
  ASSERT_EQ(TableOf(repository, "EMPTY").rows.size(), 1U);
  EXPECT_THAT(Cells(TableOf(repository, "EMPTY").rows[0]), IsEmpty());
  EXPECT_THAT(TableOf(repository, "EMPTY").columns, IsEmpty());
}

TEST(Repository, CopiesTheInstanceAsItStands) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  AddText(instance, "a", "1");
  instance.AddToRepository(repository);
  AddText(instance, "b", "2");
  instance.AddToRepository(repository);
  EXPECT_THAT(Cells(TableOf(repository, "T").rows[0]), ElementsAre("a=1"));
  EXPECT_THAT(Cells(TableOf(repository, "T").rows[1]), ElementsAre("a=1", "b=2"));
}

TEST(Repository, KeepsTheRowsOfAReleasedInstance) {
  RRepository repository;
  {
    RInstance instance("T", "k", -1);
    AddText(instance, "a", "a value that does not fit into a small string");
    instance.AddToRepository(repository);
  }
  EXPECT_THAT(Cells(TableOf(repository, "T").rows[0]),
              ElementsAre("a=a value that does not fit into a small string"));
}

TEST(Repository, MakesOneRowPerAddOfARowBuffer) {
  RRepository repository;
  RInstance instance("SELINFO", "k", -1);
  for (const char* line : {"one", "two"}) {
    AddText(instance, "line", line);
    instance.AddToRepository(repository);
  }
  EXPECT_THAT(Cells(TableOf(repository, "SELINFO").rows[0]), ElementsAre("line=one"));
  EXPECT_THAT(Cells(TableOf(repository, "SELINFO").rows[1]), ElementsAre("line=two"));
}

TEST(Repository, ReplacesTheValueOfAKeyInItsPlace) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  AddText(instance, "a", "1");
  AddText(instance, "b", "2");
  AddText(instance, "a", "3");
  instance.AddToRepository(repository);
  EXPECT_THAT(Cells(TableOf(repository, "T").rows[0]), ElementsAre("a=3", "b=2"));
}

TEST(Repository, TakesTheLabelOfTheReplacement) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  instance.AddProperty("a", "Old", std::string("1"), false);
  instance.AddProperty("a", "New", std::string("2"), true);
  instance.AddToRepository(repository);
  const Column& column = TableOf(repository, "T").rows[0].shape->columns[0];
  EXPECT_EQ(column.label, "New");
  EXPECT_TRUE(column.flag);
}

TEST(Repository, TellsIntegersFromTexts) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  instance.AddProperty("n", "N", -12, false);
  AddText(instance, "t", "-12");
  instance.AddToRepository(repository);
  const Row& row = TableOf(repository, "T").rows[0];
  EXPECT_THAT(Cells(row), ElementsAre("n=-12", "t=-12"));
  EXPECT_EQ(row.shape->columns[0].kind, host::CellKind::kInteger);
  EXPECT_EQ(row.shape->columns[1].kind, host::CellKind::kText);
}

TEST(Repository, LetsATextReplaceAnInteger) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  instance.AddProperty("n", "N", 1, false);
  instance.AddProperty("n", "N", std::string("one"), false);
  instance.AddToRepository(repository);
  const Row& row = TableOf(repository, "T").rows[0];
  EXPECT_THAT(Cells(row), ElementsAre("n=one"));
  EXPECT_EQ(row.shape->columns[0].kind, host::CellKind::kText);
}

TEST(Repository, KeepsClassKeyAndNumberOfEachRow) {
  RRepository repository;
  RInstance("T", "Controller0", -1).AddToRepository(repository);
  RInstance("T", "Controller1", 4).AddToRepository(repository);
  const auto& rows = TableOf(repository, "T").rows;
  EXPECT_EQ(rows[0].shape->className, "T");
  EXPECT_EQ(rows[0].shape->instanceKey, "Controller0");
  EXPECT_EQ(rows[0].shape->number, -1);
  EXPECT_EQ(rows[1].shape->instanceKey, "Controller1");
  EXPECT_EQ(rows[1].shape->number, 4);
}

TEST(Repository, KeepsTheAttributesThatARowHadWhenItCame) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  AddText(instance, "file", "content");
  instance.AddToRepository(repository);
  instance.AddPropertyAttr("file", "raw", "true");
  instance.AddPropertyAttr("file", "filename", "c0_showall");
  instance.AddToRepository(repository);
  const auto& rows = TableOf(repository, "T").rows;
  EXPECT_THAT(rows[0].shape->attributes, IsEmpty());
  EXPECT_THAT(rows[1].shape->attributes, ElementsAre(Attribute{"file", "raw", "true"},
                                                     Attribute{"file", "filename", "c0_showall"}));
}

TEST(Repository, UnitesTheColumnsOfAllRowsInTheOrderInWhichTheyFirstCame) {
  RRepository repository;
  for (const Texts& keys : {Texts{"b", "a"}, Texts{"a", "c"}, Texts{"d", "b"}}) {
    RInstance instance("T", "k", -1);
    for (const std::string& key : keys) AddText(instance, key, "v");
    instance.AddToRepository(repository);
  }
  Texts keys;
  for (const Column& column : TableOf(repository, "T").columns) keys.push_back(column.key);
  EXPECT_THAT(keys, ElementsAre("b", "a", "c", "d"));
}

TEST(Repository, LeavesReferencesToTablesAndRowsValid) {
  RRepository repository;
  RInstance instance("T", "k", -1);
  AddText(instance, "a", "first");
  instance.AddToRepository(repository);
  const Table& table = TableOf(repository, "T");
  const Row& row = table.rows[0];
  for (int i = 0; i < 10000; ++i) {
    AddText(instance, "a", std::to_string(i));
    instance.AddToRepository(repository);
    RInstance(std::string("U").append(std::to_string(i % 100)), "k", -1)
        .AddToRepository(repository);
  }
  EXPECT_THAT(Cells(row), ElementsAre("a=first"));
  EXPECT_EQ(table.rows.size(), 10001U);
}

TEST(Repository, KnowsNothingOfAnother) {
  RRepository one;
  const RRepository other;
  RInstance("T", "k", -1).AddToRepository(one);
  EXPECT_THAT(TablesOf(other), IsEmpty());
}

TEST(Repository, SharesWhatRowsHaveInCommon) {
  RRepository repository;
  for (int i = 0; i < 3; ++i) {
    RInstance instance("T", "k", -1);
    AddText(instance, "a", std::to_string(i));
    instance.AddToRepository(repository);
  }
  const auto& rows = TableOf(repository, "T").rows;
  EXPECT_EQ(rows[0].shape, rows[1].shape);
  EXPECT_EQ(rows[1].shape, rows[2].shape);
}

/// A wrapper with something in every member.
RInstancesWrapper FullWrapper(int& calls) {
  RInstancesWrapper table;
  table.className = "OUTER, a name that does not fit into a small string";
  table.numbers = {40, 40, 20};
  table.callback = [&calls](RInstancesWrapper&) { ++calls; };
  table.headers = {"one", "two"};
  table.nestedTables.resize(1);
  table.nestedTables[0].className = "INNER";
  table.nestedTables[0].nestedTables.resize(1);
  table.nestedTables[0].nestedTables[0].className = "INNERMOST";
  table.properties = {{"key", 3, true, false, "label"}};
  table.byRow = true;
  table.rowFlag = true;
  table.columnCount = 3;
  table.flags = {{"flag", true}};
  table.pairs = {{"first", "second"}};
  table.owner = 0x123456789ABC;
  return table;
}

void ExpectFull(RInstancesWrapper& table, int& calls) {
  EXPECT_EQ(table.className, "OUTER, a name that does not fit into a small string");
  EXPECT_THAT(table.numbers, ElementsAre(40, 40, 20));
  const int before = calls;
  ASSERT_TRUE(table.callback);
  table.callback(table);
  EXPECT_EQ(calls, before + 1);
  EXPECT_THAT(table.headers, ElementsAre("one", "two"));
  ASSERT_EQ(table.nestedTables.size(), 1U);
  EXPECT_EQ(table.nestedTables[0].className, "INNER");
  ASSERT_EQ(table.nestedTables[0].nestedTables.size(), 1U);
  EXPECT_EQ(table.nestedTables[0].nestedTables[0].className, "INNERMOST");
  ASSERT_EQ(table.properties.size(), 1U);
  EXPECT_EQ(table.properties[0].key, "key");
  EXPECT_EQ(table.properties[0].kind, 3);
  EXPECT_TRUE(table.properties[0].shown);
  EXPECT_FALSE(table.properties[0].editable);
  EXPECT_EQ(table.properties[0].label, "label");
  EXPECT_TRUE(table.byRow);
  EXPECT_TRUE(table.rowFlag);
  EXPECT_EQ(table.columnCount, 3U);
  ASSERT_EQ(table.flags.size(), 1U);
  EXPECT_EQ(table.flags[0].name, "flag");
  EXPECT_TRUE(table.flags[0].set);
  EXPECT_THAT(table.pairs, ElementsAre(Pair("first", "second")));
  EXPECT_EQ(table.owner, 0x123456789ABCU);
}

void ExpectEmpty(const RInstancesWrapper& table) {
  EXPECT_EQ(table.className, "");
  EXPECT_THAT(table.numbers, IsEmpty());
  EXPECT_FALSE(table.callback);
  EXPECT_THAT(table.headers, IsEmpty());
  EXPECT_THAT(table.nestedTables, IsEmpty());
  EXPECT_THAT(table.properties, IsEmpty());
  EXPECT_FALSE(table.byRow);
  EXPECT_FALSE(table.rowFlag);
  EXPECT_EQ(table.columnCount, 0U);
  EXPECT_THAT(table.flags, IsEmpty());
  EXPECT_THAT(table.pairs, IsEmpty());
  EXPECT_EQ(table.owner, 0U);
}

TEST(TableContainer, IsCopiedDeeply) {
  int calls = 0;
  RInstancesWrapper original = FullWrapper(calls);
  RInstancesWrapper copy(original);
  copy.nestedTables[0].nestedTables[0].className = "changed";
  copy.headers[0] = "changed";
  ExpectFull(original, calls);
  RInstancesWrapper second(original);
  ExpectFull(second, calls);
}

TEST(TableContainer, IsCopiedDeeplyByAssignment) {
  int calls = 0;
  RInstancesWrapper original = FullWrapper(calls);
  RInstancesWrapper copy;
  copy.className = "old";
  copy.nestedTables.resize(3);
  copy = original;
  ExpectFull(copy, calls);
  copy.nestedTables[0].className = "changed";
  ExpectFull(original, calls);
}

TEST(TableContainer, IsEmptyWhenMovedFrom) {
  int calls = 0;
  RInstancesWrapper original = FullWrapper(calls);
  RInstancesWrapper moved(std::move(original));
  ExpectFull(moved, calls);
  ExpectEmpty(original);  // NOLINT(bugprone-use-after-move): what is left is the promise.
}

TEST(TableContainer, IsEmptyWhenMovedFromByAssignment) {
  int calls = 0;
  RInstancesWrapper original = FullWrapper(calls);
  RInstancesWrapper moved;
  moved.className = "old";
  moved = std::move(original);
  ExpectFull(moved, calls);
  ExpectEmpty(original);  // NOLINT(bugprone-use-after-move): what is left is the promise.
}

TEST(TableContainer, CanBeUsedAgainWhenMovedFrom) {
  int calls = 0;
  RInstancesWrapper original = FullWrapper(calls);
  const RInstancesWrapper moved(std::move(original));
  original = FullWrapper(calls);
  ExpectFull(original, calls);
}

TEST(TableContainer, SurvivesItsOwnAssignment) {
  int calls = 0;
  RInstancesWrapper table = FullWrapper(calls);
  RInstancesWrapper& same = table;
  table = same;
  ExpectFull(table, calls);
  table = std::move(same);
  ExpectFull(table, calls);
}

TEST(TableContainer, KeepsItsLayout) {
  RInstancesWrapper table;
  table.SetRowHeaders({"a", "b"}, {40, 20}, true);
  EXPECT_TRUE(table.byRow);
  EXPECT_TRUE(table.rowFlag);
  EXPECT_EQ(table.columnCount, 2U);
  EXPECT_THAT(table.headers, ElementsAre("a", "b"));
  EXPECT_THAT(table.numbers, ElementsAre(40, 20));
  table.SetColumnHeaders({"c"}, 30, 1);
  EXPECT_FALSE(table.byRow);
  EXPECT_THAT(table.headers, ElementsAre("c"));
  EXPECT_THAT(table.numbers, ElementsAre(30, 1));
}

}  // namespace
}  // namespace host
