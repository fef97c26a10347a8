// Which tables are enumerated, and in which order.

#include <gmock/gmock.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/collect/collect.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

using halyard::repository::RInstance;
using halyard::repository::RInstancesWrapper;
using halyard::repository::RModule;
using halyard::repository::RRepository;
using testing::ElementsAre;

using Names = std::vector<std::string>;

/// Adds one row per enumeration to the enumerated table, and notes its calls.
class ListedModule : public RModule {
 public:
  ListedModule(std::string name, Names tableNames, Names& calls)
      : name(std::move(name)), tableNames(std::move(tableNames)), calls(calls) {}

  std::string GetName() override { return name; }
  std::string GetDescription() override { return "about " + name; }
  void RegisterTables() override {
    calls.push_back("register " + name);
    for (const std::string& table : tableNames) {
      tables[table].enumHandler = [this, table](RRepository& repository) {
        calls.push_back("enumerate " + table);
        RInstance instance(table, "key", -1);
        instance.AddToRepository(repository);
        if (!alsoInto.empty()) RInstance(alsoInto, "key", -1).AddToRepository(repository);
      };
      tables[table].layoutHandler = [this, table](RInstancesWrapper& container) {
        calls.push_back("layout " + table);
        container.SetColumnHeaders({table}, 30, 2);
      };
    }
  }

  /// A class that every enumeration also adds a row to.
  std::string alsoInto;

 private:
  std::string name;
  Names tableNames;
  Names& calls;
};

/// Has these modules and no machine.
class ListedSource final : public Source {
 public:
  explicit ListedSource(ModuleList modules) : modules(std::move(modules)) {}

  void Begin(CollectionListener& /*listener*/) override {}
  void AddModules(ModuleList& added) override { added = modules; }
  pq::Platform* Machine() override { return nullptr; }
  MachineFacts Facts() override { return {}; }
  bool HasPrograms(const std::string& /*commandLine*/) override { return true; }
  std::optional<std::uint64_t> LogFileSize(const std::string& /*fileName*/) override {
    return std::nullopt;
  }

 private:
  ModuleList modules;
};

class SelectedTables : public testing::Test {
 protected:
  SelectedTables()
      : first(boost::make_shared<ListedModule>("First", Names{"B", "A"}, calls)),
        second(boost::make_shared<ListedModule>("Second", Names{"C"}, calls)),
        modules(RegisterModules({first, second})) {
    calls.clear();
  }

  /// The selected tables as "module.table".
  Names Select(const Names& moduleNames, const Names& tableNames) {
    Names selected;
    for (const ModuleSelection& chosen : SelectTables(modules, {moduleNames, tableNames})) {
      for (const std::string& table : chosen.tables) {
        selected.push_back(chosen.module->name + "." + table);
      }
    }
    return selected;
  }

  std::string Complaint(const Names& moduleNames, const Names& tableNames) {
    try {
      SelectTables(modules, {moduleNames, tableNames});
    } catch (const UsageError& error) {
      return error.what();
    }
    return "no complaint";
  }

  Collection Run(const Names& moduleNames, const Names& tableNames) {
    CollectionListener nobody;
    return Run(moduleNames, tableNames, nobody);
  }

  Collection Run(const Names& moduleNames, const Names& tableNames, CollectionListener& listener) {
    ListedSource source({first, second});
    Collection collection = Collect(source, {moduleNames, tableNames}, listener);
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("register"); });
    return collection;
  }

  Names calls;
  boost::shared_ptr<ListedModule> first;
  boost::shared_ptr<ListedModule> second;
  std::vector<LoadedModule> modules;
};

TEST_F(SelectedTables, TakesModulesInTheirOrderAndTablesByName) {
  EXPECT_THAT(Select({}, {}), ElementsAre("First.A", "First.B", "Second.C"));
}

TEST_F(SelectedTables, TakesNamedModulesInTheOrderNamed) {
  EXPECT_THAT(Select({"Second", "First"}, {}), ElementsAre("Second.C", "First.A", "First.B"));
}

TEST_F(SelectedTables, TakesNamedTablesInTheOrderNamed) {
  EXPECT_THAT(Select({}, {"B", "A"}), ElementsAre("First.B", "First.A"));
}

TEST_F(SelectedTables, TakesATableNamedTwiceTwice) {
  EXPECT_THAT(Select({}, {"A", "B", "A"}), ElementsAre("First.A", "First.B", "First.A"));
}

TEST_F(SelectedTables, UsesOnlyTheModulesThatOwnANamedTable) {
  EXPECT_THAT(Select({}, {"C"}), ElementsAre("Second.C"));
  EXPECT_THAT(Select({"First", "Second"}, {"C"}), ElementsAre("Second.C"));
}

TEST_F(SelectedTables, TakesNamesInAnyCase) {
  EXPECT_THAT(Select({"SECOND", "first"}, {"c", "b"}), ElementsAre("Second.C", "First.B"));
}

TEST_F(SelectedTables, PreferANameInTheCaseThatWasTyped) {
  first = boost::make_shared<ListedModule>("First", Names{"Aa", "aA", "aa"}, calls);
  modules = RegisterModules({first});
  EXPECT_THAT(Select({}, {"aA"}), ElementsAre("First.aA"));
  EXPECT_THAT(Select({}, {"AA"}), ElementsAre("First.Aa"));
}

TEST_F(SelectedTables, RefusesAnUnknownModuleAndNamesThoseThereAre) {
  EXPECT_EQ(Complaint({"Frist"}, {}),
            "there is no module Frist; did you mean First? (modules: First, Second)");
}

TEST_F(SelectedTables, RefusesAnUnknownTableAndNamesThoseThereAre) {
  EXPECT_EQ(Complaint({}, {"NOTHING"}), "there is no table NOTHING (tables: A, B, C)");
}

TEST_F(SelectedTables, RefusesATableOfAModuleThatWasNotNamed) {
  EXPECT_EQ(Complaint({"First"}, {"C"}),
            "table C belongs to module Second: add --module Second, or leave --module away");
}

TEST_F(SelectedTables, RefusesBeforeAnythingIsEnumerated) {
  Complaint({}, {"A", "NOTHING"});
  EXPECT_THAT(calls, ElementsAre());
}

TEST_F(SelectedTables, RegistersEachModuleOnce) {
  RegisterModules({first, second});
  EXPECT_THAT(calls, ElementsAre("register First", "register Second"));
}

TEST_F(SelectedTables, AsksForTheLayoutOfEachTableBeforeItIsEnumerated) {
  Run({}, {});
  EXPECT_THAT(calls, ElementsAre("layout A", "enumerate A", "layout B", "enumerate B", "layout C",
                                 "enumerate C"));
}

TEST_F(SelectedTables, TellsListenersBeforeThingsHappen) {
  struct Teller : CollectionListener {
    explicit Teller(Names& calls) : calls(calls) {}
    void Module(const std::string& name, const std::string& description) override {
      calls.push_back("told " + name + ", " + description);
    }
    void Layout(const std::string& table) override { calls.push_back("told layout " + table); }
    void Enumerate(const std::string& module, const std::string& table) override {
      calls.push_back("told enumerate " + module + "." + table);
    }
    Names& calls;
  };
  Teller teller(calls);
  Run({}, {"C"}, teller);
  EXPECT_THAT(calls, ElementsAre("told Second, about Second", "told layout C", "layout C",
                                 "told enumerate Second.C", "enumerate C"));
}

TEST_F(SelectedTables, ListsATableNamedTwiceOnceWithTheRowsOfBoth) {
  const Collection collection = Run({}, {"A", "A"});
  ASSERT_EQ(collection.tables.size(), 1U);
  EXPECT_EQ(collection.tables[0].RowCount(), 2U);
  ASSERT_EQ(collection.modules.size(), 1U);
}

TEST_F(SelectedTables, KeepsTheLayoutOfATable) {
  const Collection collection = Run({}, {"A"});
  EXPECT_FALSE(collection.tables[0].layout.byRow);
  EXPECT_THAT(collection.tables[0].layout.headers, ElementsAre("A"));
  EXPECT_THAT(collection.tables[0].layout.numbers, ElementsAre(30, 2));
}

TEST_F(SelectedTables, ListsAClassThatNobodyRegisteredBehindItsModulesTables) {
  first->alsoInto = "EXTRA";
  const Collection collection = Run({}, {});
  ASSERT_EQ(collection.tables.size(), 4U);
  EXPECT_EQ(collection.tables[2].className, "EXTRA");
  EXPECT_EQ(collection.tables[2].module, "First");
  EXPECT_EQ(collection.tables[2].RowCount(), 2U);
}

TEST_F(SelectedTables, LeavesAwayWhatWasNotNamed) {
  first->alsoInto = "B";
  const Collection collection = Run({}, {"A"});
  ASSERT_EQ(collection.tables.size(), 1U);
  EXPECT_EQ(collection.tables[0].className, "A");
}

TEST_F(SelectedTables, EnumeratesAModuleNamedTwiceTwice) {
  Run({"Second", "Second"}, {});
  EXPECT_THAT(calls, ElementsAre("layout C", "enumerate C", "layout C", "enumerate C"));
}

}  // namespace
}  // namespace host
