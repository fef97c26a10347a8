#include "host/files/mapped_text.h"

#include <fmt/format.h>
#include <windows.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/files/windows/accounts.h"

namespace host {

const char* const kTemporaryFolderVariable = "TMP";

namespace {

[[noreturn]] void ThrowSystemReason() {
  throw std::runtime_error(std::system_category().message(static_cast<int>(GetLastError())));
}

class OwnedHandle {
 public:
  explicit OwnedHandle(HANDLE handle) : handle(handle) {
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) ThrowSystemReason();
  }
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  ~OwnedHandle() {
    if (handle != nullptr) CloseHandle(handle);
  }
  HANDLE Get() const { return handle; }
  HANDLE Take() { return std::exchange(handle, nullptr); }

 private:
  HANDLE handle;
};

/// The system removes it when its handle is closed, also that of a program that is ended.
HANDLE CreatePassingFile(const std::filesystem::path& folder) {
  OwnAccess own;
  const std::wstring path = folder / fmt::format("pqhost-{:08x}{:08x}.tmp", std::random_device{}(),
                                                 std::random_device{}());
  // "Temporary": nothing needs to be on the disk as long as there is memory.
  return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, /*dwShareMode=*/0,
                     own.Get(), CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE,
                     nullptr);
}

void WriteAll(HANDLE file, std::string_view text) {
  constexpr std::size_t kMostAtOnce = std::size_t{1} << 26;
  while (!text.empty()) {
    const auto size = static_cast<DWORD>(std::min(text.size(), kMostAtOnce));
    DWORD written = 0;
    if (!WriteFile(file, text.data(), size, &written, nullptr)) ThrowSystemReason();
    text.remove_prefix(written);
  }
}

}  // namespace

MappedText::MappedText(std::string_view text, const std::filesystem::path& folder) {
  OwnedHandle created(CreatePassingFile(folder));
  WriteAll(created.Get(), text);
  const OwnedHandle section(
      CreateFileMappingW(created.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
  const void* pages = MapViewOfFile(section.Get(), FILE_MAP_READ, 0, 0, 0);
  if (pages == nullptr) ThrowSystemReason();
  view = {static_cast<const char*>(pages), text.size()};
  file = created.Take();
}

MappedText::~MappedText() {
  UnmapViewOfFile(view.data());
  CloseHandle(file);
}

}  // namespace host
