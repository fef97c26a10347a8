#include "host/redact/pseudonyms.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace host {
namespace {

class PseudonymsTest : public testing::Test {
 protected:
  std::string Make(ValueKind kind, const std::string& value) const {
    return pseudonyms.Make(kind, value);
  }
  Pseudonyms pseudonyms{"a key of the tests"};
};

/// A digit for each digit, a letter for each letter.
std::string DescribeShape(std::string text) {
  for (char& c : text) c = c >= '0' && c <= '9' ? '9' : c >= 'a' && c <= 'z' ? 'a' : c;
  return text;
}

TEST_F(PseudonymsTest, AreTheSameForTheSameKeyAlone) {
  EXPECT_EQ(Make(ValueKind::kSerial, "z4k002c9144"),
            Pseudonyms("a key of the tests").Make(ValueKind::kSerial, "z4k002c9144"));
  EXPECT_NE(Make(ValueKind::kSerial, "z4k002c9144"),
            Pseudonyms("another key of the tests").Make(ValueKind::kSerial, "z4k002c9144"));
}

TEST_F(PseudonymsTest, KeepLengthAndShape) {
  for (const char* value : {"node31", "z4k002c9144", "dc2-r11-u18", "1234", "ab_c.9 x"}) {
    EXPECT_EQ(DescribeShape(Make(ValueKind::kHost, value)), DescribeShape(value));
  }
}

// Neither by chance nor where values differ in one character only.
TEST_F(PseudonymsTest, NeverMeetAndNeverStay) {
  std::set<std::string> all;
  for (int number = 0; number < 10'000; ++number) {
    const std::string value = fmt::format("{:04}", number);
    const std::string pseudonym = Make(ValueKind::kSerial, value);
    EXPECT_NE(pseudonym, value);
    all.insert(pseudonym);
  }
  EXPECT_EQ(all.size(), 10'000U);
}

TEST_F(PseudonymsTest, OfAddressesKeepNetworks) {
  std::set<std::string> all;
  std::map<std::string, std::string> networks;
  for (int third = 0; third < 256; third += 17) {
    for (int fourth = 0; fourth < 256; ++fourth) {
      const std::string value = fmt::format("10.24.{}.{}", third, fourth);
      const std::string pseudonym = Make(ValueKind::kIpv4, value);
      EXPECT_NE(pseudonym, value);
      EXPECT_EQ(pseudonym.size(), value.size());
      EXPECT_TRUE(pseudonym.starts_with("10.")) << pseudonym;
      all.insert(pseudonym);
      const std::string network = pseudonym.substr(0, pseudonym.rfind('.'));
      const auto known = networks.emplace(value.substr(0, value.rfind('.')), network).first;
      EXPECT_EQ(known->second, network);
      const std::string last = pseudonym.substr(pseudonym.rfind('.') + 1);
      EXPECT_EQ(last == "0", fourth == 0);
      EXPECT_EQ(last == "255", fourth == 255);
    }
  }
  EXPECT_EQ(all.size(), 16U * 256U);
}

TEST_F(PseudonymsTest, OfPrivateNetworksStayPrivate) {
  EXPECT_TRUE(Make(ValueKind::kIpv4, "192.168.7.9").starts_with("192.168."));
  const std::string other = Make(ValueKind::kIpv4, "172.21.40.118");
  EXPECT_TRUE(other.starts_with("172."));
  EXPECT_TRUE(other.substr(4, 2) >= "16" && other.substr(4, 2) <= "31") << other;
  EXPECT_EQ(Make(ValueKind::kIpv4, "192.168.0.0"), "192.168.0.0") << "a network as a whole";
}

TEST_F(PseudonymsTest, OfIpv6AddressesKeepNetworksAndGaps) {
  const std::string local = Make(ValueKind::kIpv6, "fe80::7d1c:22ab:e05f:4410");
  EXPECT_TRUE(local.starts_with("fe80::")) << local;
  EXPECT_EQ(local.size(), std::string("fe80::7d1c:22ab:e05f:4410").size());
  const std::string one = Make(ValueKind::kIpv6, "2001:db8:5::1");
  const std::string other = Make(ValueKind::kIpv6, "2001:db8:5::2");
  EXPECT_NE(one, other);
  EXPECT_EQ(one.substr(0, one.size() - 1), other.substr(0, other.size() - 1));
  EXPECT_NE(one.substr(0, 8), "2001:db8");
}

TEST_F(PseudonymsTest, OfHardwareKeepTheMaker) {
  EXPECT_TRUE(Make(ValueKind::kMac, "3cecef4a7108").starts_with("3cecef"));
  EXPECT_NE(Make(ValueKind::kMac, "3cecef4a7108"), "3cecef4a7108");
  EXPECT_TRUE(Make(ValueKind::kWwn, "5a4c2d07b8134e00").starts_with("5a4c2d0"));
}

TEST_F(PseudonymsTest, OfPasswordsTellNothing) {
  EXPECT_EQ(Make(ValueKind::kPassword, "lantern-52"), "**********");
}

}  // namespace
}  // namespace host
