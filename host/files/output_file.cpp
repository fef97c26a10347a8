#include "host/files/output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/files/whole_file.h"
#include "host/text/usage_error.h"

namespace host {

namespace fs = std::filesystem;

OutputFile::OutputFile(fs::path path) : path(std::move(path)), target(this->path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(target, ignored);
  if (fs::is_regular_file(status)) target = fs::canonical(target, ignored);
  if (!fs::exists(status) || fs::is_regular_file(status)) {
    // Two runs that write to one place must not write into each other's file.
    partial = target;
    partial += fmt::format(".{:08x}.part", std::random_device{}());
  }
  if (!Open()) throw UsageError(DescribeUnwritable(this->path));
  if (partial.empty()) return;
  // Only a probe. Close it: a tool's child could inherit the handle and block the rename.
  stream.close();
  fs::remove(partial, ignored);
}

bool OutputFile::Open() {
  errno = 0;
  stream.open(partial.empty() ? target : partial, std::ios::binary);
  return stream.is_open();
}

std::ostream& OutputFile::Stream() {
  if (!stream.is_open() && !Open()) throw std::runtime_error(DescribeUnwritable(path));
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
  if (!stream) throw std::runtime_error(DescribeUnwritable(path));
  std::error_code error;
  if (!partial.empty()) fs::rename(partial, target, error);
  if (error) throw std::runtime_error(DescribeUnwritable(path, error.message()));
  complete = true;
}

}  // namespace host
