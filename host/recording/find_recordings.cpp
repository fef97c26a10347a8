#include "host/recording/find_recordings.h"

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

/// A folder with something in it, whose name does not begin with a dot.
bool IsRest(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error) &&
         !PathText(path.filename()).starts_with('.') && !std::filesystem::is_empty(path, error) &&
         !error;
}

using PathTest = bool (*)(const std::filesystem::path& path);

/// `isRest`: of what is beside recordings, what else to take.
std::vector<std::filesystem::path> Find(const std::vector<std::filesystem::path>& paths,
                                        PathTest isRest) {
  std::vector<std::filesystem::path> recordings;
  for (const std::filesystem::path& path : paths) {
    std::error_code error;
    if (IsRecording(path) || !std::filesystem::is_directory(path, error)) {
      recordings.push_back(path);  // If it is none, reading it will tell.
      continue;
    }
    std::vector<std::filesystem::path> found;
    std::vector<std::filesystem::path> rests;
    for (std::filesystem::directory_iterator entry(path, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
      if (IsRecording(entry->path()) || IsZipFile(entry->path())) {
        found.push_back(entry->path());
      } else if (isRest(entry->path())) {
        rests.push_back(entry->path());
      }
    }
    if (found.empty()) {
      recordings.push_back(path);
      continue;
    }
    std::ranges::move(rests, std::back_inserter(found));
    std::ranges::sort(found);
    std::ranges::move(found, std::back_inserter(recordings));
  }
  return recordings;
}

}  // namespace

bool IsZipFile(const std::filesystem::path& path) {
  std::error_code error;
  return IsZipName(path) && std::filesystem::is_regular_file(path, error);
}

std::vector<std::filesystem::path> FindRecordings(const std::vector<std::filesystem::path>& paths) {
  return Find(paths, [](const std::filesystem::path& /*path*/) { return false; });
}

std::vector<std::filesystem::path> FindRecordingsAndRests(
    const std::vector<std::filesystem::path>& paths) {
  return Find(paths, IsRest);
}

}  // namespace host
