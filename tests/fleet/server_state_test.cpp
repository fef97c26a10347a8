#include "fleet/server_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using fleet::DescribeRows;
using fleet::FindChange;
using fleet::ServerState;
using fleet::TableChange;
using testing::ElementsAre;
using testing::IsEmpty;

using Hashes = std::vector<std::uint64_t>;

TableChange Compare(const Hashes& before, const Hashes& now, bool isLog = false) {
  return FindChange(DescribeRows(before, isLog), now, isLog);
}

TEST(ServerState, SurvivesPacking) {
  const ServerState state = {{1, DescribeRows({1, ~std::uint64_t{0}}, false)},
                             {0x1234, DescribeRows({5, 6, 7}, true)}};
  EXPECT_EQ(fleet::UnpackState(fleet::PackState(state)), state);
  EXPECT_THAT(fleet::UnpackState(""), IsEmpty());
}

TEST(ServerState, IsRefusedWhenCutAnywhere) {
  const std::string packed = fleet::PackState({{1, DescribeRows({1, 2}, false)}});
  for (std::size_t size = 1; size < packed.size(); ++size) {
    EXPECT_THROW(fleet::UnpackState(packed.substr(0, size)), std::runtime_error) << size;
  }
}

TEST(ServerState, HasOneHashForALog) {
  EXPECT_EQ(DescribeRows({1, 2, 3}, true).hashes.size(), 1U);
  EXPECT_EQ(DescribeRows({1, 2, 3}, true).rows, 3U);
}

TEST(TableChange, IsNothingForTheSameRows) {
  EXPECT_TRUE(Compare({1, 2}, {1, 2}).IsEmpty());
  EXPECT_TRUE(Compare({1, 2}, {1, 2}, true).IsEmpty());
  EXPECT_TRUE(Compare({}, {}).IsEmpty());
}

TEST(TableChange, IsTheRowsThatDiffer) {
  const TableChange change = Compare({1, 2, 3, 4}, {1, 9, 3});
  EXPECT_THAT(change.removed, ElementsAre(2, 4));
  EXPECT_THAT(change.added, ElementsAre(2));
}

TEST(TableChange, IsTheTailOfALogThatGrew) {
  const TableChange change = Compare({1, 2}, {1, 2, 3, 4}, true);
  EXPECT_THAT(change.removed, IsEmpty());
  EXPECT_THAT(change.added, ElementsAre(3, 4));
}

TEST(TableChange, IsAllOfALogThatBeginsOtherwise) {
  const TableChange change = Compare({1, 2}, {2, 3, 4}, true);
  EXPECT_THAT(change.removed, ElementsAre(1, 2));
  EXPECT_THAT(change.added, ElementsAre(1, 2, 3));
  EXPECT_THAT(Compare({1, 2}, {1}, true).removed, ElementsAre(1, 2));
}

TEST(TableChange, IsAllWhereATableBecameALog) {
  const TableChange change = FindChange(DescribeRows({1, 2}, false), {1, 2}, true);
  EXPECT_THAT(change.removed, ElementsAre(1, 2));
  EXPECT_THAT(change.added, ElementsAre(1, 2));
}

}  // namespace
