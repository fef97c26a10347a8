#include "host/text/screen_text.h"

#include <gmock/gmock.h>

#include <string>

namespace host {
namespace {

using testing::ElementsAre;

TEST(ScreenText, CountsWideCharactersTwiceAndCombiningOnesNot) {
  EXPECT_EQ(MeasureWidth("disk"), 4U);
  EXPECT_EQ(MeasureWidth("été"), 3U);
  EXPECT_EQ(MeasureWidth("连接"), 4U);
  EXPECT_EQ(MeasureWidth("キｱ"), 3U);  // The second is a half-width one.
  EXPECT_EQ(MeasureWidth("e\xCC\x81"), 1U);
  EXPECT_EQ(MeasureWidth("💾"), 2U);
}

TEST(ScreenText, WritesOutWhatATerminalWouldObey) {
  EXPECT_EQ(EscapeControls("a\x1b[31m\n\r\t\x07\x7f"), "a\\x1b[31m\\n\\r\\t\\x07\\x7f");
  EXPECT_EQ(EscapeControls(std::string("a\0b", 3)), "a\\x00b");
}

TEST(ScreenText, WritesOutTheControlCharactersAbove127) {
  EXPECT_EQ(EscapeControls("\xC2\x9B"
                           "31m\xC2\x80\xC2\x9F\xC2\xA0"),
            "\\x9b31m\\x80\\x9f\xC2\xA0");
}

TEST(ScreenText, WritesOutWhatTurnsOrHidesText) {
  EXPECT_EQ(EscapeControls("a\u202Eb\u2066c\uFEFF"), "a\\u202eb\\u2066c\\ufeff");
}

TEST(ScreenText, CanLeaveLineFeeds) {
  EXPECT_EQ(EscapeControlsButLineFeeds("a\nb\r\x1b"), "a\nb\\r\\x1b");
}

TEST(ScreenText, TrimsBlanksAndLineEnds) {
  EXPECT_EQ(TrimForDisplay("  Optimal \t\r\n"), "Optimal");
  EXPECT_EQ(TrimForDisplay(" \r\n"), "");
  EXPECT_EQ(TrimForDisplay(""), "");
  EXPECT_EQ(TrimForDisplay("a b"), "a b");
}

TEST(ScreenText, KeepsTheFirstLineBreakOfAText) { EXPECT_EQ(TrimForDisplay("\nabc"), "\nabc"); }

TEST(ScreenText, WrapsAtBlanks) {
  EXPECT_THAT(WrapText("Patrol Read complete", 11), ElementsAre("Patrol Read", "complete"));
  EXPECT_THAT(WrapText("Patrol Read complete", 10), ElementsAre("Patrol", "Read", "complete"));
}

TEST(ScreenText, BreaksAWordThatIsTooLong) {
  EXPECT_THAT(WrapText("0123456789 ab", 4), ElementsAre("0123", "4567", "89", "ab"));
}

TEST(ScreenText, NeverBreaksACharacter) {
  EXPECT_THAT(WrapText("连接状态", 5), ElementsAre("连接", "状态"));
  EXPECT_THAT(WrapText("ééé", 2), ElementsAre("éé", "é"));
}

TEST(ScreenText, WrapsAnEmptyTextToOneLine) { EXPECT_THAT(WrapText("", 5), ElementsAre("")); }

TEST(ScreenText, GetsOnAlsoWhereACharacterDoesNotFit) {
  EXPECT_THAT(WrapText("连接", 1), ElementsAre("连", "接"));
}

TEST(ScreenText, CutsWithAnEllipsis) {
  EXPECT_EQ(CutText("abcdef", 6), "abcdef");
  EXPECT_EQ(CutText("abcdefg", 6), "abcde…");
  EXPECT_EQ(CutText("连接状态", 6), "连接…");
  EXPECT_EQ(CutText("ab", 1), "…");
  EXPECT_EQ(CutText("连接状态", 2), "…");
}

TEST(ScreenText, PadsToAWidth) {
  EXPECT_EQ(PadText("连", 4), "连  ");
  EXPECT_EQ(PadText("abcd", 2), "abcd");
}

}  // namespace
}  // namespace host
