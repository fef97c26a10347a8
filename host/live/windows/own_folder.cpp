#include "host/live/windows/own_folder.h"

#include <windows.h>
// After windows.h.
#include <aclapi.h>
#include <sddl.h>

#include <memory>
#include <string>
#include <vector>

namespace host {
namespace {

struct LocalDeleter {
  using pointer = void*;
  void operator()(void* memory) const { LocalFree(memory); }
};
using LocalMemory = std::unique_ptr<void, LocalDeleter>;

/// The user that this process runs for, as a TOKEN_USER; empty when the system does not tell.
std::vector<char> ReadUser() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return {};
  DWORD size = 0;
  GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  std::vector<char> user(size);
  if (!GetTokenInformation(token, TokenUser, user.data(), size, &size)) user.clear();
  CloseHandle(token);
  return user;
}

PSID GetSid(std::vector<char>& user) {
  return user.empty() ? nullptr : reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid;
}

/// Full access for administrators and the user, here and below; nothing is inherited from above.
std::wstring DescribeAccess() {
  std::wstring access = L"D:P(A;OICI;FA;;;BA)";
  std::vector<char> user = ReadUser();
  wchar_t* sid = nullptr;
  if (GetSid(user) != nullptr && ConvertSidToStringSidW(GetSid(user), &sid)) {
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
  std::vector<char> user = ReadUser();
  return IsWellKnownSid(owner, WinBuiltinAdministratorsSid) != 0 ||
         IsWellKnownSid(owner, WinLocalSystemSid) != 0 ||
         (GetSid(user) != nullptr && EqualSid(owner, GetSid(user)) != 0);
}

}  // namespace host
