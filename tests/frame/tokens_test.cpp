#include "frame/tokens.h"

#include <gmock/gmock.h>

#include <string>

namespace pq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitTokens, TakesRunsOfDelimitersAsOne) {
  EXPECT_THAT(SplitTokens("  TCP   10.0.0.7:445\r\n\r\n  UDP\r\n", " \r\n"),
              ElementsAre("TCP", "10.0.0.7:445", "UDP"));
}

TEST(SplitTokens, FindsNoneInTextWithoutAny) {
  EXPECT_THAT(SplitTokens("", " \r\n"), IsEmpty());
  EXPECT_THAT(SplitTokens(" \r\n \n", " \r\n"), IsEmpty());
}

TEST(SplitTokens, TakesALastTokenWithoutDelimiterBehindIt) {
  EXPECT_THAT(SplitTokens("a b", " "), ElementsAre("a", "b"));
}

TEST(SplitTokens, DoesNotSplitAtWhatIsNoDelimiter) {
  EXPECT_THAT(SplitTokens("one\ttwo three", " \r\n"), ElementsAre("one\ttwo", "three"));
}

TEST(SplitTokens, EndsAtTheFirstNul) {
  EXPECT_THAT(SplitTokens(std::string_view("a bc\0d e", 8), " "), ElementsAre("a", "bc"));
}

TEST(SplitTokens, KeepsBytesAbove127) {
  EXPECT_THAT(SplitTokens("B\x81ro \xFF\xFE|x", " |"), ElementsAre("B\x81ro", "\xFF\xFE", "x"));
}

TEST(SplitTokens, PointsIntoTheText) {
  const std::string text = " word";
  EXPECT_EQ(SplitTokens(text, " ")[0].data(), text.data() + 1);
}

TEST(DealtColumns, GivesColumnsTheirTokensInTurn) {
  const DealtColumns columns({"a", "b", "c", "d", "e", "f"}, 3);
  ASSERT_EQ(columns.CountRows(), 2u);
  EXPECT_EQ(columns.At(0, 0), "a");
  EXPECT_EQ(columns.At(0, 2), "c");
  EXPECT_EQ(columns.At(1, 1), "e");
}

TEST(DealtColumns, HasAsManyRowsAsTheFirstColumnHasTokens) {
  EXPECT_EQ(DealtColumns({}, 3).CountRows(), 0u);
  EXPECT_EQ(DealtColumns({"a"}, 3).CountRows(), 1u);
  EXPECT_EQ(DealtColumns({"a", "b", "c"}, 3).CountRows(), 1u);
  EXPECT_EQ(DealtColumns({"a", "b", "c", "d"}, 3).CountRows(), 2u);
}

TEST(DealtColumns, IsEmptyWhereAColumnIsOneShort) {
  const DealtColumns columns({"a", "b", "c", "d"}, 3);
  EXPECT_EQ(columns.At(1, 0), "d");
  EXPECT_EQ(columns.At(1, 1), "");
  EXPECT_EQ(columns.At(1, 2), "");
}

}  // namespace
}  // namespace pq
