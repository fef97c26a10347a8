#include "host/files/output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "host/files/whole_file.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {

namespace fs = std::filesystem;

void RefuseLink(const fs::path& path) {
  std::error_code ignored;
  if (!fs::is_symlink(fs::symlink_status(path, ignored))) return;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::exists(status) && !fs::is_regular_file(status)) return;  // such as /dev/stdout
  throw UsageError(fmt::format("cannot write {}: it is a link to {}; name the file itself",
                               PathText(path), PathText(fs::read_symlink(path, ignored))));
}

OutputFile::OutputFile(const fs::path& path, Readers readers) : path(path) {
  RefuseLink(path);
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  errno = 0;
  try {
    if (fs::exists(status) && !fs::is_regular_file(status)) {
      FileHandle device = OpenToOverwrite(path);
      if (!device.IsOpen()) throw std::runtime_error(DescribeUnwritable(path));
      stream.Open(std::move(device));
      return;
    }
    const bool isNew = !fs::exists(status);
    // Nobody reads it before it has the access of the file that it replaces.
    partial.emplace(path, isNew ? readers : Readers::kOwner);
    stream.Open(partial->TakeHandle());
    if (!isNew) CopyAccess(path, stream.Handle());
  } catch (const std::runtime_error& problem) {
    throw UsageError(problem.what());
  }
}

void OutputFile::Complete() {
  errno = 0;
  if (!stream.Close() || (partial && !partial->PutInPlace())) {
    throw std::runtime_error(DescribeUnwritable(path));
  }
}

}  // namespace host
