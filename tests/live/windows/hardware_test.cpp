#include "host/live/windows/hardware.h"

#include <gmock/gmock.h>

#include "tests/support/windows/made_key.h"

namespace test {
namespace {

using testing::IsSupersetOf;

std::vector<host::PciDevice> ListDevices() {
  return host::FindHardware().pci.value_or(std::vector<host::PciDevice>());
}

const std::wstring kBus = L"SYSTEM\\CurrentControlSet\\Enum\\PCI";

TEST(Hardware, IsKnownByThePciDevicesThatAreThere) {
  const MadeKey bus(kBus);
  const std::wstring kind = kBus + L"\\VEN_ABCD&DEV_0001";
  const MadeKey first(kind + L"\\first");
  first.SetTexts(L"HardwareID",
                 {L"PCI\\VEN_ABCD&DEV_0001&REV_01", L"PCI\\VEN_ABCD&DEV_0001&CC_0104",
                  L"PCI\\VEN_ABCD&DEV_0001&CC_010400"});
  const MadeKey firstControl(kind + L"\\first\\Control");
  const MadeKey second(kBus + L"\\VEN_ABCD&DEV_0002\\second");
  second.SetTexts(L"HardwareID", {L"PCI\\VEN_ABCD&DEV_0002&CC_0C07"});
  const MadeKey secondControl(kBus + L"\\VEN_ABCD&DEV_0002\\second\\Control");
  EXPECT_THAT(ListDevices(), IsSupersetOf({host::PciDevice{0xABCD, 1, 0x0104},
                                           host::PciDevice{0xABCD, 2, 0x0C07}}));
}

TEST(Hardware, LacksDevicesThatWereThereOnceOrTellNothing) {
  const MadeKey bus(kBus);
  const auto before = host::FindHardware().pci;
  const MadeKey gone(kBus + L"\\VEN_ABCD&DEV_0003\\gone");
  gone.SetTexts(L"HardwareID", {L"PCI\\VEN_ABCD&DEV_0003&CC_0104"});
  const MadeKey silent(kBus + L"\\VEN_ABCD&DEV_0004\\silent");
  const MadeKey silentControl(kBus + L"\\VEN_ABCD&DEV_0004\\silent\\Control");
  EXPECT_EQ(host::FindHardware().pci, before)
      << "where none is listed, none is known to be missing";
}

}  // namespace
}  // namespace test
