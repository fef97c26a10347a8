#include "fleet/binary_rows.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using namespace std::string_literals;

TEST(BinaryRows, AreAsCopyReadsThem) {
  fleet::BinaryRows rows;
  EXPECT_TRUE(rows.IsEmpty());
  rows.BeginRow(3).Add(std::int16_t{-2}).Add(std::int32_t{0x01020304}).Add("a\tb");
  rows.BeginRow(1).Add(std::int64_t{258});
  EXPECT_FALSE(rows.IsEmpty());
  EXPECT_EQ(rows.Take(),
            "PGCOPY\n\xff\r\n\0\0\0\0\0\0\0\0\0"s
            "\0\x03\0\0\0\x02\xff\xfe\0\0\0\x04\x01\x02\x03\x04\0\0\0\x03"s
            "a\tb"
            "\0\x01\0\0\0\x08\0\0\0\0\0\0\x01\x02"
            "\xff\xff"s);
  EXPECT_TRUE(rows.IsEmpty());
}

}  // namespace
