#include "host/text/byte_chunks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {
namespace {

std::string_view Keep(ByteChunks& chunks, std::string_view text) {
  char* const kept = chunks.Take(text.size());
  std::memcpy(kept, text.data(), text.size());
  return {kept, text.size()};
}

TEST(ByteChunks, KeepTextsOfAnySizeWhereTheyAre) {
  ByteChunks chunks;
  std::vector<std::string> texts;
  std::vector<std::string_view> kept;
  for (std::size_t i = 0; i < 2000; ++i) {
    texts.emplace_back(i % 50 == 0 ? 20 * i : i % 70, static_cast<char>('a' + i % 26));
    kept.push_back(Keep(chunks, texts.back()));
  }
  for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(kept[i], texts[i]) << i;
}

TEST(ByteChunks, ShareTextsWithTheirCopiesButNotTheRoomBehindThem) {
  std::optional<ByteChunks> chunks(std::in_place);
  const std::string_view first = Keep(*chunks, "first");
  ByteChunks copy = *chunks;
  const std::string_view ofCopy = Keep(copy, "of copy");
  EXPECT_EQ(Keep(*chunks, "second"), "second");
  chunks.reset();
  EXPECT_EQ(first, "first");
  EXPECT_EQ(ofCopy, "of copy");
}

TEST(ByteChunks, GoOnWhereTheyWereMovedFrom) {
  ByteChunks from;
  const std::string_view first = Keep(from, "first");
  ByteChunks to = std::move(from);
  EXPECT_EQ(Keep(to, "second").data(), first.data() + first.size());
}

}  // namespace
}  // namespace host
