#include "host/files/file_handle.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h.
#include <aclapi.h>

#include <cerrno>
#include <stdexcept>
#include <string>

#include "host/files/windows/accounts.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// As the C library says it.
int ErrnoOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return ENOENT;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return EACCES;
    case ERROR_INVALID_NAME:
      return EINVAL;
    default:
      return EIO;
  }
}

FileHandle OpenFile(const fs::path& path, DWORD access, DWORD disposition, DWORD flags,
                    SECURITY_ATTRIBUTES* security = nullptr) {
  // No program that is started inherits it. Whoever may delete the file
  // may do so while it is open, as on other systems.
  const HANDLE handle =
      CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  security, disposition, FILE_ATTRIBUTE_NORMAL | flags, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    errno = ErrnoOf(GetLastError());
    return FileHandle();
  }
  const int mode = _O_BINARY | _O_NOINHERIT | (access == GENERIC_READ ? _O_RDONLY : _O_WRONLY);
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), mode);
  if (descriptor == -1) CloseHandle(handle);
  return FileHandle(descriptor);
}

HANDLE HandleOf(const FileHandle& file) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(file.Descriptor()));
}

bool IsLink(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION facts{};
  return !GetFileInformationByHandle(handle, &facts) ||
         (facts.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

fs::path AskRealPath(HANDLE handle) {
  std::wstring path(MAX_PATH, L'\0');
  while (true) {
    const DWORD length =
        GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), 0);
    if (length == 0) return {};
    const bool fits = length < path.size();
    path.resize(length);
    if (fits) return path;
  }
}

constexpr DWORD kRisky = FILE_READ_DATA | FILE_WRITE_DATA | FILE_APPEND_DATA | WRITE_DAC |
                         WRITE_OWNER | GENERIC_READ | GENERIC_WRITE | GENERIC_ALL;

/// Whether an entry of an access list lets others do what is risky; also one of an unusual kind,
/// unless it only denies.
bool AllowsOthers(void* entry) {
  const auto* header = static_cast<const ACE_HEADER*>(entry);
  if (header->AceType == ACCESS_DENIED_ACE_TYPE) return false;
  if (header->AceType != ACCESS_ALLOWED_ACE_TYPE) return true;
  auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
  const bool isInheritOnly = (header->AceFlags & INHERIT_ONLY_ACE) != 0;
  return !isInheritOnly && (allowed->Mask & kRisky) != 0 && !IsOurs(&allowed->SidStart);
}

}  // namespace

FileHandle CreateNewFile(const fs::path& path, Readers readers) {
  // Otherwise access is the folder's, which the new file inherits.
  OwnAccess own;
  SECURITY_ATTRIBUTES* access = readers == Readers::kOwnerAnywhere ? own.Get() : nullptr;
  return OpenFile(path, GENERIC_WRITE, CREATE_NEW, FILE_FLAG_OPEN_REPARSE_POINT, access);
}

FileHandle OpenToOverwrite(const fs::path& path) {
  FileHandle file = OpenFile(path, GENERIC_WRITE, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT);
  if (!file.IsOpen() || GetFileType(HandleOf(file)) != FILE_TYPE_DISK) return file;
  if (IsLink(HandleOf(file)) || !SetEndOfFile(HandleOf(file))) {
    errno = EACCES;
    return FileHandle();
  }
  return file;
}

FileHandle OpenToRead(const fs::path& path) {
  FileHandle file = OpenFile(path, GENERIC_READ, OPEN_EXISTING, 0);
  if (!file.IsOpen()) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) throw std::runtime_error("is no plain file");
    throw std::runtime_error(errno == ENOENT ? "there is no such file" : "cannot be read");
  }
  if (GetFileType(HandleOf(file)) != FILE_TYPE_DISK) throw std::runtime_error("is no plain file");
  return file;
}

bool IsOpenToOthers(const FileHandle& file) {
  PSID owner = nullptr;
  PACL access = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetSecurityInfo(HandleOf(file), SE_FILE_OBJECT,
                      OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner, nullptr,
                      &access, nullptr, &descriptor) != ERROR_SUCCESS) {
    return true;
  }
  const LocalMemory owned(descriptor);
  if (access == nullptr || !IsOurs(owner)) return true;  // without a list, everybody may do all
  for (DWORD i = 0; i < access->AceCount; ++i) {
    void* entry = nullptr;
    if (!GetAce(access, i, &entry) || AllowsOthers(entry)) return true;
  }
  return false;
}

fs::path FindRealPath(const FileHandle& file, const fs::path& /*path*/) {
  return AskRealPath(HandleOf(file));
}

fs::path FindRealFolder(const fs::path& folder) {
  const HANDLE handle = CreateFileW(folder.c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return {};
  fs::path real = AskRealPath(handle);
  CloseHandle(handle);
  return real;
}

void CopyAccess(const fs::path& /*replaced*/, const FileHandle& /*file*/) {
  // A new file's access is the folder's here.
}

}  // namespace host
