#include "host/text/bytes.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(Bytes, AreSharedByCopies) {
  const Bytes bytes = "report";
  const Bytes copy = bytes;
  EXPECT_TRUE(copy.SharesWith(bytes));
  EXPECT_EQ(&copy.Text(), &bytes.Text());
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
  Bytes bytes = std::string(100, 'x');
  const std::string* text = &bytes.Text();
  bytes += "y";
  EXPECT_EQ(&bytes.Text(), text);
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
