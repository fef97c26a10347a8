// A variable of the environment that is another one during a test.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <string>

namespace test {

/// For this process and its C library; an empty value takes the variable away.
class ChangedVariable {
 public:
  ChangedVariable(const wchar_t* name, const wchar_t* value) : name(name) {
    if (const wchar_t* before = _wgetenv(name)) was = before;
    Set(value);
  }
  ChangedVariable(const ChangedVariable&) = delete;
  ChangedVariable& operator=(const ChangedVariable&) = delete;
  ~ChangedVariable() { Set(was.c_str()); }

 private:
  void Set(const wchar_t* value) const {
    _wputenv((name + L"=" + value).c_str());
    SetEnvironmentVariableW(name.c_str(), *value == L'\0' ? nullptr : value);
  }

  std::wstring name;
  std::wstring was;
};

}  // namespace test
