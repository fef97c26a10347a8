// Which tables are enumerated, and in which order.

#include <gmock/gmock.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "host/collect/collection.h"
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

class Selection : public testing::Test {
 protected:
  Selection()
      : first(boost::make_shared<ListedModule>("First", Names{"B", "A"}, calls)),
        second(boost::make_shared<ListedModule>("Second", Names{"C"}, calls)),
        modules(RegisterModules({first, second})) {
    calls.clear();
  }

  /// The selected tables as "module.table".
  Names Select(const Names& moduleNames, const Names& tableNames) {
    Names selected;
    for (const ModuleSelection& chosen : SelectTables(modules, moduleNames, tableNames)) {
      for (const std::string& table : chosen.tables) {
        selected.push_back(chosen.module->name + "." + table);
      }
    }
    return selected;
  }

  std::string Complaint(const Names& moduleNames, const Names& tableNames) {
    try {
      SelectTables(modules, moduleNames, tableNames);
    } catch (const UsageError& error) {
      return error.what();
    }
    return "no complaint";
  }

  Collection Run(const Names& moduleNames, const Names& tableNames) {
    CollectionListener nobody;
    return RunCollection(SelectTables(modules, moduleNames, tableNames), !tableNames.empty(),
                         nobody);
  }

  Names calls;
  boost::shared_ptr<ListedModule> first;
  boost::shared_ptr<ListedModule> second;
  std::vector<LoadedModule> modules;
};

TEST_F(Selection, TakesModulesInTheirOrderAndTablesByName) {
  EXPECT_THAT(Select({}, {}), ElementsAre("First.A", "First.B", "Second.C"));
}

TEST_F(Selection, TakesNamedModulesInTheOrderNamed) {
  EXPECT_THAT(Select({"Second", "First"}, {}), ElementsAre("Second.C", "First.A", "First.B"));
}

TEST_F(Selection, TakesNamedTablesInTheOrderNamed) {
  EXPECT_THAT(Select({}, {"B", "A"}), ElementsAre("First.B", "First.A"));
}

TEST_F(Selection, TakesATableNamedTwiceTwice) {
  EXPECT_THAT(Select({}, {"A", "B", "A"}), ElementsAre("First.A", "First.B", "First.A"));
}

TEST_F(Selection, UsesOnlyTheModulesThatOwnANamedTable) {
  EXPECT_THAT(Select({}, {"C"}), ElementsAre("Second.C"));
  EXPECT_THAT(Select({"First", "Second"}, {"C"}), ElementsAre("Second.C"));
}

TEST_F(Selection, RefusesAnUnknownModuleAndNamesThoseThereAre) {
  EXPECT_EQ(Complaint({"Frist"}, {}),
            "there is no module Frist; did you mean First? (modules: First, Second)");
}

TEST_F(Selection, RefusesAnUnknownTableAndNamesThoseThereAre) {
  EXPECT_EQ(Complaint({}, {"NOTHING"}), "there is no table NOTHING (tables: A, B, C)");
}

TEST_F(Selection, RefusesATableOfAModuleThatWasNotNamed) {
  EXPECT_EQ(Complaint({"First"}, {"C"}),
            "table C belongs to module Second: add --module Second, or leave --module away");
}

TEST_F(Selection, RefusesBeforeAnythingIsEnumerated) {
  Complaint({}, {"A", "NOTHING"});
  EXPECT_THAT(calls, ElementsAre());
}

TEST_F(Selection, RegistersEachModuleOnce) {
  RegisterModules({first, second});
  EXPECT_THAT(calls, ElementsAre("register First", "register Second"));
}

TEST_F(Selection, AsksForTheLayoutOfEachTableBeforeItIsEnumerated) {
  Run({}, {});
  EXPECT_THAT(calls, ElementsAre("layout A", "enumerate A", "layout B", "enumerate B", "layout C",
                                 "enumerate C"));
}

TEST_F(Selection, TellsListenersBeforeThingsHappen) {
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
  RunCollection(SelectTables(modules, {}, {"C"}), true, teller);
  EXPECT_THAT(calls, ElementsAre("told Second, about Second", "told layout C", "layout C",
                                 "told enumerate Second.C", "enumerate C"));
}

TEST_F(Selection, ListsATableNamedTwiceOnceWithTheRowsOfBoth) {
  const Collection collection = Run({}, {"A", "A"});
  ASSERT_EQ(collection.tables.size(), 1U);
  EXPECT_EQ(collection.tables[0].RowCount(), 2U);
  ASSERT_EQ(collection.modules.size(), 1U);
}

TEST_F(Selection, KeepsTheLayoutOfATable) {
  const Collection collection = Run({}, {"A"});
  EXPECT_FALSE(collection.tables[0].layout.byRow);
  EXPECT_THAT(collection.tables[0].layout.headers, ElementsAre("A"));
  EXPECT_THAT(collection.tables[0].layout.numbers, ElementsAre(30, 2));
}

TEST_F(Selection, ListsAClassThatNobodyRegisteredBehindItsModulesTables) {
  first->alsoInto = "EXTRA";
  const Collection collection = Run({}, {});
  ASSERT_EQ(collection.tables.size(), 4U);
  EXPECT_EQ(collection.tables[2].className, "EXTRA");
  EXPECT_EQ(collection.tables[2].module, "First");
  EXPECT_EQ(collection.tables[2].RowCount(), 2U);
}

TEST_F(Selection, LeavesAwayWhatWasNotNamed) {
  first->alsoInto = "B";
  const Collection collection = Run({}, {"A"});
  ASSERT_EQ(collection.tables.size(), 1U);
  EXPECT_EQ(collection.tables[0].className, "A");
}

TEST_F(Selection, EnumeratesAModuleNamedTwiceTwice) {
  Run({"Second", "Second"}, {});
  EXPECT_THAT(calls, ElementsAre("layout C", "enumerate C", "layout C", "enumerate C"));
}

}  // namespace
}  // namespace host
