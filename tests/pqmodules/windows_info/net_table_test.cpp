#include "pqmodules/rwininfo/net_table.h"

#include <gmock/gmock.h>

#include <string>

namespace pq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A line of `length` characters, line end included.
std::string LineOf(std::size_t length, const std::string& lineEnd = "\r\n") {
  return std::string(length - lineEnd.size(), 'x') + lineEnd;
}

TEST(NetTable, DropsArpLinesOfExactly52Characters) {
  EXPECT_EQ(ScanArpLines(LineOf(52)).rows, "");
  EXPECT_EQ(ScanArpLines(LineOf(52, "\n")).rows, "");
}

TEST(NetTable, KeepsArpLinesOf53Characters) {
  EXPECT_EQ(ScanArpLines(LineOf(53)).rows, LineOf(53));
  EXPECT_EQ(ScanArpLines(LineOf(53, "\n")).rows, LineOf(53, "\n"));
}

TEST(NetTable, SeesEveryArpLineWithItsLineEnd) {
  EXPECT_THAT(ScanArpLines("\r\none\r\ntwo\n").lines, ElementsAre("\r\n", "one\r\n", "two\n"));
}

TEST(NetTable, JoinsTheLongArpLinesOfAllBlocks) {
  const std::string first = LineOf(55);
  const std::string second = LineOf(60);
  EXPECT_EQ(ScanArpLines("\r\n" + first + "\r\nInterface\r\n" + second).rows, first + second);
}

TEST(NetTable, TakesNoArpLineThatWasCutOff) {
  const std::string text = "one\n" + std::string(80, 'x');
  const ArpScan scan = ScanArpLines(text);
  EXPECT_THAT(scan.lines, ElementsAre("one\n"));
  EXPECT_EQ(scan.rows, "");
  EXPECT_EQ(scan.end, 84u);
}

TEST(NetTable, TakesArpLinesOf128CharactersWhole) {
  EXPECT_EQ(ScanArpLines(LineOf(128)).rows, LineOf(128));
}

TEST(NetTable, CutsLongerArpLinesTo128Characters) {
  const std::string text = LineOf(129) + LineOf(500) + "end\n";
  const ArpScan scan = ScanArpLines(text);
  EXPECT_THAT(scan.lines,
              ElementsAre(std::string(127, 'x') + "\r", std::string(128, 'x'), "end\n"));
  EXPECT_EQ(scan.rows, std::string(127, 'x') + "\r" + std::string(128, 'x'));
}

TEST(NetTable, KeepsBytesAbove127InArpLines) {
  const std::string line = "  10.0.0.1   Ger\x84t" + LineOf(60);
  EXPECT_EQ(ScanArpLines(line).rows, line);
}

TEST(NetTable, FindsNothingInAnEmptyArpOutput) {
  const ArpScan scan = ScanArpLines("");
  EXPECT_THAT(scan.lines, IsEmpty());
  EXPECT_EQ(scan.rows, "");
  EXPECT_EQ(scan.end, 0u);
}

TEST(NetTable, LooksForArpLineEndsIn30720Characters) {
  const std::string before = std::string(30719, 'x');
  EXPECT_EQ(ScanArpLines(before + "\n" + LineOf(60)).lines.size(), 1u);
  EXPECT_EQ(ScanArpLines(before + "x\n" + LineOf(60)).lines.size(), 0u);
  EXPECT_EQ(ScanArpLines(before + "x\n" + LineOf(60)).end, 30720u);
}

TEST(NetTable, StartsConnectionRowsAtTheFourthLineEnd) {
  EXPECT_EQ(FindConnectionRows("1\n2\n3\n4\n5\n6\n"), 7u);
  EXPECT_EQ(FindConnectionRows("\r\nActive\r\n\r\nProto\r\nTCP\r\n"), 18u);
}

TEST(NetTable, FindsNoConnectionRowsBeforeTheFifthLineEnd) {
  EXPECT_EQ(FindConnectionRows(""), std::nullopt);
  EXPECT_EQ(FindConnectionRows("1\n2\n3\n"), std::nullopt);
  EXPECT_EQ(FindConnectionRows("1\n2\n3\n4\n"), std::nullopt);
  EXPECT_EQ(FindConnectionRows("1\n2\n3\n4\nrow without line end"), std::nullopt);
  EXPECT_EQ(FindConnectionRows("1\n2\n3\n4\n5\n"), 7u);
}

TEST(NetTable, LooksForConnectionLineEndsIn30720Characters) {
  const std::string head = "1\n2\n3\n4\n";
  EXPECT_EQ(FindConnectionRows(head + std::string(30720 - 9, 'x') + "\n"), 7u);
  EXPECT_EQ(FindConnectionRows(head + std::string(30720 - 8, 'x') + "\n"), std::nullopt);
}

}  // namespace
}  // namespace pq
