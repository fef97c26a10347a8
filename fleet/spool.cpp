#include "fleet/spool.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "host/recording/recording_format.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

namespace fs = std::filesystem;

constexpr char kRefused[] = ".refused";
constexpr char kClosed[] = ".closed";
constexpr char kLockName[] = ".lock";
/// While it is made sure of which file it is.
constexpr char kTaken[] = ".taken";
constexpr char kTakenBefore[] = "taken-before.zip";

[[noreturn]] void FailSpool(const fs::path& path, std::string_view reason) {
  throw host::UsageError(fmt::format("{}: {}", host::PathText(path), reason));
}

bool IsHidden(const fs::path& path) { return path.filename().native().starts_with('.'); }

std::chrono::nanoseconds ReadTime(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// None when it is not there, or no plain file.
std::optional<SpooledFile> Look(const fs::path& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return SpooledFile{path, status.st_ino, static_cast<std::uint64_t>(status.st_size),
                     ReadTime(status.st_mtim), ReadTime(status.st_ctim)};
}

/// Of what was there before it was moved, and is there now.
bool IsSame(const SpooledFile& one, const SpooledFile& other) {
  return one.number == other.number && one.bytes == other.bytes && one.written == other.written;
}

}  // namespace

Spool::Spool(fs::path given) : folder(std::move(given)) {
  std::error_code ignored;
  if (!fs::is_directory(folder, ignored)) FailSpool(folder, "there is no such folder to watch");
  const fs::path path = folder / kLockName;
  constexpr mode_t kOwnerAlone = 0600;
  lock =
      host::FileHandle(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerAlone));
  if (!lock.IsOpen()) FailSpool(path, std::strerror(errno));
  if (flock(lock.Descriptor(), LOCK_EX | LOCK_NB) != 0) {
    FailSpool(folder, "another pqfleet submit watches it");
  }
}

void Spool::ForEachSite(const std::function<void(const std::string& site)>& take) const {
  std::set<std::string> sites;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const bool isFolder = fs::is_directory(entry->symlink_status(error));
    if (isFolder && !IsHidden(entry->path())) sites.insert(entry->path().filename().native());
  }
  if (error) FailSpool(folder, error.message());
  for (const std::string& site : sites) take(site);
}

void Spool::ForEachFile(const std::string& site,
                        const std::function<bool(const SpooledFile& file)>& take) const {
  const fs::path place = folder / site;
  std::error_code error;
  // A run before was killed while it had a file there, perhaps one that it had not taken in.
  fs::rename(place / kTaken, place / kTakenBefore, error);
  error.clear();
  for (fs::directory_iterator entry(place, error), end; !error && entry != end;
       entry.increment(error)) {
    if (IsHidden(entry->path()) || !host::IsZipName(entry->path())) continue;
    const std::optional<SpooledFile> file = Look(entry->path());
    if (file && !take(*file)) return;
  }
  if (error) FailSpool(place, error.message());
}

void Spool::Remove(const SpooledFile& file) const {
  // A newer one of this name may come at any moment: what is moved away is one file for certain.
  const fs::path away = file.path.parent_path() / kTaken;
  std::error_code error;
  fs::rename(file.path, away, error);
  if (error == std::errc::no_such_file_or_directory) return;
  if (error) FailSpool(file.path, error.message());
  const std::optional<SpooledFile> moved = Look(away);
  if (moved && IsSame(*moved, file)) {
    fs::remove(away, error);
  } else {
    fs::rename(away, file.path, error);
  }
  if (error) FailSpool(file.path, error.message());
}

void Spool::SetAside(const SpooledFile& file, const std::string& site) const {
  const fs::path place = folder / kRefused / site;
  std::error_code error;
  fs::create_directories(place, error);
  if (!error) fs::rename(file.path, place / file.path.filename(), error);
  if (error && error != std::errc::no_such_file_or_directory) FailSpool(file.path, error.message());
}

void Spool::SetClosed(const std::string& site, bool isClosed) const {
  const fs::path mark = folder / site / kClosed;
  std::error_code error;
  if (!isClosed) {
    fs::remove(mark, error);
    if (error) FailSpool(mark, error.message());
    return;
  }
  constexpr mode_t kForAllToRead = 0644;
  const host::FileHandle made(
      open(mark.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kForAllToRead));
  if (!made.IsOpen()) FailSpool(mark, std::strerror(errno));
}

}  // namespace fleet
