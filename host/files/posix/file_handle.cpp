#include "host/files/file_handle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kAsUmaskSays = 0666;
constexpr mode_t kPermissionBits = 0777;
constexpr mode_t kForOthers = 0077;

}  // namespace

FileHandle CreateNewFile(const fs::path& path, Readers readers) {
  return FileHandle(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                         readers == Readers::kAsUsual ? kAsUmaskSays : kOwnerOnly));
}

FileHandle OpenToOverwrite(const fs::path& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  const bool isDevice = fs::exists(status) && !fs::is_regular_file(status);
  const int links = isDevice ? 0 : O_NOFOLLOW;  // /dev/stdout is a link
  return FileHandle(
      open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | links, kOwnerOnly));
}

FileHandle OpenToRead(const fs::path& path) {
  FileHandle file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.IsOpen()) {
    throw std::runtime_error(errno == ENOENT
                                 ? "there is no such file"
                                 : std::string("cannot be read: ") + std::strerror(errno));
  }
  struct stat facts {};
  if (fstat(file.Descriptor(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
    throw std::runtime_error("is no plain file");
  }
  return file;
}

bool IsOpenToOthers(const FileHandle& file) {
  struct stat facts {};
  return fstat(file.Descriptor(), &facts) != 0 || (facts.st_mode & kForOthers) != 0 ||
         (facts.st_uid != geteuid() && facts.st_uid != 0);
}

fs::path FindRealPath(const FileHandle& file, const fs::path& path) {
  // The kernel knows by one call; without /proc, every folder above is asked whether it is a link.
  std::error_code error;
  fs::path real = fs::read_symlink("/proc/self/fd/" + std::to_string(file.Descriptor()), error);
  if (error) real = fs::canonical(path, error);
  struct stat opened {};
  struct stat found {};
  const bool isSame = !error && fstat(file.Descriptor(), &opened) == 0 &&
                      lstat(real.c_str(), &found) == 0 && opened.st_dev == found.st_dev &&
                      opened.st_ino == found.st_ino;
  return isSame ? real : fs::path();
}

fs::path FindRealFolder(const fs::path& folder) {
  std::error_code error;
  fs::path real = fs::canonical(folder, error);
  return error ? fs::path() : real;
}

void CopyAccess(const fs::path& replaced, const FileHandle& file) {
  struct stat facts {};
  if (lstat(replaced.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return;
  // The owner first: a change of it takes bits away. Only root may give a file to another user.
  if (fchown(file.Descriptor(), facts.st_uid, facts.st_gid) != 0 &&
      fchown(file.Descriptor(), static_cast<uid_t>(-1), facts.st_gid) != 0) {
    facts.st_mode &= ~static_cast<mode_t>(S_IRWXG);  // those of another group do not count
  }
  fchmod(file.Descriptor(), facts.st_mode & kPermissionBits);
}

}  // namespace host
