#include "host/live/windows/hardware.h"

#include <windows.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "host/live/hardware_texts.h"
#include "host/live/windows/system_text.h"

namespace host {
namespace {

/// Below it a key for each kind of device, and below that one for each device.
constexpr wchar_t kPciKey[] = L"SYSTEM\\CurrentControlSet\\Enum\\PCI";

/// One that is not there has neither keys nor values.
class Key {
 public:
  Key(HKEY parent, const wchar_t* name) {
    if (RegOpenKeyExW(parent, name, 0, KEY_READ, &key) != ERROR_SUCCESS) key = nullptr;
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key != nullptr) RegCloseKey(key);
  }

  bool IsOpen() const { return key != nullptr; }
  HKEY Get() const { return key; }

  std::vector<std::wstring> ListKeys() const {
    std::vector<std::wstring> names;
    std::array<wchar_t, 256> name{};
    for (DWORD i = 0;; ++i) {
      DWORD size = static_cast<DWORD>(name.size());
      if (RegEnumKeyExW(key, i, name.data(), &size, nullptr, nullptr, nullptr, nullptr) !=
          ERROR_SUCCESS) {
        return names;
      }
      names.emplace_back(name.data(), size);
    }
  }

  /// The texts of a value that holds several.
  std::vector<std::wstring> ReadTexts(const wchar_t* value) const {
    std::array<wchar_t, 4096> buffer{};
    DWORD size = sizeof(buffer);
    std::vector<std::wstring> texts;
    if (RegGetValueW(key, nullptr, value, RRF_RT_REG_MULTI_SZ, nullptr, buffer.data(), &size) !=
        ERROR_SUCCESS) {
      return texts;
    }
    for (const wchar_t* text = buffer.data(); *text != L'\0'; text += texts.back().size() + 1) {
      texts.emplace_back(text);
    }
    return texts;
  }

 private:
  HKEY key = nullptr;
};

/// The system keeps devices that were there once, but only those that are there now have this key.
bool IsThere(const Key& device) { return Key(device.Get(), L"Control").IsOpen(); }

std::vector<PciDevice> ListPciDevices() {
  std::vector<PciDevice> devices;
  const Key bus(HKEY_LOCAL_MACHINE, kPciKey);
  for (const std::wstring& kindName : bus.ListKeys()) {
    const Key kind(bus.Get(), kindName.c_str());
    for (const std::wstring& deviceName : kind.ListKeys()) {
      const Key device(kind.Get(), deviceName.c_str());
      if (!IsThere(device)) continue;
      for (const std::wstring& id : device.ReadTexts(L"HardwareID")) {
        const auto found = ParsePciId(ToUtf8(id));
        if (!found) continue;
        devices.push_back(*found);
        break;
      }
    }
  }
  return devices;
}

/// The firmware's table, without the head that the system puts before it.
std::string ReadSmbiosTable() {
  constexpr DWORD kProvider = 0x52534D42;  // "RSMB"
  constexpr std::size_t kHeadSize = 8;
  std::string table(GetSystemFirmwareTable(kProvider, 0, nullptr, 0), '\0');
  const UINT size =
      GetSystemFirmwareTable(kProvider, 0, table.data(), static_cast<DWORD>(table.size()));
  if (size != table.size() || size < kHeadSize) return {};
  return table.substr(kHeadSize);
}

}  // namespace

Hardware FindHardware() {
  Hardware hardware;
  std::vector<PciDevice> devices = ListPciDevices();
  // Every machine has some.
  if (!devices.empty()) hardware.pci = std::move(devices);
  ReadSmbios(ReadSmbiosTable(), hardware);
  return hardware;
}

}  // namespace host
