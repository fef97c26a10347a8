#include "host/files/whole_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "host/text/path_text.h"

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

std::string AllocateFor(const fs::path& path) {
  try {
    return std::string(static_cast<std::size_t>(fs::file_size(path)), '\0');
  } catch (const std::exception&) {
    throw std::runtime_error("is too large to be read");
  }
}

}  // namespace

void CheckIsPlainFile(const fs::path& path) {
  std::error_code ignored;
  if (!fs::exists(path, ignored)) throw std::runtime_error("there is no such file");
  // Opening a pipe would wait for whoever writes to it.
  if (!fs::is_regular_file(path, ignored)) throw std::runtime_error("is no plain file");
}

std::string ReadWholeFile(const fs::path& path) {
  CheckIsPlainFile(path);
  std::ifstream file(path, std::ios::binary);
  std::string bytes = AllocateFor(path);
  const auto size = static_cast<std::streamsize>(bytes.size());
  file.read(bytes.data(), size);
  if (file.gcount() != size) throw std::runtime_error("cannot be read");
  return bytes;
}

void WriteWholeFile(const fs::path& path, std::string_view bytes) {
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error(DescribeUnwritable(path));
}

std::string DescribeUnwritable(const fs::path& path) {
  const int error = errno;
  return DescribeUnwritable(path, ExplainUnwritable(path, error));
}

std::string DescribeUnwritable(const fs::path& path, std::string_view reason) {
  return fmt::format("cannot write {}: {}", PathText(path), reason);
}

}  // namespace host
