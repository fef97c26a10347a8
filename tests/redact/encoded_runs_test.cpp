#include "host/redact/encoded_runs.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

/// `text` with "node31" in its encoded bytes replaced.
std::string Change(std::string text) {
  Beginnings beginnings;
  beginnings.Add("node31");
  ChangeEncodedBytes(text, beginnings, [](std::string& bytes) {
    const std::size_t at = bytes.find("node31");
    if (at == std::string::npos) return false;
    bytes.replace(at, 6, "qqqq77");
    return true;
  });
  return text;
}

TEST(EncodedRuns, ReadBase64WhereverAValueBegins) {
  EXPECT_EQ(Change("auth bm9kZTMx end"), "auth cXFxcTc3 end");
  EXPECT_EQ(Change("YWJub2RlMzFj"), "YWJxcXFxNzdj") << "abnode31c";
  EXPECT_EQ(Change("YW5vZGUzMWM="), "YXFxcXE3N2M=") << "anode31c";
  EXPECT_EQ(Change("x=bm9kZTMx"), "x=cXFxcTc3");
}

TEST(EncodedRuns, ReadBase64BehindOtherCharactersOfItsAlphabet) {
  for (std::size_t count = 0; count < 9; ++count) {
    const std::string before(count, 'x');
    EXPECT_EQ(Change(before + "bm9kZTMx"), before + "cXFxcTc3") << count;
    EXPECT_EQ(Change(before + "YW5vZGUzMWM="), before + "YXFxcXE3N2M=") << count;
    EXPECT_EQ(Change(before + "YWJub2RlMzFj"), before + "YWJxcXFxNzdj") << count;
  }
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
