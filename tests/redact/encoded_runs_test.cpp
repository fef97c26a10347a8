#include "host/redact/encoded_runs.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

/// `text` with "node31" in its encoded bytes replaced, and where that was.
std::string Change(std::string text, std::string* places = nullptr) {
  ChangeEncodedBytes(
      text,
      [](std::string& bytes) {
        const std::size_t at = bytes.find("node31");
        if (at == std::string::npos) return false;
        bytes.replace(at, 6, "qqqq77");
        return true;
      },
      [&](const Stretch& stretch) {
        if (places == nullptr) return;
        *places += std::to_string(stretch.begin) + "-" + std::to_string(stretch.end) + " ";
      });
  return text;
}

TEST(EncodedRuns, ReadBase64WhereverAValueBegins) {
  std::string places;
  EXPECT_EQ(Change("auth bm9kZTMx end", &places), "auth cXFxcTc3 end");
  EXPECT_EQ(places, "5-13 ");
  EXPECT_EQ(Change("YWJub2RlMzFj"), "YWJxcXFxNzdj") << "abnode31c";
  EXPECT_EQ(Change("YW5vZGUzMWM="), "YXFxcXE3N2M=") << "anode31c";
  EXPECT_EQ(Change("x=bm9kZTMx"), "x=cXFxcTc3");
}

TEST(EncodedRuns, ReadBase64ThatGoesOnInTheNextLine) {
  const std::string line(72, 'A');
  EXPECT_EQ(Change(line + "bm9k\r\nZTMx"), line + "cXFx\r\ncTc3");
}

TEST(EncodedRuns, ReadDumps) {
  EXPECT_EQ(Change("00 6e 6f 64 65 33 31 20"), "00 71 71 71 71 37 37 20");
  EXPECT_EQ(Change("0x6E6F64653331"), "0x717171713737");
  EXPECT_EQ(Change("6e 6f 64 \n65 33 31"), "71 71 71 \n71 37 37");
}

TEST(EncodedRuns, LeaveAllElse) {
  const std::string text = "Controller = 0, bm9kZTM, 6e 6f 64 65, deadbeef, node31";
  EXPECT_EQ(Change(text), text);
}

}  // namespace
}  // namespace host
