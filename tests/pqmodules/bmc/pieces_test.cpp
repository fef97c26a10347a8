#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/tokens.h"
#include "pqmodules/rbmcinfo/oem_queries.h"
#include "pqmodules/rbmcinfo/sensors.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

using std::string_literals::operator""s;
using testing::ElementsAre;
using testing::IsEmpty;

/// The text that a self-test's output becomes.
std::string Joined(std::string output) {
  JoinTwoLines(output, FindCarriageReturns(output));
  return output;
}

std::vector<std::pair<std::string, std::string>> PairsOf(std::string_view output) {
  std::vector<std::pair<std::string, std::string>> pairs;
  NamedValue pair;
  for (TokenScan tokens = ScanPairs(output); NextPair(tokens, pair);) {
    pairs.emplace_back(pair.name, pair.value);
  }
  return pairs;
}

using Pair = std::pair<std::string, std::string>;

TEST(OemErrorText, IsFoundAnywhere) {
  EXPECT_TRUE(HasOemErrorText("Error"));
  EXPECT_TRUE(HasOemErrorText("Fan : Bad response\r\n"));
  EXPECT_TRUE(HasOemErrorText("x\nCannot open an IPMI driver: imb\n"));
}

TEST(OemErrorText, IsFoundInsideAnOrdinaryName) {
  EXPECT_TRUE(HasOemErrorText("Memory ErrorCount : 0\r\n"));
}

TEST(OemErrorText, MindsTheCase) {
  EXPECT_FALSE(HasOemErrorText("error, ERROR, bad response, cannot open an IPMI driver"));
}

TEST(OemErrorText, IsNotSoughtBehindANul) { EXPECT_FALSE(HasOemErrorText("a : b\0Error"s)); }

TEST(OemErrorText, IsNotInAnEmptyOutput) { EXPECT_FALSE(HasOemErrorText("")); }

TEST(SelfTestJoin, MakesTwoLinesOne) {
  EXPECT_EQ(Joined("Selftest : 55h\r\npassed\r\n"), "Selftest : 55h  passed\r\n");
}

TEST(SelfTestJoin, LeavesOneLine) { EXPECT_EQ(Joined("Selftest : 55h\r\n"), "Selftest : 55h\r\n"); }

TEST(SelfTestJoin, LeavesThreeLines) { EXPECT_EQ(Joined("a\r\nb\r\nc\r\n"), "a\r\nb\r\nc\r\n"); }

TEST(SelfTestJoin, LeavesLinesWithoutCarriageReturns) { EXPECT_EQ(Joined("a\nb\n"), "a\nb\n"); }

TEST(SelfTestJoin, BlanksWhateverFollowsTheCarriageReturn) {
  EXPECT_EQ(Joined("a\rbc\r\n"), "a  c\r\n");
  EXPECT_EQ(Joined("a\r\r\n"), "a  \n");
}

TEST(SelfTestJoin, LooksBehindANul) {
  EXPECT_EQ(Joined("a\r\nb\0c\r\n"s), "a  b\0c\r\n"s);
  EXPECT_EQ(Joined("a\r\0b\r"s), "a  b\r");
}

TEST(SelfTestJoin, GrowsWhenTheOnlyOtherCarriageReturnEndsTheOutput) {
  EXPECT_EQ(Joined("\rabc\r"), "\rabc  ");
}

TEST(CarriageReturns, AreCountedWithThePlaceOfTheFirst) {
  const CarriageReturns found = FindCarriageReturns("ab\r\ncd\r\nef\r\n");
  EXPECT_EQ(found.count, 3u);
  EXPECT_EQ(found.position, 2u);
}

TEST(CarriageReturns, AtTheStartCountButAreNotThePlace) {
  const CarriageReturns found = FindCarriageReturns("\r\nab\r\n");
  EXPECT_EQ(found.count, 2u);
  EXPECT_EQ(found.position, 4u);
}

TEST(CarriageReturns, HavePlaceZeroWhenThereAreNone) {
  const CarriageReturns found = FindCarriageReturns("abc\n");
  EXPECT_EQ(found.count, 0u);
  EXPECT_EQ(found.position, 0u);
}

TEST(Pairs, KeepTheBlanksOfNameAndValue) {
  EXPECT_THAT(PairsOf(" a b : c d \r\ne:f"), ElementsAre(Pair(" a b ", " c d "), Pair("e", "f")));
}

TEST(Pairs, ShiftAfterAValueWithAColon) {
  EXPECT_THAT(PairsOf("MAC: 5e:10\nIP: 1.2.3.4\n"),
              ElementsAre(Pair("MAC", " 5e"), Pair("10", "IP"), Pair(" 1.2.3.4", "")));
}

TEST(Pairs, LoseEmptyTokens) {
  EXPECT_THAT(PairsOf("::\r\n:a::b:\r\n\r\nc:\n"), ElementsAre(Pair("a", "b"), Pair("c", "")));
}

TEST(Pairs, KeepATokenOfBlanks) { EXPECT_THAT(PairsOf("a: \r\n"), ElementsAre(Pair("a", " "))); }

TEST(Pairs, EndAtTheFirstNul) {
  EXPECT_THAT(PairsOf("a:b\0c\r\nd:e"s), ElementsAre(Pair("a", "b")));
}

TEST(Pairs, AreNoneInAnOutputOfSeparators) {
  EXPECT_THAT(PairsOf(""), IsEmpty());
  EXPECT_THAT(PairsOf(":\r\n:"), IsEmpty());
}

TEST(Pairs, KeepBytesAbove127) {
  EXPECT_THAT(PairsOf("K\xfchler:23\xb0"), ElementsAre(Pair("K\xfchler", "23\xb0")));
}

TEST(SensorErrorText, IsEitherOfTwo) {
  EXPECT_TRUE(HasSensorErrorText("0001 | P0 Error in GetSensorReading"));
  EXPECT_TRUE(HasSensorErrorText("Error: Unable to establish a session\r\n"));
}

TEST(SensorErrorText, IsNotTheWordAlone) {
  EXPECT_FALSE(HasSensorErrorText("ECC Errors | OK | Error | Bad response | Error\nin"));
}

TEST(SensorErrorText, IsNotSoughtBehindANul) { EXPECT_FALSE(HasSensorErrorText("a|b\0Error:"s)); }

std::vector<std::string> FieldsOf(const SensorListing& listing) {
  std::vector<std::string> all;
  TokenScan fields = listing.Fields();
  for (std::string_view field = fields.Next(); !field.empty(); field = fields.Next()) {
    all.emplace_back(field);
  }
  return all;
}

TEST(SensorFields, AreSplitAtBarsAndLineEndsAndKeepTheirBlanks) {
  EXPECT_THAT(FieldsOf(FindSensorListing("a | b |c|\r\nd\t|e\n")),
              ElementsAre("a ", " b ", "c", "d\t", "e"));
}

TEST(SensorFields, LoseEmptyOnes) {
  EXPECT_THAT(FieldsOf(FindSensorListing("||a||b|\r\n\r\n|c")), ElementsAre("a", "b", "c"));
}

TEST(SensorFields, EndAtAFieldOfOneBlank) {
  const SensorListing listing = FindSensorListing("a|b| |c\r\nd");
  EXPECT_THAT(FieldsOf(listing), ElementsAre("a", "b"));
  EXPECT_TRUE(listing.endedByBlank);
}

TEST(SensorFields, GoOnAfterTwoBlanksOrABlankWithText) {
  const SensorListing listing = FindSensorListing("a|  | b|\t|c");
  EXPECT_THAT(FieldsOf(listing), ElementsAre("a", "  ", " b", "\t", "c"));
  EXPECT_FALSE(listing.endedByBlank);
}

TEST(SensorFields, TakeAnythingAsTheFirst) {
  const SensorListing listing = FindSensorListing(" |a| |b");
  EXPECT_THAT(FieldsOf(listing), ElementsAre(" ", "a"));
  EXPECT_TRUE(listing.endedByBlank);
}

TEST(SensorFields, EndAtTheFirstNul) {
  EXPECT_THAT(FieldsOf(FindSensorListing("a|b\0c|d"s)), ElementsAre("a", "b"));
}

TEST(SensorFields, AreNoneInAnEmptyListing) {
  EXPECT_THAT(FieldsOf(FindSensorListing("")), IsEmpty());
  EXPECT_THAT(FieldsOf(FindSensorListing("|\r\n|")), IsEmpty());
  EXPECT_FALSE(FindSensorListing("").endedByBlank);
}

TEST(KeyFamilies, AreNumberedFromOneToTheirCount) {
  std::vector<std::string> ends;
  for (const KeyFamily& family :
       {kMcKeys, kSelfKeys, kVerKeys, kLanKeys, kPsuKeys, kLedKeys, kFruKeys}) {
    ends.push_back(family.MakeKey(0));
    ends.push_back(family.MakeKey(family.count - 1));
  }
  EXPECT_THAT(ends, ElementsAre("MC1", "MC12", "self1", "self2", "VER1", "VER16", "LAN1", "LAN12",
                                "PSU1", "PSU26", "LED1", "LED16", "FRU1", "FRU160"));
}

}  // namespace
}  // namespace pq
