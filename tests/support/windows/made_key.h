// A key of this machine's registry that is there for a test.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace test {

/// Below HKEY_LOCAL_MACHINE; goes with all below it, unless it was there before. It is never on the
/// disk, and neither are keys below it.
class MadeKey {
 public:
  explicit MadeKey(std::wstring name) : path(std::move(name)) {
    DWORD found = 0;
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                    KEY_ALL_ACCESS, nullptr, &key, &found);
    isNew = found == REG_CREATED_NEW_KEY;
  }
  MadeKey(const MadeKey&) = delete;
  MadeKey& operator=(const MadeKey&) = delete;
  ~MadeKey() {
    RegCloseKey(key);
    if (isNew) RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
  }

  void SetText(const wchar_t* name, const std::wstring& text) const {
    Set(name, REG_SZ, text + L'\0');
  }
  void SetTexts(const wchar_t* name, const std::vector<std::wstring>& texts) const {
    std::wstring all;
    for (const std::wstring& text : texts) all += text + L'\0';
    Set(name, REG_MULTI_SZ, all + L'\0');
  }

 private:
  void Set(const wchar_t* name, DWORD type, const std::wstring& data) const {
    RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                   static_cast<DWORD>(data.size() * sizeof(wchar_t)));
  }

  std::wstring path;
  HKEY key = nullptr;
  bool isNew = false;
};

}  // namespace test
