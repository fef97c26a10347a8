#include "host/live/hardware_texts.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(PciId, NamesVendorDeviceAndClass) {
  EXPECT_EQ(ParsePciId("PCI\\VEN_1000&DEV_005D&CC_010400"), (PciDevice{0x1000, 0x005d, 0x0104}));
  EXPECT_EQ(ParsePciId("PCI\\VEN_8086&DEV_a1d6&CC_0104"), (PciDevice{0x8086, 0xa1d6, 0x0104}));
}

TEST(PciId, IsNothingElse) {
  for (const char* id : {"", "PCI\\", "PCI\\VEN_1000&DEV_005D&SUBSYS_93801000&REV_02",
                         "PCI\\VEN_1000&DEV_005D&CC_01", "PCI\\VEN_10G0&DEV_005D&CC_0104",
                         "ACPI\\VEN_1000&DEV_005D&CC_0104"}) {
    EXPECT_EQ(ParsePciId(id), std::nullopt) << id;
  }
}

/// A structure with its texts, if any.
std::string MakeStructure(char type, const std::string& content, const std::string& texts = {}) {
  std::string structure = {type, static_cast<char>(content.size() + 4), 0, 0};
  return structure + content + texts + std::string(texts.empty() ? 2 : 1, '\0');
}

Hardware Read(const std::string& table) {
  Hardware hardware;
  ReadSmbios(table, hardware);
  return hardware;
}

const std::string kBios = MakeStructure(0, "abc", std::string("Maker\0Version", 13) + '\0');
const std::string kEnd = MakeStructure(127, "");

TEST(Smbios, TellsOfABmcAndOfAmt) {
  const Hardware both = Read(kBios + MakeStructure(38, "\1\2\3") +
                             MakeStructure(static_cast<char>(130), "$AMT\1\1") + kEnd);
  EXPECT_EQ(both.hasBmc, true);
  EXPECT_EQ(both.hasAmt, true);
  const Hardware none = Read(kBios + kEnd);
  EXPECT_EQ(none.hasBmc, false);
  EXPECT_EQ(none.hasAmt, false);
}

TEST(Smbios, TellsOfNoAmtWhereItIsNotSupported) {
  const char kType = static_cast<char>(130);
  EXPECT_EQ(Read(MakeStructure(kType, std::string("$AMT\0\1", 6)) + kEnd).hasAmt, false);
  EXPECT_EQ(Read(MakeStructure(kType, "OTHER") + kEnd).hasAmt, false);
  EXPECT_EQ(Read(MakeStructure(kType, "$AMT") + kEnd).hasAmt, false);
  EXPECT_EQ(Read(MakeStructure(kType, "") + kEnd).hasAmt, false);
}

TEST(Smbios, EndsWithTheTable) { EXPECT_EQ(Read(kEnd + MakeStructure(38, "")).hasBmc, false); }

TEST(Smbios, TellsNothingWithoutATable) {
  EXPECT_EQ(Read("").hasBmc, std::nullopt);
  EXPECT_EQ(Read(std::string(40, '\0')).hasAmt, std::nullopt);
}

TEST(Smbios, IsReadAsFarAsItGoes) {
  const std::string table = kBios + MakeStructure(38, "\1\2\3") + kEnd;
  for (std::size_t size = 0; size <= table.size(); ++size) Read(table.substr(0, size));
  EXPECT_EQ(Read(table.substr(0, kBios.size() + 4)).hasBmc, false);
}

}  // namespace
}  // namespace host
