#include "host/live/windows/own_folder.h"

#include <windows.h>
// After windows.h.
#include <aclapi.h>

#include "host/files/windows/accounts.h"

namespace host {

std::uint32_t CreateOwnFolder(const std::filesystem::path& folder) {
  OwnAccess access;
  if (access.Get() == nullptr) return GetLastError();
  if (CreateDirectoryW(folder.c_str(), access.Get())) return 0;
  const DWORD error = GetLastError();
  return error == ERROR_ALREADY_EXISTS ? 0 : error;
}

bool IsOwnFolder(const std::filesystem::path& folder) {
  const DWORD attributes = GetFileAttributesW(folder.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ||
      (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    return false;
  }
  PSID owner = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(const_cast<wchar_t*>(folder.c_str()), SE_FILE_OBJECT,
                            OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                            &descriptor) != ERROR_SUCCESS) {
    return false;
  }
  const LocalMemory owned(descriptor);
  return IsOurs(owner);
}

}  // namespace host
