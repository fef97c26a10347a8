#include "host/check/devices.h"

#include <gmock/gmock.h>

#include "host/catalogue/areas.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(Devices, AreNotKnownWithoutAList) { EXPECT_THAT(FindDevices(Hardware()), IsEmpty()); }

TEST(Devices, AreThoseOfTheFirmware) {
  const Hardware hardware{.pci = std::nullopt, .hasBmc = true, .hasAmt = false};
  EXPECT_THAT(FindDevices(hardware), ElementsAre(Pair("BMC", true), Pair("Intel AMT", false)));
}

/// The areas of which one of the devices is there.
std::vector<std::string> AreasWith(std::vector<PciDevice> pci) {
  std::vector<std::string> areas;
  for (const auto& [area, isThere] :
       FindDevices({.pci = std::move(pci), .hasBmc = {}, .hasAmt = {}})) {
    EXPECT_THAT(ListAreas(), Contains(area));
    if (isThere) areas.push_back(area);
  }
  return areas;
}

TEST(Devices, AreOnTheBus) {
  EXPECT_THAT(AreasWith({{0x1000, 0x005d, 0x0104}}), ElementsAre("LSI RAID"));
  EXPECT_THAT(AreasWith({{0x1000, 0x0072, 0x0107}}), ElementsAre("LSI RAID", "LSI SAS2"));
  EXPECT_THAT(AreasWith({{0x9005, 0x028f, 0x0107}}), ElementsAre("Microchip RAID"));
  EXPECT_THAT(AreasWith({{0x8086, 0x2822, 0x0104}}), ElementsAre("Intel RAID"));
  EXPECT_THAT(AreasWith({{0x8086, 0xa182, 0x0106}, {0x1000, 0x00b2, 0x0580}, {0x9005, 1, 0x0604}}),
              IsEmpty());
}

TEST(Devices, AreThoseThatACollectionFound) {
  test::MadeCollection made;
  made.Table("PINFO").Row({{"Model", "x"}}).Table("AMTLOG").Table("VOLUME").Table("ARPINFO");
  made.Table("ARRAY").Table("CONTROLLER").Row({{"Name", "x"}}).Table("PMCINFO");
  for (CollectedTable& table : made.Get().tables) table.status.outcome = "nothing printed";
  made.Get().tables[1].status.outcome = "no such device";
  made.Get().tables[2].status.outcome = "no such device";
  const auto all = [](const std::string& /*program*/) { return true; };
  EXPECT_THAT(
      FindDevices(made.Get(), all),
      ElementsAre(Pair("Intel AMT", false), Pair("Intel RAID", true), Pair("LSI RAID", true)));
  const auto none = [](const std::string& /*program*/) { return false; };
  EXPECT_THAT(FindDevices(made.Get(), none),
              ElementsAre(Pair("Intel AMT", false), Pair("Intel RAID", false)));
}

TEST(Devices, HaveTablesThatTheirPlatformFamilyIsNeverAskedFor) {
  test::MadeCollection made;
  made.Table("LEDINFO").Table("SELINFO");
  made.Get().tables[0].status.outcome = "not this platform family";
  made.Get().tables[1].status.outcome = "no such device";
  EXPECT_THAT(FindNeverAsked(made.Get()), ElementsAre("LEDINFO"));
}

}  // namespace
}  // namespace host
