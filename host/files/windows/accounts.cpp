#include "host/files/windows/accounts.h"

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

bool IsOurs(PSID account) {
  const ThisUser user;
  return IsWellKnownSid(account, WinBuiltinAdministratorsSid) != 0 ||
         IsWellKnownSid(account, WinLocalSystemSid) != 0 ||
         (user.Sid() != nullptr && EqualSid(account, user.Sid()) != 0);
}

}  // namespace host
