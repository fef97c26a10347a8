// A collection that was started without an administrator's rights.
#include "host/pqhost/elevation.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <sstream>
#include <string>

namespace host {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class ElevationTest : public testing::Test {
 protected:
  bool Offer(const std::string& typed) {
    std::istringstream in(typed);
    return OfferElevation(console, [&] { return in.get(); });
  }

  int restarts = 0;
  bool isAllowed = true;
  std::ostringstream out;
  std::ostringstream error;
  Console console{.programName = "pqhost",
                  .out = out,
                  .error = error,
                  .inIsTerminal = true,
                  .outIsTerminal = true,
                  .errorIsTerminal = true,
                  .restartElevated = [this] {
                    ++restarts;
                    return isAllowed;
                  }};
};

TEST_F(ElevationTest, StartsAgainWhenTheUserAgrees) {
  for (const char* typed : {"\n", "y\n", "Yes\r\n"}) EXPECT_TRUE(Offer(typed)) << typed;
  EXPECT_EQ(restarts, 3);
  EXPECT_THAT(error.str(), HasSubstr("pqhost: not elevated: tools for the BMC"));
  EXPECT_THAT(error.str(), EndsWith("The collection goes on in a new window.\n"));
}

TEST_F(ElevationTest, GoesOnWhenHeDoesNot) {
  for (const char* typed : {"n\n", "no\n", "what?\n", ""}) EXPECT_FALSE(Offer(typed)) << typed;
  EXPECT_EQ(restarts, 0);
}

TEST_F(ElevationTest, GoesOnWhenTheSystemRefuses) {
  isAllowed = false;
  EXPECT_FALSE(Offer("y\n"));
  EXPECT_THAT(error.str(), HasSubstr("going on without"));
}

TEST_F(ElevationTest, AsksNobodyWhoIsNotThere) {
  EXPECT_FALSE(OfferElevation(console, nullptr));
  console.inIsTerminal = false;
  EXPECT_FALSE(Offer("y\n"));
  EXPECT_EQ(restarts, 0);
  EXPECT_THAT(error.str(), HasSubstr("may refuse\n"));
  EXPECT_THAT(error.str(), Not(HasSubstr("[Y/n]")));
}

}  // namespace
}  // namespace host
