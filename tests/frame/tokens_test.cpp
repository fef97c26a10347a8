#include "frame/tokens.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

std::vector<std::vector<std::string_view>> DealAll(std::string_view text, std::size_t columns) {
  std::vector<std::vector<std::string_view>> rows;
  std::vector<std::string_view> row(columns);
  for (TokenScan tokens(text, " "); DealRow(tokens, row);) rows.push_back(row);
  return rows;
}

TEST(DealRow, GivesColumnsTheirTokensInTurn) {
  EXPECT_THAT(DealAll("a b c d e f", 3),
              ElementsAre(ElementsAre("a", "b", "c"), ElementsAre("d", "e", "f")));
}

TEST(DealRow, LeavesColumnsEmptyThatAreOneShort) {
  EXPECT_THAT(DealAll("a b c d", 3),
              ElementsAre(ElementsAre("a", "b", "c"), ElementsAre("d", "", "")));
}

TEST(DealRow, DealsNothingWithoutTokens) { EXPECT_THAT(DealAll("  ", 3), IsEmpty()); }

}  // namespace
}  // namespace pq
