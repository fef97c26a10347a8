#include "host/files/whole_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

namespace fs = std::filesystem;

std::string ExplainUnwritable(const fs::path& path, int error) {
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) return "it is a folder";
  const fs::path folder = path.parent_path();
  if (!folder.empty() && !fs::exists(folder, ignored)) {
    return fmt::format("the folder {} does not exist", PathText(folder));
  }
  return error == 0 ? "the system gives no reason" : std::strerror(error);
}

}  // namespace

void CheckIsPlainFile(const fs::path& path) { OpenToRead(path); }

std::string ReadWholeFile(const fs::path& path) { return ReadWholeFile(OpenToRead(path)); }

std::string ReadWholeFile(const FileHandle& file) {
  std::string bytes;
  try {
    bytes.resize(static_cast<std::size_t>(file.Size()));
  } catch (const std::exception&) {
    throw std::runtime_error("is too large for this machine's memory");
  }
  if (file.Read(bytes.data(), bytes.size()) != bytes.size()) {
    throw std::runtime_error("cannot be read");
  }
  return bytes;
}

void CreateWholeFile(const fs::path& path, std::string_view bytes, Readers readers) {
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  errno = 0;
  FileHandle file = CreateNewFile(path, readers);
  if (!file.IsOpen()) throw std::runtime_error(DescribeUnwritable(path));
  if (file.Write(bytes) && file.Close()) return;
  const std::string problem = DescribeUnwritable(path);
  file.Close();
  fs::remove(path, ignored);
  throw std::runtime_error(problem);
}

void CreateEmptyFolder(const fs::path& folder, std::string_view option) {
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure || !fs::is_directory(folder, failure)) {
    throw UsageError(fmt::format("cannot create the folder {}: {}", PathText(folder),
                                 failure ? failure.message() : "there is a file of that name"));
  }
  if (!fs::is_empty(folder, failure) || failure) {
    throw UsageError(fmt::format("{} is not empty: give {} a folder that is new or empty",
                                 PathText(folder), option));
  }
}

std::string DescribeUnwritable(const fs::path& path) {
  const int error = errno;
  return DescribeUnwritable(path, ExplainUnwritable(path, error));
}

std::string DescribeUnwritable(const fs::path& path, std::string_view reason) {
  return fmt::format("cannot write {}: {}", PathText(path), reason);
}

}  // namespace host
