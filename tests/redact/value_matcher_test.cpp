#include "host/redact/value_matcher.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace host {
namespace {

using std::string_literals::operator""s;

/// `text` with all matches replaced.
std::string ReplaceAll(const ValueMatcher& matcher, std::string text) {
  std::size_t from = 0;
  while (const std::optional<Match> match = matcher.FindNext(text, from)) {
    matcher.Replace(text, *match);
    from = match->end;
  }
  return text;
}

class ValueMatcherTest : public testing::Test {
 protected:
  ValueMatcherTest() {
    matcher.Add("node31", "qqqq77", 0, Boundary::kNoWord);
    matcher.Add("node31-bmc", "rrrr88-sss", 1, Boundary::kNoWord);
    matcher.Add("10.2.3.4", "10.9.8.7", 2, Boundary::kNoAddress);
    matcher.Add("z4k002c9144", "a1b222c3333", 3, Boundary::kAnything);
  }
  ValueMatcher matcher;
};

TEST_F(ValueMatcherTest, KeepsTheCase) {
  EXPECT_EQ(ReplaceAll(matcher, "NODE31 Node31 node31"), "QQQQ77 Qqqq77 qqqq77");
}

TEST_F(ValueMatcherTest, TakesTheLongest) {
  EXPECT_EQ(ReplaceAll(matcher, "node31-bmc,node31-bm"), "rrrr88-sss,qqqq77-bm");
}

TEST_F(ValueMatcherTest, LeavesPartsOfOtherWords) {
  for (const char* text : {"node312", "xnode31", "n\xf6node31", "110.2.3.4", "10.2.3.45",
                           "1.10.2.3.4", "10.2.3.4.5"}) {
    EXPECT_EQ(ReplaceAll(matcher, text), text);
  }
  EXPECT_EQ(ReplaceAll(matcher, "at 10.2.3.4. v10.2.3.4:80"), "at 10.9.8.7. v10.9.8.7:80");
  EXPECT_EQ(ReplaceAll(matcher, "SNZ4K002C91440"), "SNA1B222C33330") << "nothing else is so long";
}

TEST_F(ValueMatcherTest, ReadsPercentSigns) {
  EXPECT_EQ(ReplaceAll(matcher, "%4E%4f%44E%33%31"), "%51%51%51Q%37%37");
  EXPECT_EQ(ReplaceAll(matcher, "x%20node31%2F"), "x%20qqqq77%2F");
}

TEST_F(ValueMatcherTest, ReadsPercentSignsAnywhere) {
  const std::string letters[][2] = {{"n", "%6e"}, {"O", "%4F"}, {"d", "%44"},
                                    {"e", "%65"}, {"3", "%33"}, {"1", "%31"}};
  for (unsigned escapes = 0; escapes < 64; ++escapes) {
    std::string text;
    for (unsigned i = 0; i < 6; ++i) text += letters[i][escapes >> i & 1];
    EXPECT_NE(ReplaceAll(matcher, text), text);
  }
}

TEST_F(ValueMatcherTest, ReadsBothKindsOfUtf16) {
  EXPECT_EQ(ReplaceAll(matcher, "\xff\xfeN\0o\0d\0e\0003\0001\0!\0"s),
            "\xff\xfeQ\0q\0q\0q\0007\0007\0!\0"s);
  EXPECT_EQ(ReplaceAll(matcher, "\0n\0o\0d\0e\0003\0001\0 "s), "\0q\0q\0q\0q\0007\0007\0 "s);
  EXPECT_EQ(ReplaceAll(matcher, "x\0n\0o\0d\0e\0003\0001\0"s), "x\0n\0o\0d\0e\0003\0001\0"s);
}

TEST_F(ValueMatcherTest, FindsWhatEndsTheText) {
  EXPECT_EQ(ReplaceAll(matcher, "node31"), "qqqq77");
  EXPECT_EQ(ReplaceAll(matcher, "node3"), "node3");
  EXPECT_EQ(ReplaceAll(matcher, "n"), "n");
  EXPECT_EQ(ReplaceAll(matcher, ""), "");
}

}  // namespace
}  // namespace host
