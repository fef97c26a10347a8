#include "host/live/windows/program_search_limits.h"

#include <windows.h>

#include <filesystem>
#include <string>

namespace host {
namespace {

/// The function of that name in the system's kernel32; null where the system is too old for it.
template <typename Function>
Function* FindSystemFunction(const char* name) {
  return reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

std::filesystem::path FindFolderOfProgram() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return std::filesystem::path(path).parent_path();
}

void LimitLibrarySearch() {
  auto* const setDefaults =
      FindSystemFunction<decltype(SetDefaultDllDirectories)>("SetDefaultDllDirectories");
  auto* const addFolder = FindSystemFunction<decltype(AddDllDirectory)>("AddDllDirectory");
  if (setDefaults == nullptr || addFolder == nullptr) return;
  addFolder(FindFolderOfProgram().c_str());
  setDefaults(LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_USER_DIRS);
}

void PreferSystemLibraries() {
  auto* const setPolicy =
      FindSystemFunction<decltype(SetProcessMitigationPolicy)>("SetProcessMitigationPolicy");
  if (setPolicy == nullptr) return;
  PROCESS_MITIGATION_IMAGE_LOAD_POLICY policy{};
  policy.PreferSystem32Images = 1;
  setPolicy(ProcessImageLoadPolicy, &policy, sizeof(policy));
}

}  // namespace

void LimitProgramSearch() {
  static const bool done = [] {
    SetEnvironmentVariableW(L"NoDefaultCurrentDirectoryInExePath", L"1");
    LimitLibrarySearch();
    PreferSystemLibraries();
    return true;
  }();
  (void)done;
}

}  // namespace host
