#include "host/files/sha256.h"

#include <gtest/gtest.h>

namespace host {
namespace {

// The digests of FIPS 180-2's examples.
TEST(Sha256, GivesTheKnownDigests) {
  EXPECT_EQ(ComputeSha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(ComputeSha256("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(ComputeSha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(ComputeSha256(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, CoversEveryByte) {
  const std::string bytes("a\0b", 3);
  EXPECT_EQ(ComputeSha256(bytes),
            "59b271ae1bbcb1d31d41929817f4b16fb439eb4f31520b5ad1d5ce98920a7138");
}

}  // namespace
}  // namespace host
