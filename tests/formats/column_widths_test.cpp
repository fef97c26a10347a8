#include "host/formats/column_widths.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace host {
namespace {

using Widths = std::vector<std::size_t>;

/// A column for each list of cells.
Widths Fit(const std::vector<std::vector<std::string>>& columns, std::size_t screenWidth) {
  std::vector<ColumnNeed> needs(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (const std::string& cell : columns[i]) needs[i].Add(cell);
  }
  return FitColumns(needs, screenWidth);
}

TEST(ColumnWidths, AreThoseOfTheWidestCellsWhereThereIsRoom) {
  EXPECT_EQ(Fit({{"ab", "abcd"}, {"a b c d e"}}, 15), (Widths{4, 9}));
}

TEST(ColumnWidths, CountWideCharactersTwiceAndEachLineOfACellAlone) {
  EXPECT_EQ(Fit({{"状态"}, {"one\nthree\nto"}}, 80), (Widths{4, 5}));
}

TEST(ColumnWidths, AreTakenFromTheWidestColumnFirst) {
  EXPECT_EQ(Fit({{"a b c"}, {"aa bb cc dd ee"}}, 15), (Widths{5, 8}));
}

TEST(ColumnWidths, GiveRoomThatIsLeftToTheColumnThatLacksFewest) {
  // At most 7 wide they take 14 of the 15 that two columns have besides their gap.
  EXPECT_EQ(Fit({{"a b c d e f"}, {"a b c d e"}}, 17), (Widths{7, 8}));
}

TEST(ColumnWidths, NeverBreakAWordOfUpToTwentyCharacters) {
  EXPECT_EQ(Fit({{std::string(20, 'x')}, {"a"}}, 23), (Widths{20, 1}));
  EXPECT_EQ(Fit({{std::string(20, 'x')}, {"a"}}, 22), Widths{});
  EXPECT_EQ(Fit({{std::string(30, 'x')}, {"a"}}, 23), (Widths{20, 1}));
}

TEST(ColumnWidths, OfAnEmptyColumnAreOne) { EXPECT_EQ(Fit({{""}, {}}, 80), (Widths{1, 1})); }

TEST(ColumnWidths, AreNoneWithoutColumnsAndWhereTheGapsAloneAreTooWide) {
  EXPECT_EQ(Fit({}, 80), Widths{});
  EXPECT_EQ(Fit(std::vector<std::vector<std::string>>(50, {"a"}), 80), Widths{});
}

}  // namespace
}  // namespace host
