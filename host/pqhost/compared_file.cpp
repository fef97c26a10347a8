#include "host/pqhost/compared_file.h"

#include <fmt/format.h>

#include <filesystem>

#include "host/pqhost/open_file.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

std::string NameFile(const std::filesystem::path& path) {
  std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  return PathText(whole.filename());
}

}  // namespace

ComparedFile OpenComparedFile(const SourceOptions& source, const Console& console,
                              const std::function<void()>& beforeRun) {
  const std::filesystem::path& path = *source.replay;
  ComparedFile file{NameFile(path), OpenFile(source, console, KeepLog::kNo, beforeRun), {}};
  if (!file.collection.machineIsKnown) {
    throw UsageError(
        fmt::format("{}: is the answer to a query, which is of no machine: give the recording, or "
                    "results of pqhost collect",
                    PathText(path)));
  }
  file.assessment = Assess(file.collection);
  return file;
}

}  // namespace host
