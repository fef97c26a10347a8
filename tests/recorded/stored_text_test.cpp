#include "host/recorded/stored_text.h"

#include <gmock/gmock.h>

#include <array>
#include <vector>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

StoredText Open(std::string bytes) { return StoredText(std::move(bytes)); }

/// All pieces that a buffer of `size` bytes gets.
std::vector<std::string> Pieces(const std::string& bytes, std::size_t size) {
  StoredText text = Open(bytes);
  std::vector<std::string> pieces;
  std::vector<char> buffer(size);
  while (text.ReadLine(buffer.data(), size)) pieces.emplace_back(buffer.data());
  return pieces;
}

TEST(StoredText, ReadsCrLfAsOneLineFeed) {
  EXPECT_THAT(Pieces("a\r\nb\nc", 16), ElementsAre("a\n", "b\n", "c"));
}

TEST(StoredText, KeepsALoneCarriageReturn) {
  EXPECT_THAT(Pieces("a\rb\r\r\nc\r", 16), ElementsAre("a\rb\r\n", "c\r"));
}

TEST(StoredText, EndsAtCtrlZ) {
  EXPECT_THAT(Pieces("a\r\nb\x1A"
                     "c\r\n",
                     16),
              ElementsAre("a\n", "b"));
}

TEST(StoredText, EndsAtACtrlZThatBeginsALine) {
  EXPECT_THAT(Pieces("a\n\x1A\nb\n", 16), ElementsAre("a\n"));
  EXPECT_THAT(Pieces("\x1A", 16), IsEmpty());
}

TEST(StoredText, EndsAtTheFirstCtrlZInEveryBufferSize) {
  for (std::size_t size = 2; size < 12; ++size) {
    std::string all;
    for (const std::string& piece : Pieces("abc\r\nd\x1A"
                                           "e\x1A\r\nf",
                                           size))
      all += piece;
    EXPECT_EQ(all, "abc\nd") << size;
  }
}

TEST(StoredText, KeepsACarriageReturnBeforeCtrlZ) {
  EXPECT_THAT(Pieces("a\r\x1A\n", 16), ElementsAre("a\r"));
}

TEST(StoredText, HasNoLineInAnEmptyFile) { EXPECT_THAT(Pieces("", 16), IsEmpty()); }

TEST(StoredText, GivesALongLineInPieces) {
  EXPECT_THAT(Pieces("abcdefg\r\nh", 4), ElementsAre("abc", "def", "g\n", "h"));
}

TEST(StoredText, CountsCrLfAsOneCharacterAtTheEndOfABuffer) {
  EXPECT_THAT(Pieces("ab\r\nc", 4), ElementsAre("ab\n", "c"));
  EXPECT_THAT(Pieces("abc\r\nd", 4), ElementsAre("abc", "\n", "d"));
}

TEST(StoredText, LeavesACarriageReturnThatFillsTheBuffer) {
  EXPECT_THAT(Pieces("ab\rc", 4), ElementsAre("ab\r", "c"));
}

TEST(StoredText, ReadsNulsAsBytes) {
  StoredText text = Open(std::string("a\0b\nc", 5));
  std::array<char, 8> buffer{};
  ASSERT_TRUE(text.ReadLine(buffer.data(), buffer.size()));
  EXPECT_EQ(std::string(buffer.data(), 5), std::string("a\0b\n\0", 5));
}

TEST(StoredText, LeavesTheBufferAtTheEnd) {
  StoredText text = Open("a");
  std::array<char, 8> buffer{};
  ASSERT_TRUE(text.ReadLine(buffer.data(), buffer.size()));
  EXPECT_FALSE(text.ReadLine(buffer.data(), buffer.size()));
  EXPECT_STREQ(buffer.data(), "a");
}

TEST(StoredText, HasTheSizeOfTheStoredBytes) {
  EXPECT_EQ(Open("a\r\nb\x1A"
                 "c")
                .SizeAndRewind(),
            6u);
}

TEST(StoredText, StartsAgainAfterRewindAndSize) {
  StoredText text = Open("a\r\nb");
  std::array<char, 8> buffer{};
  text.ReadLine(buffer.data(), buffer.size());
  text.Rewind();
  text.ReadLine(buffer.data(), buffer.size());
  EXPECT_STREQ(buffer.data(), "a\n");
  text.SizeAndRewind();
  text.ReadLine(buffer.data(), buffer.size());
  EXPECT_STREQ(buffer.data(), "a\n");
}

TEST(StoredText, StartsAgainAfterCtrlZ) {
  StoredText text = Open("a\x1A");
  std::array<char, 8> buffer{};
  while (text.ReadLine(buffer.data(), buffer.size())) {
  }
  text.Rewind();
  EXPECT_TRUE(text.ReadLine(buffer.data(), buffer.size()));
}

TEST(StoredText, KeepsItsTextWhenAnotherCopyChanges) {
  Bytes bytes = "a\n";
  StoredText text(bytes);
  bytes += "b\n";
  std::array<char, 8> buffer{};
  EXPECT_TRUE(text.ReadLine(buffer.data(), buffer.size()));
  EXPECT_FALSE(text.ReadLine(buffer.data(), buffer.size()));
}

}  // namespace
}  // namespace host
