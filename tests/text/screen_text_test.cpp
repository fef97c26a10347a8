#include "host/text/screen_text.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "host/text/decoder.h"

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

TEST(ScreenText, WritesOutWhatNobodySees) {
  EXPECT_EQ(EscapeControls("a\u00ADb\u200Bc\u2060d\u2800e\u3164f\uFFF9"),
            "a\\u00adb\\u200bc\\u2060d\\u2800e\\u3164f\\ufff9");
  EXPECT_EQ(EscapeControls("a\U000E0001\U000E007F\U000E0080"), "a\\u{e0001}\\u{e007f}\U000E0080");
}

TEST(ScreenText, TellsWhatATerminalObeys) {
  for (const char32_t c :
       U"\x1b\n\x7f\u009b\u061c\u200e\u200f\u2028\u2029\u202a\u202e\u2066\u2069") {
    EXPECT_TRUE(IsObeyed(c)) << static_cast<unsigned>(c);
  }
  for (const char32_t c :
       {U'a', U'\u00A0', U'\u00AD', U'\u200B', U'\u202F', U'\u2065', U'\u206A'}) {
    EXPECT_FALSE(IsObeyed(c)) << static_cast<unsigned>(c);
  }
}

TEST(ScreenText, ListsWhatItWritesOutBesidesControlCharacters) {
  std::set<char32_t> listed;
  for (const CharacterRange& range : ListUnseenCharacters()) {
    for (char32_t c = range.first; c <= range.last; ++c) EXPECT_TRUE(listed.insert(c).second);
  }
  for (char32_t c = 0xA0; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    std::string text;
    AppendUtf8(text, c);
    // No macro for each of a million characters that are as they should be.
    if ((EscapeControls(text) != text) == listed.contains(c)) continue;
    ADD_FAILURE() << static_cast<unsigned>(c);
  }
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
