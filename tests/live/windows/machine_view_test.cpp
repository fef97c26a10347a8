#include <gmock/gmock.h>

#include "host/live/live.h"
#include "tests/support/temporary_folder.h"

namespace test {
namespace {

TEST(LiveMachineView, ReadsFilesAndListsThoseOfAFolder) {
  const TemporaryFolder folder;
  folder.Write("one.txt", "1\r\n2");
  folder.Write("below/two.txt", "");
  const auto view = host::ViewLiveMachine();
  const std::string place = folder.Path().string();
  EXPECT_EQ(view->ReadFile(place + "\\one.txt"), "1\r\n2");
  EXPECT_EQ(view->ReadFile(place + "\\missing"), std::nullopt);
  EXPECT_EQ(view->FindState(place + "\\one.txt").value().size, 4U);
  EXPECT_EQ(view->FindState(place + "\\below"), std::nullopt);
  EXPECT_EQ(view->FindState(place + "\\missing"), std::nullopt);
  EXPECT_THAT(view->ListFiles(place), testing::ElementsAre(place + "\\one.txt"));
  EXPECT_THAT(view->ListFiles(place + "\\missing"), testing::IsEmpty());
}

}  // namespace
}  // namespace test
