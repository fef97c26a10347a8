#include "host/answers/machine_identity.h"

#include <gmock/gmock.h>

#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::MadeCollection;
using testing::ElementsAre;
using testing::IsEmpty;

/// A collection whose inventory has these lines.
class Inventory {
 public:
  explicit Inventory(const std::vector<std::string>& lines) {
    made.Table("FRUINFO");
    for (const std::string& line : lines) made.Row({{"FRU Detailed Info", line + "\r\n"}});
  }
  Collection& Get() { return made.Get(); }

 private:
  MadeCollection made;
};

TEST(MachineIdentity, IsThatOfTheProduct) {
  Inventory inventory({"ipmiutil fru version 3.18",
                       "[Baseboard,20,00] Board Manufacturer  : Boards",
                       "[Baseboard,20,00] Board Product Name  : B-1",
                       "[Baseboard,20,00] Board Serial Number : B0001",
                       "[Baseboard,20,00] Chassis Serial Num  : C0001",
                       "[Baseboard,20,00] Product Manufacturer: Makers",
                       "[Baseboard,20,00] Product Name        : P: 1",
                       "[Baseboard,20,00] Product Serial Num  : P0001",
                       "[Baseboard,20,00] Product Asset Tag   : A0001",
                       "[PowerSply,20,01] Product Serial Num  : S0001"});
  EXPECT_EQ(FindMachineIdentity(inventory.Get()),
            (MachineIdentity{"Makers", "P: 1", "P0001", "A0001"}));
  EXPECT_THAT(ListMachineSerials(inventory.Get()), ElementsAre("P0001", "C0001", "B0001"));
}

TEST(MachineIdentity, IsThatOfTheBoardWhereTheProductHasNone) {
  Inventory inventory(
      {"[Baseboard,20,00] Board Manufacturer  : Boards",
       "[Baseboard,20,00] Board Product Name  : B-1",
       "[Baseboard,20,00] Board Serial Number : B0001",
       "[Baseboard,20,00] Product Name        :", "[Baseboard,20,00] Product Serial Num  : "});
  EXPECT_EQ(FindMachineIdentity(inventory.Get()),
            (MachineIdentity{"Boards", "B-1", "B0001", "", "board"}));
}

TEST(MachineIdentity, IsNotWhatNobodyFilledIn) {
  Inventory inventory({"[Baseboard,20,00] Product Manufacturer: To be filled by O.E.M.",
                       "[Baseboard,20,00] Product Name        : Default string",
                       "[Baseboard,20,00] Product Serial Num  : 0000000000",
                       "[Baseboard,20,00] Product Asset Tag   : N/A"});
  EXPECT_EQ(FindMachineIdentity(inventory.Get()), MachineIdentity{});
  EXPECT_THAT(ListMachineSerials(inventory.Get()), IsEmpty());
}

TEST(MachineIdentity, IsNotFoundInAnErrorText) {
  Inventory inventory({"ipmiutil fru version 3.18", "ipmiutil fru, cannot open IPMI driver",
                       "[Baseboard", "[Baseboard,20,00]", "[Baseboard,20,00] Product Name", ""});
  EXPECT_EQ(FindMachineIdentity(inventory.Get()), MachineIdentity{});
}

TEST(MachineIdentity, IsDecodedAsTheMachinesTexts) {
  Inventory inventory({"[Baseboard,20,00] Product Name : Bl\x84tt"});
  inventory.Get().machine.codePage = 850;
  EXPECT_EQ(FindMachineIdentity(inventory.Get()).product, "Blätt");
}

TEST(MachineIdentity, TellsWhichPartItsSerialNumberIsOf) {
  Inventory inventory({"[Baseboard,20,00] Board Serial Number : B0001",
                       "[Baseboard,20,00] Chassis Serial Num  : C0001"});
  EXPECT_EQ(FindMachineIdentity(inventory.Get()).serialOf, "chassis");
}

TEST(MachineIdentity, IsThatOfTheBiosWithoutAnInventory) {
  const std::string bios =
      "Handle 0x0000, Type 0, 26 bytes\nBIOS Information\n    Manufacturer: Firmware\n\n"
      "Handle 0x0001, Type 1, 27 bytes\nSystem Information\n    Manufacturer: Makers\n"
      "    Product Name: D\x84sk\n    Serial Number: D0001\n\n"
      "Handle 0x0002, Type 2, 15 bytes\nBase Board Information\n    Serial Number: B0001\n";
  const auto add = [&](Collection& collection) {
    CollectedAnswer& answer = collection.answers.emplace_back();
    answer.commandLine =
        "/c \"\"C:\\host\\pq_tools\\getsmbios.exe\" >\"C:\\logs\\smbios_info.txt\"\"";
    answer.file = "C:\\logs\\smbios_info.txt";
    answer.fileText = bios;
    collection.machine.codePage = 850;
  };
  Inventory nothing({});
  add(nothing.Get());
  EXPECT_EQ(FindMachineIdentity(nothing.Get()), (MachineIdentity{"Makers", "Däsk", "D0001", ""}));
  EXPECT_THAT(ListMachineSerials(nothing.Get()), ElementsAre("D0001"));
  Inventory inventory({"[Baseboard,20,00] Product Serial Num  : P0001"});
  add(inventory.Get());
  EXPECT_EQ(FindMachineIdentity(inventory.Get()), (MachineIdentity{"", "", "P0001", ""}));
}

TEST(MachineIdentity, HasTheSerialNumberThatTheRecordingWasGiven) {
  Inventory nothing({});
  nothing.Get().machine.serials = {"G0001", "G0002"};
  EXPECT_EQ(FindMachineIdentity(nothing.Get()).serial, "G0001");
  EXPECT_THAT(ListMachineSerials(nothing.Get()), ElementsAre("G0001", "G0002"));
  Inventory inventory({"[Baseboard,20,00] Product Serial Num  : P0001"});
  inventory.Get().machine.serials = {"G0001"};
  EXPECT_EQ(FindMachineIdentity(inventory.Get()).serial, "P0001");
}

}  // namespace
}  // namespace host
