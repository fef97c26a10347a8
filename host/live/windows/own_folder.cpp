#include "host/live/windows/own_folder.h"

#include <windows.h>
// After windows.h.
#include <aclapi.h>
#include <sddl.h>

#include <string>

#include "host/files/windows/accounts.h"

namespace host {
namespace {

/// Full access for administrators and the user, here and below; nothing is inherited from above.
std::wstring DescribeAccess() {
  std::wstring access = L"D:P(A;OICI;FA;;;BA)";
  const ThisUser user;
  wchar_t* sid = nullptr;
  if (user.Sid() != nullptr && ConvertSidToStringSidW(user.Sid(), &sid)) {
    const LocalMemory owned(sid);
    access += L"(A;OICI;FA;;;" + std::wstring(sid) + L")";
  }
  return access;
}

}  // namespace

std::uint32_t CreateOwnFolder(const std::filesystem::path& folder) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(
          DescribeAccess().c_str(), SDDL_REVISION_1, &descriptor, nullptr)) {
    return GetLastError();
  }
  const LocalMemory owned(descriptor);
  SECURITY_ATTRIBUTES security{sizeof(security), descriptor, FALSE};
  if (CreateDirectoryW(folder.c_str(), &security)) return 0;
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
