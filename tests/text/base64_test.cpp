#include "host/text/base64.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(Base64, IsAsOthersWriteIt) {
  EXPECT_EQ(EncodeBase64(""), "");
  EXPECT_EQ(EncodeBase64("f"), "Zg==");
  EXPECT_EQ(EncodeBase64("fo"), "Zm8=");
  EXPECT_EQ(EncodeBase64("foo"), "Zm9v");
  EXPECT_EQ(EncodeBase64("\xFB\xFF\xFE"), "+//+");
}

TEST(Base64, ReadsWhatItWrote) {
  std::string bytes;
  for (int i = 0; i < 700; ++i) {
    EXPECT_EQ(DecodeBase64(EncodeBase64(bytes)), bytes) << i;
    bytes += static_cast<char>(i * 7);
  }
}

TEST(Base64, ReadsNothingElse) {
  for (const char* text :
       {"Z", "Zg", "Zg=", "Zg=a", "Z===", "====", "Zm9v\n", "Zm 9", "Zm9v=", "Zg==Zm9v", "Zm_v"}) {
    EXPECT_EQ(DecodeBase64(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace host
