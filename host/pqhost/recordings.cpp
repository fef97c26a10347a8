#include "host/pqhost/recordings.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "host/recording/recording_format.h"
#include "host/text/path_text.h"

namespace host {
namespace {

bool IsRecording(const std::filesystem::path& folder) {
  std::error_code error;
  return std::filesystem::exists(folder / kRecordingFileName, error);
}

bool IsZipFile(const std::filesystem::path& path) {
  std::error_code error;
  return IsZipName(path) && std::filesystem::is_regular_file(path, error);
}

}  // namespace

std::vector<std::filesystem::path> FindRecordings(const std::vector<std::filesystem::path>& paths) {
  std::vector<std::filesystem::path> recordings;
  for (const std::filesystem::path& path : paths) {
    std::error_code error;
    if (IsRecording(path) || !std::filesystem::is_directory(path, error)) {
      recordings.push_back(path);  // If it is none, reading it will tell.
      continue;
    }
    std::vector<std::filesystem::path> found;
    for (std::filesystem::directory_iterator entry(path, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
      if (IsRecording(entry->path()) || IsZipFile(entry->path())) found.push_back(entry->path());
    }
    if (found.empty()) {
      recordings.push_back(path);
      continue;
    }
    std::ranges::sort(found);
    std::ranges::move(found, std::back_inserter(recordings));
  }
  return recordings;
}

std::string SourceNames::Take(const std::filesystem::path& path) {
  std::filesystem::path whole = std::filesystem::absolute(path).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  const bool isFile = whole.extension() == ".db" || IsZipFile(whole);
  return names.Take(PathText(isFile ? whole.stem() : whole.filename()));
}

}  // namespace host
