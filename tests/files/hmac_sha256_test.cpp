#include "host/files/hmac_sha256.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "host/text/hex_text.h"

namespace host {
namespace {

// Examples of RFC 4231.
TEST(HmacSha256, IsThatOfTheStandard) {
  const auto compute = [](std::string_view key, std::string_view text) {
    const Sha256Digest code = HmacSha256(key).Compute(text);
    return HexText({code.data(), code.size()});
  };
  EXPECT_EQ(compute("Jefe", "what do ya want for nothing?"),
            "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843");
  EXPECT_EQ(
      compute(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
      "60e431591ee0b67f0d8a26aacbf5b77f8e0bc6213728c5140546040f0ee37f54");
}

}  // namespace
}  // namespace host
