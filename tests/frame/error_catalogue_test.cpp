#include "frame/error_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/error_entries.h"
#include "tests/support/collected.h"

namespace {

using pq::CategoryErrors;
using pq::ErrorTable;
using pq::GeneralErrors;
using pq::RegisterError;
using testing::ElementsAre;

constexpr int kCodesPerCategory = 65536;

/// Category to its codes, both ends of each range included.
const std::map<int, std::vector<std::pair<int, int>>> kCodes = {
    {0, {{0, 1}, {3, 30}, {32, 70}}},
    {1, {{82, 89}, {96, 125}}},
    {2, {{116, 125}}},
    {3, {{120, 125}}},
    {4, {{88, 125}}},
    {7, {{96, 125}}},
    {10, {{116, 125}}},
    {17, {{124, 125}}},
    {18, {{113, 115}, {117, 125}}},
    {20, {{125, 125}}},
    {24, {{104, 109}, {112, 125}}},
    {35, {{122, 125}}},
    {44, {{121, 125}}},
    {58, {{123, 125}}},
    {59, {{80, 95}, {111, 125}}},
    {61, {{122, 125}}},
    {62, {{123, 125}}},
    {63, {{124, 125}}},
    {64, {{122, 125}}},
};

/// All tables of the catalogue, the general one as category 0.
std::map<int, ErrorTable> WholeCatalogue() {
  std::map<int, ErrorTable> all = CategoryErrors();
  all[0] = GeneralErrors();
  return all;
}

/// What keeps `message` from being a sentence that a console can show; empty when nothing does.
std::string FaultOf(std::string_view message) {
  const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
  if (message.empty()) return "empty";
  if (!std::all_of(message.begin(), message.end(), isPlain)) return "not printable ASCII";
  if (message.front() < 'A' || message.front() > 'Z') return "no capital letter at the start";
  if (message.back() != '.') return "no period at the end";
  if (message.find(' ') == std::string_view::npos && message != "Succeed.") return "one word";
  if (message.find("  ") != std::string_view::npos) return "two blanks in a row";
  return "";
}

std::string ReadSource(const std::string& name) {
  std::ifstream file(test::SamplesFolder() + "/../" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ErrorCatalogue, Holds292EntriesIn19Categories) {
  std::size_t entries = 0;
  for (const auto& [category, table] : WholeCatalogue()) entries += table.size();
  EXPECT_EQ(WholeCatalogue().size(), 19u);
  EXPECT_EQ(entries, 292u);
}

TEST(ErrorCatalogue, HoldsJustTheCodesOfEachCategory) {
  std::map<int, std::vector<int>> expected;
  for (const auto& [category, ranges] : kCodes) {
    for (const auto& [first, last] : ranges) {
      for (int code = first; code <= last; ++code) {
        expected[category].push_back(category * kCodesPerCategory + code);
      }
    }
  }
  std::map<int, std::vector<int>> identifiers;
  for (const auto& [category, table] : WholeCatalogue()) {
    for (const auto& [identifier, message] : table) identifiers[category].push_back(identifier);
  }
  EXPECT_EQ(identifiers, expected);
}

TEST(ErrorCatalogue, KeepsCategory0ApartFromTheCategoryTables) {
  EXPECT_EQ(CategoryErrors().count(0), 0u);
  EXPECT_EQ(GeneralErrors().size(), 69u);
}

TEST(ErrorCatalogue, IdentifierOfCategory0IsItsCode) {
  EXPECT_EQ(pq::errors::kUnknownCommand, 5);
  EXPECT_EQ(GeneralErrors().count(5), 1u);
}

TEST(ErrorCatalogue, IdentifierCarriesTheCategoryInItsUpperHalf) {
  EXPECT_EQ(pq::errors::kNetworkAddAddress, 4063356);
  EXPECT_EQ(CategoryErrors().at(62).count(4063356), 1u);
}

TEST(ErrorCatalogue, NegativeCategoryBelongsToTheGeneralTable) {
  const int identifier = RegisterError(-1, 7, "Of no category.");
  EXPECT_EQ(identifier, -65529);
  EXPECT_EQ(GeneralErrors().erase(identifier), 1u);
}

TEST(ErrorCatalogue, LaterRegistrationReplacesTheMessage) {
  constexpr int kUnusedCategory = 4000;
  RegisterError(kUnusedCategory, 9, "First text.");
  const int identifier = RegisterError(kUnusedCategory, 9, "Second text.");
  EXPECT_THAT(CategoryErrors().at(kUnusedCategory),
              ElementsAre(std::pair<const int, std::string>(identifier, "Second text.")));
  CategoryErrors().erase(kUnusedCategory);
}

TEST(ErrorCatalogue, FiveRegistrationsLeaveWhatOneLeft) {
  const std::map<int, ErrorTable> once = WholeCatalogue();
  for (int registration = 0; registration < 5; ++registration) {
    for (const auto& [category, table] : once) {
      for (const auto& [identifier, message] : table) {
        EXPECT_EQ(RegisterError(category, identifier % kCodesPerCategory, message.c_str()),
                  identifier);
      }
    }
  }
  EXPECT_EQ(WholeCatalogue(), once);
}

TEST(ErrorCatalogue, EveryModuleSourceRegistersIt) {
  for (const char* source :
       {"pqmodules/ramtinfo.cpp", "pqmodules/rbmcinfo.cpp", "pqmodules/rsamplemodule1.cpp",
        "pqmodules/rsamplemodule2.cpp", "pqmodules/rwininfo.cpp"}) {
    EXPECT_THAT(ReadSource(source), testing::HasSubstr("\n#include \"frame/error_entries.h\"\n"))
        << source;
  }
}

TEST(ErrorCatalogue, GeneralResultsHaveTheTextsOfTheHost) {
  EXPECT_EQ(GeneralErrors().at(0), "Succeed.");
  EXPECT_EQ(GeneralErrors().at(1), "Generic Failure.");
  EXPECT_EQ(GeneralErrors().at(3), "Invalid application.");
}

TEST(ErrorCatalogue, CategoriesHaveTheTextsOfTheHost) {
  const auto message = [](int category, int code) {
    return CategoryErrors().at(category).at(category * kCodesPerCategory + code);
  };
  EXPECT_EQ(message(3, 121), "Timeout to complete the diags.");
  EXPECT_EQ(message(17, 124), "There are no logs.");
  EXPECT_EQ(message(17, 125), "Failed to get logs.");
  EXPECT_EQ(message(44, 121), "Failed to connect BMC REST API.");
  for (const int category : {62, 63}) {
    EXPECT_EQ(message(category, 124), "Add IP address error.");
    EXPECT_EQ(message(category, 125), "Restore network configure error.");
  }
}

TEST(ErrorCatalogue, EveryMessageIsAPlainSentence) {
  for (const auto& [category, table] : WholeCatalogue()) {
    for (const auto& [identifier, message] : table) {
      EXPECT_EQ(FaultOf(message), "") << category << ": " << message;
    }
  }
}

TEST(ErrorCatalogue, OnlyTheTwoNetworkCategoriesShareTexts) {
  std::set<std::string> seen;
  std::vector<std::string> repeated;
  for (const auto& [category, table] : WholeCatalogue()) {
    for (const auto& [identifier, message] : table) {
      if (!seen.insert(message).second) repeated.push_back(message);
    }
  }
  EXPECT_THAT(repeated, ElementsAre("Add IP address error.", "Restore network configure error."));
}

TEST(ErrorMessageCheck, FindsWhatIsWrong) {
  EXPECT_EQ(FaultOf(""), "empty");
  EXPECT_EQ(FaultOf("The fan\tstopped."), "not printable ASCII");
  EXPECT_EQ(FaultOf("the fan stopped."), "no capital letter at the start");
  EXPECT_EQ(FaultOf("The fan stopped"), "no period at the end");
  EXPECT_EQ(FaultOf("Failure."), "one word");
  EXPECT_EQ(FaultOf("The  fan stopped."), "two blanks in a row");
}

}  // namespace
