#include "host/files/mapped_text.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include "host/files/file_handle.h"

namespace host {

const char* const kTemporaryFolderVariable = "TMPDIR";

namespace {

FileHandle CreateNamelessFile(const std::filesystem::path& folder) {
  constexpr mode_t kOwnerOnly = 0600;
  FileHandle file(open(folder.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, kOwnerOnly));
  if (file.IsOpen() || errno == ENOENT || errno == ENOSPC) return file;
  // Not every file system makes files without a name.
  std::string path = folder / "pqhost-XXXXXX";
  file = FileHandle(mkostemp(path.data(), O_CLOEXEC));
  if (file.IsOpen()) unlink(path.c_str());
  return file;
}

[[noreturn]] void ThrowReason() {
  throw std::runtime_error(std::generic_category().message(errno));
}

}  // namespace

MappedText::MappedText(std::string_view text, const std::filesystem::path& folder) {
  FileHandle file = CreateNamelessFile(folder);
  // Written, not copied into the mapping: only so a full disk is told.
  if (!file.IsOpen() || !file.Write(text)) ThrowReason();
  void* pages = mmap(nullptr, text.size(), PROT_READ, MAP_SHARED, file.Descriptor(), 0);
  if (pages == MAP_FAILED) ThrowReason();
  view = {static_cast<const char*>(pages), text.size()};
}

MappedText::~MappedText() { munmap(const_cast<char*>(view.data()), view.size()); }

}  // namespace host
