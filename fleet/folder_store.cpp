#include "fleet/folder_store.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "host/files/file_handle.h"
#include "host/files/output_file.h"
#include "host/files/whole_file.h"
#include "host/text/path_text.h"

namespace fleet {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailStore(const fs::path& path, std::string_view reason) {
  throw StoreFailure(fmt::format("{}: {}", host::PathText(path), reason));
}

bool IsStore(const fs::path& folder) {
  std::error_code ignored;
  return fs::exists(folder / kStoreMark, ignored);
}

}  // namespace

FolderStore::FolderStore(const std::string& address) : folder(host::PathFromText(address)) {
  if (IsStore(folder)) return;
  FailStore(folder,
            fmt::format("it is no store of recordings, as it has no file {}: mount it, or make "
                        "it with pqfleet init --store",
                        kStoreMark));
}

void FolderStore::Create(const std::string& address) {
  const fs::path folder = host::PathFromText(address);
  if (IsStore(folder)) return;
  std::error_code error;
  fs::create_directories(folder, error);
  if (!error && !fs::is_empty(folder, error)) {
    FailStore(folder, "it holds something else: name an empty folder for the store");
  }
  if (error) FailStore(folder, error.message());
  try {
    host::CreateWholeFile(folder / kStoreMark, kStoreMarkText, host::Readers::kAsUsual);
  } catch (const std::runtime_error& failure) {
    throw StoreFailure(failure.what());
  }
}

fs::path FolderStore::FindPlace(const std::string& key) const { return folder / NameInStore(key); }

std::string FolderStore::DescribePlace(const std::string& key) const {
  return host::PathText(FindPlace(key));
}

std::optional<std::string> FolderStore::Read(const std::string& key) const {
  const fs::path place = FindPlace(key);
  std::error_code error;
  const bool isThere = fs::exists(place, error);
  if (!isThere && (error || !IsStore(folder))) FailStore(folder, "the store is not there any more");
  if (!isThere) return std::nullopt;
  try {
    return host::ReadWholeFile(place);
  } catch (const std::runtime_error& failure) {
    FailStore(place, failure.what());
  }
}

void FolderStore::Write(const std::string& key, std::string_view zip) const {
  const fs::path place = FindPlace(key);
  try {
    fs::create_directories(place.parent_path());
    host::OutputFile file(place);
    file.Stream() << zip;
    file.Complete();
  } catch (const std::runtime_error& failure) {
    throw StoreFailure(failure.what());
  }
}

void FolderStore::Remove(const std::string& key) const {
  const fs::path place = FindPlace(key);
  std::error_code error;
  fs::remove(place, error);
  if (error) FailStore(place, error.message());
}

void FolderStore::Settle() const {
  const host::FileHandle root(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!root.IsOpen() || syncfs(root.Descriptor()) != 0) FailStore(folder, std::strerror(errno));
}

}  // namespace fleet
