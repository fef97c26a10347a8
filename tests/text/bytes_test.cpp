#include "host/text/bytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace host {
namespace {

TEST(Bytes, AreSharedByCopies) {
  const Bytes bytes = "report";
  const Bytes copy = bytes;
  EXPECT_TRUE(copy.SharesWith(bytes));
  EXPECT_EQ(copy.Text().data(), bytes.Text().data());
  EXPECT_FALSE(Bytes("report").SharesWith(bytes));
}

TEST(Bytes, ChangeInOneCopyAlone) {
  const Bytes bytes = "report";
  Bytes longer = bytes;
  longer += ", page 2";
  Bytes empty = bytes;
  empty.clear();
  EXPECT_EQ(bytes, "report");
  EXPECT_EQ(longer, "report, page 2");
  EXPECT_EQ(empty, "");
}

TEST(Bytes, GrowInPlaceWhileNobodySharesThem) {
  std::string text(100, 'x');
  text.reserve(200);
  Bytes bytes = std::move(text);
  const char* const before = bytes.Text().data();
  bytes += "y";
  EXPECT_EQ(bytes.Text().data(), before);
}

TEST(Bytes, StayElsewhereUntilTheyChange) {
  const auto keeper = std::make_shared<const std::string>("report");
  Bytes bytes(*keeper, keeper);
  Bytes copy = bytes;
  EXPECT_TRUE(copy.IsElsewhere());
  EXPECT_EQ(copy.Text().data(), keeper->data());
  copy += "s";
  EXPECT_EQ(copy, "reports");
  EXPECT_FALSE(copy.IsElsewhere());
  EXPECT_EQ(bytes, "report");
  bytes.clear();
  EXPECT_EQ(keeper.use_count(), 1);
}

TEST(Bytes, AreEmptyWithoutText) {
  EXPECT_TRUE(Bytes().empty());
  EXPECT_TRUE(Bytes("").empty());
  EXPECT_EQ(Bytes().size(), 0U);
  EXPECT_EQ(Bytes(), Bytes(""));
  Bytes bytes;
  bytes += "";
  EXPECT_TRUE(bytes.empty());
}

TEST(Bytes, KeepNuls) {
  const std::string text("a\0b", 3);
  EXPECT_EQ(Bytes(text).size(), 3U);
  EXPECT_EQ(Bytes(text), text);
}

}  // namespace
}  // namespace host
