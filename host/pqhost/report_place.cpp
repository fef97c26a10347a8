#include "host/pqhost/report_place.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <system_error>

#include "host/text/ascii.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr char kReportEnd[] = ".html";
constexpr char kRecordingEnd[] = ".zip";

bool IsTaken(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

fs::path AddEnd(fs::path base, const char* end) { return base += end; }

ReportPlace MakePlace(const fs::path& base) {
  return {AddEnd(base, kReportEnd), AddEnd(base, kRecordingEnd)};
}

/// `name` in `folder`, or the first of "NAME-2", "NAME-3" of which there is no file yet.
fs::path FindFreeBase(const fs::path& folder, const std::string& name) {
  for (int number = 1;; ++number) {
    fs::path base = folder / PathFromText(number == 1 ? name : fmt::format("{}-{}", name, number));
    const ReportPlace place = MakePlace(base);
    if (!IsTaken(place.report) && !IsTaken(place.recording)) return base;
  }
}

/// The path without the extension of one of the two files.
fs::path CutEnd(const fs::path& path) {
  const std::string end = LowerCase(PathText(path.extension()));
  return end == kReportEnd || end == kRecordingEnd ? path.parent_path() / path.stem() : path;
}

void RefuseTaken(const fs::path& path) {
  if (!IsTaken(path)) return;
  throw UsageError(fmt::format("{} is there already: give --output a new name", PathText(path)));
}

}  // namespace

std::string NameCollection(std::string_view machine, const LocalTime& time) {
  constexpr std::size_t kLongest = 40;
  constexpr std::size_t kToTheMinute = sizeof "2026-11-18T09:41" - 1;
  std::string name(machine.substr(0, kLongest));
  std::ranges::replace_if(
      name, [](char c) { return !IsAsciiLetterOrDigit(c) && c != '-' && c != '_' && c != '.'; },
      '-');
  // A dot in front would hide the file, and a dash make an option of it.
  name.erase(0, name.find_first_not_of(".-"));
  if (name.empty()) name = "server";
  std::string minute = FormatIsoTime(time).substr(0, kToTheMinute);
  std::erase(minute, ':');
  return name + "-" + minute;
}

std::string NameCollection(const SourceOptions& options) {
  const MachineFacts facts = DescribeMachine(options);
  // A file that is passed on must not be called after what was taken out of it.
  const bool isRedacted = options.redactProfile.has_value();
  std::string machine = isRedacted ? "" : facts.name;
  if (machine.empty() && options.replay && !isRedacted) {
    fs::path path = fs::absolute(*options.replay).lexically_normal();
    if (!path.has_filename()) path = path.parent_path();
    machine = PathText(CutEnd(path).filename());
  }
  return NameCollection(machine,
                        facts.recordedAt.value_or(LocalTime{std::chrono::system_clock::now()}));
}

ReportPlace ChooseReportPlace(const Destination& given,
                              const std::function<std::string()>& makeName) {
  std::error_code ignored;
  if (given.IsStandardOutput()) return MakePlace(FindFreeBase({}, makeName()));
  if (fs::is_directory(given.path, ignored)) {
    return MakePlace(FindFreeBase(given.path, makeName()));
  }
  if (!given.path.has_filename()) {
    throw UsageError(
        fmt::format("there is no folder {}: make it, or name another", PathText(given.path)));
  }
  ReportPlace place = MakePlace(CutEnd(given.path));
  RefuseTaken(place.report);
  RefuseTaken(place.recording);
  return place;
}

fs::path ChooseRecordingPlace(const std::function<std::string()>& makeName) {
  return MakePlace(FindFreeBase({}, makeName())).recording;
}

}  // namespace host
