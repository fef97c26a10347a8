#include "host/files/windows/accounts.h"

// After windows.h.
#include <sddl.h>

#include <string>

namespace host {

ThisUser::ThisUser() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return;
  DWORD size = 0;
  GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  user.resize(size);
  if (!GetTokenInformation(token, TokenUser, user.data(), size, &size)) user.clear();
  CloseHandle(token);
}

PSID ThisUser::Sid() const {
  return user.empty() ? nullptr : reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid;
}

OwnAccess::OwnAccess() {
  std::wstring access = L"D:P(A;OICI;FA;;;BA)";
  const ThisUser user;
  wchar_t* sid = nullptr;
  if (user.Sid() != nullptr && ConvertSidToStringSidW(user.Sid(), &sid)) {
    const LocalMemory owned(sid);
    access += L"(A;OICI;FA;;;" + std::wstring(sid) + L")";
  }
  PSECURITY_DESCRIPTOR made = nullptr;
  if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(access.c_str(), SDDL_REVISION_1, &made,
                                                            nullptr)) {
    return;
  }
  descriptor.reset(made);
  attributes = {sizeof(attributes), made, FALSE};
}

bool IsOurs(PSID account) {
  const ThisUser user;
  return IsWellKnownSid(account, WinBuiltinAdministratorsSid) != 0 ||
         IsWellKnownSid(account, WinLocalSystemSid) != 0 ||
         (user.Sid() != nullptr && EqualSid(account, user.Sid()) != 0);
}

}  // namespace host
