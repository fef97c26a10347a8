// Who may have access to what is this user's own.
#pragma once

#include <windows.h>
// After windows.h.
#include <aclapi.h>

#include <memory>
#include <vector>

namespace host {

struct LocalDeleter {
  using pointer = void*;
  void operator()(void* memory) const { LocalFree(memory); }
};
/// Memory that Windows gave.
using LocalMemory = std::unique_ptr<void, LocalDeleter>;

/// The user that this process runs for.
class ThisUser {
 public:
  ThisUser();
  /// Null when the system does not tell. Valid as long as this object.
  PSID Sid() const;

 private:
  std::vector<char> user;  ///< a TOKEN_USER
};

/// Full access for administrators and the user, in a folder also below it; nothing is inherited
/// from above.
class OwnAccess {
 public:
  OwnAccess();
  /// Null when the system cannot make it, which leaves its reason in GetLastError().
  SECURITY_ATTRIBUTES* Get() { return descriptor == nullptr ? nullptr : &attributes; }

 private:
  LocalMemory descriptor;
  SECURITY_ATTRIBUTES attributes{};
};

/// Whether the account is this user's, the administrators' or the system's own.
bool IsOurs(PSID account);

}  // namespace host
