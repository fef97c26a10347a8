// pqhost verify: whether recordings are as they were made.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/recordings.h"
#include "host/recording/recording_reader.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kVerifyFooter[] = R"(Examples:
  pqhost verify server.zip
  pqhost verify FOLDER_OF_RECORDINGS
  pqhost verify --key monday.zip tuesday.zip

Exit codes: 0 all are good; 1 one differs from its manifest, or has none; 2 one
cannot be read, or wrong use.
)";

/// More than anybody names one by one.
constexpr int kMostRecordings = 10'000;

struct VerifyOptions {
  std::vector<std::string> words;  ///< recordings, or folders of recordings
  RecordingLimits limits;
  bool showsKeys = false;
};

/// Returns the exit code for this one.
int VerifyOne(const std::filesystem::path& path, const VerifyOptions& options,
              const Console& console) {
  const std::string name = EscapeControls(PathText(path));
  try {
    const Verification verification = VerifyRecording(path, options.limits);
    if (options.showsKeys) {
      console.out << fmt::format("{}  {}\n", verification.contentKey, name);
    } else if (verification.differences.empty()) {
      console.out << fmt::format("{}: good\n", name);
    }
    for (const std::string& difference : verification.differences) {
      if (options.showsKeys) {
        Complain(console, fmt::format("{}: {}", name, difference));
      } else {
        console.out << fmt::format("{}: {}\n", name, EscapeControls(difference));
      }
    }
    return verification.differences.empty() ? kExitDone : kExitIncomplete;
  } catch (const RecordingError& error) {
    Complain(console, error.what());
    return kExitMisused;
  }
}

int RunVerify(const VerifyOptions& options, const Console& console) {
  if (options.words.empty()) {
    throw UsageError("there is no recording: name one, as in pqhost verify server.zip");
  }
  std::vector<std::filesystem::path> paths;
  for (const std::string& word : options.words) paths.push_back(PathFromText(word));
  int exitCode = kExitDone;
  for (const std::filesystem::path& path : FindRecordings(paths)) {
    exitCode = std::max(exitCode, VerifyOne(path, options, console));
  }
  return exitCode;
}

CommandRun DefineVerify(OptionSet& set) {
  const auto options = std::make_shared<VerifyOptions>();
  set.AddArguments("RECORDING", "RECORDING...", OptionValue::kRecording, kMostRecordings,
                   options->words, "Folders or ZIP files, or folders of them");
  set.AddFlag("--key", options->showsKeys,
              "Show the content key of each: recordings of the same content have the same");
  AddLimits(set, options->limits);
  return [options](const Console& console) { return RunVerify(*options, console); };
}

}  // namespace

const Command kVerifyCommand = {"verify", "Tell whether recordings are as they were made",
                                kVerifyFooter, &DefineVerify};

}  // namespace host
