#include "host/files/output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {

namespace fs = std::filesystem;

std::string ExplainUnwritable(const fs::path& path) {
  const int why = errno;
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) return "it is a folder";
  const fs::path folder = path.parent_path();
  if (!folder.empty() && !fs::exists(folder, ignored)) {
    return fmt::format("the folder {} does not exist", PathText(folder));
  }
  return why == 0 ? "the system gives no reason" : std::strerror(why);
}

OutputFile::OutputFile(fs::path path) : path(std::move(path)), target(this->path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(target, ignored);
  if (fs::is_regular_file(status)) target = fs::canonical(target, ignored);
  if (!fs::exists(status) || fs::is_regular_file(status)) {
    // Two runs that write to one place must not write into each other's file.
    partial = target;
    partial += fmt::format(".{:08x}.part", std::random_device{}());
  }
  if (!Open()) {
    const std::string why = ExplainUnwritable(target);
    throw UsageError(fmt::format("cannot write {}: {}", PathText(this->path), why));
  }
  if (partial.empty()) return;
  // It can be written, which is all that is to be known for now. The tools that run before there is
  // something to write are not to inherit it: what one of them left behind would keep it open.
  stream.close();
  fs::remove(partial, ignored);
}

bool OutputFile::Open() {
  errno = 0;
  stream.open(partial.empty() ? target : partial, std::ios::binary);
  return stream.is_open();
}

std::ostream& OutputFile::Stream() {
  if (!stream.is_open() && !Open()) {
    const std::string why = ExplainUnwritable(target);
    throw std::runtime_error(fmt::format("cannot write {}: {}", PathText(path), why));
  }
  return stream;
}

OutputFile::~OutputFile() {
  if (complete || partial.empty()) return;
  stream.close();
  std::error_code ignored;
  fs::remove(partial, ignored);
}

void OutputFile::Complete() {
  Stream();  // also of a result without a byte
  errno = 0;
  stream.close();
  if (!stream) {
    const std::string why = ExplainUnwritable(target);
    throw std::runtime_error(fmt::format("cannot write {}: {}", PathText(path), why));
  }
  std::error_code error;
  if (!partial.empty()) fs::rename(partial, target, error);
  if (error) {
    throw std::runtime_error(fmt::format("cannot write {}: {}", PathText(path), error.message()));
  }
  complete = true;
}

}  // namespace host
