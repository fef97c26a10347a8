// Bytes of a machine as UTF-8. The same expectations hold on every system.

#include "host/text/decoder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace host {
namespace {

struct CodePageCase {
  std::uint32_t codePage;
  std::string bytes;
  std::string text;
};

class TextOfCodePage : public testing::TestWithParam<CodePageCase> {};

TEST_P(TextOfCodePage, ReadsItsCharacters) {
  EXPECT_EQ(TextDecoder(GetParam().codePage)(GetParam().bytes), GetParam().text);
}

TEST_P(TextOfCodePage, LeavesAsciiAsItIs) {
  std::string ascii;
  for (char c = 1; c > 0 && c < 127; ++c) ascii += c;
  EXPECT_EQ(TextDecoder(GetParam().codePage)(ascii), ascii);
}

INSTANTIATE_TEST_SUITE_P(
    All, TextOfCodePage,
    testing::Values(CodePageCase{437,
                                 "\x81"
                                 "ber \x9b 5 \xb0\xe0",
                                 "über ¢ 5 ░α"},
                    CodePageCase{850, "Schnittstelle \x81ndert \xd5 \xf5",
                                 "Schnittstelle ündert ı §"},
                    CodePageCase{852, "P\xfd\xa1kaz \x9f", "Příkaz č"},
                    CodePageCase{932, "\x83\x4c\x81\x5b \xb1 \x82\xa0", "キー ｱ あ"},
                    CodePageCase{936, "\xc1\xac\xbd\xd3 \x80", "连接 €"},
                    CodePageCase{1250,
                                 "\x8a"
                                 "est \x9e",
                                 "Šest ž"},
                    CodePageCase{1251, "\xd1\xe5\xf2\xfc", "Сеть"},
                    CodePageCase{1252, "\x80 \x96 \xe9", "€ – é"},
                    CodePageCase{65001, "h\xc3\xa9 \xe2\x82\xac \xf0\x9f\x92\xbe", "hé € 💾"}),
    [](const auto& info) { return "CodePage" + std::to_string(info.param.codePage); });

constexpr char kBad[] = "\xEF\xBF\xBD";  // U+FFFD

TEST(Text, PutsAReplacementWhereACodePageHasAHole) {
  EXPECT_EQ(TextDecoder(1252)("a\x81z"), std::string("a") + kBad + "z");
  EXPECT_EQ(TextDecoder(1251)("a\x98z"), std::string("a") + kBad + "z");
  EXPECT_EQ(TextDecoder(1250)("a\x83z"), std::string("a") + kBad + "z");
}

TEST(Text, FindsNoCharacterBehindAByteThatBeginsNoneInCodePage932) {
  EXPECT_EQ(TextDecoder(932)("a\x80z"), std::string("a") + kBad + "z");
  EXPECT_EQ(TextDecoder(932)("a\xa0z"), std::string("a") + kBad + "z");
  EXPECT_EQ(TextDecoder(932)("a\xfdz"), std::string("a") + kBad + "z");
}

TEST(Text, KeepsTheAsciiCharacterBehindAnIncompleteOne) {
  EXPECT_EQ(TextDecoder(932)("\x83\x20next"), std::string(kBad) + " next");
  EXPECT_EQ(TextDecoder(936)("\xc1\nnext"), std::string(kBad) + "\nnext");
}

TEST(Text, PutsOneReplacementForAPairThatIsNoCharacter) {
  EXPECT_EQ(TextDecoder(932)("\x82\xfe!"), std::string(kBad) + "!");
  EXPECT_EQ(TextDecoder(936)("\xc1\xff!"), std::string(kBad) + "!");
}

TEST(Text, PutsAReplacementForALeadByteAtTheEnd) {
  EXPECT_EQ(TextDecoder(932)("end\x83"), std::string("end") + kBad);
  EXPECT_EQ(TextDecoder(65001)("end\xe2\x82"), std::string("end") + kBad);
}

TEST(Text, ReadsOnBehindBrokenUtf8) {
  EXPECT_EQ(TextDecoder(65001)("\xc3(x"), std::string(kBad) + "(x");
  EXPECT_EQ(TextDecoder(65001)("\x80\xbf.x"), std::string(kBad) + kBad + ".x");
  EXPECT_EQ(TextDecoder(65001)("\xff\xfex"), std::string(kBad) + kBad + "x");
}

TEST(Text, RefusesOverlongAndImpossibleUtf8) {
  EXPECT_EQ(TextDecoder(65001)("\xe0\x80\xaf!"), std::string(kBad) + "!");
  EXPECT_EQ(TextDecoder(65001)("\xed\xa0\x80!"), std::string(kBad) + "!");
  EXPECT_EQ(TextDecoder(65001)("\xf4\x90\x80\x80!"), std::string(kBad) + "!");
}

TEST(Text, KeepsNulBytes) {
  EXPECT_EQ(TextDecoder(1252)(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Text, ReadsOnlyAsciiOfACodePageThatNobodyKnows) {
  EXPECT_EQ(TextDecoder(12345)("a\xe9z"), std::string("a") + kBad + "z");
}

TEST(Text, IsValidUtf8WhateverTheBytes) {
  std::string all;
  for (int i = 0; i < 256; ++i) {
    for (int j = 0; j < 256; ++j) {
      all += static_cast<char>(i);
      all += static_cast<char>(j);
    }
  }
  const TextDecoder clean(65001);
  for (const std::uint32_t codePage : {437U, 850U, 852U, 932U, 936U, 1250U, 1251U, 1252U, 65001U}) {
    const std::string text = TextDecoder(codePage)(all);
    EXPECT_EQ(clean(text), text) << codePage;
    EXPECT_GE(text.size(), all.size() / 2) << codePage;
  }
}

TEST(Text, CopiesNoAscii) {
  const std::string ascii = "plain";
  const std::string other = "\x83\x5c";  // One character, whose second byte is that of a backslash.
  for (const std::uint32_t codePage : {932U, 1252U, 65001U}) {
    const TextDecoder decoder(codePage);
    EXPECT_EQ(decoder.Decode(ascii).View().data(), ascii.data());
    EXPECT_EQ(decoder.Decode(other).View(), decoder(other));
  }
}

TEST(Text, KeepsADecodedTextWhenItIsMoved) {
  std::vector<DecodedText> texts;
  for (int i = 0; i < 20; ++i) texts.push_back(TextDecoder(1252).Decode("\xe4"));
  for (const DecodedText& text : texts) EXPECT_EQ(text.View(), "ä");
}

TEST(Text, TakesUtf8ApartAndPutsItTogetherAgain) {
  const std::string text = "aé€💾";
  std::string_view rest = text;
  std::string again;
  int count = 0;
  for (; !rest.empty(); ++count) AppendUtf8(again, TakeUtf8(rest));
  EXPECT_EQ(again, text);
  EXPECT_EQ(count, 4);
}

}  // namespace
}  // namespace host
