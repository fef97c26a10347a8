// A machine that is short of memory for a moment, whichever that is: a command does its work, or
// says so with the exit code of its failures, and no part of a result stays.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/program/host_run.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace {

#if !PQ_HAS_ADDRESS_SANITIZER

using testing::ContainsRegex;

constexpr long long kEach = 5;

struct Outcome {
  int exitCode;  ///< of a shell: 128 and the signal that ended the program
  /// By name; "" is standard output. Without times: of some, that of the run is one.
  std::map<std::string, std::string> results;

  bool operator==(const Outcome&) const = default;
};

std::string RemoveTimes(const std::string& text) {
  static const std::regex kTime("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}Z");
  return std::regex_replace(text, kTime, "");
}

bool HasSameFiles(Outcome one, Outcome other) {
  one.results.erase("");
  other.results.erase("");
  return one.results == other.results;
}

/// Whether a verdict says why there is none.
bool IsUnjudged(const Outcome& outcome) {
  return std::ranges::any_of(outcome.results, [](const auto& result) {
    return result.second.find("out of memory") != std::string::npos;
  });
}

class ShortMemory : public testing::Test {
 protected:
  /// "{}" in `arguments` is the folder for results, which is empty.
  Outcome RunWith(const std::string& trouble, std::string arguments) {
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      std::filesystem::remove_all(entry);
    }
    for (std::size_t at = 0; (at = arguments.find("{}")) != std::string::npos;) {
      arguments.replace(at, 2, folder.Path().string());
    }
    const std::string line = trouble + " LD_PRELOAD='" +
                             test::FindBuiltProgram("short_memory.so").string() + "' '" +
                             test::FindBuiltProgram("pqhost").string() + "' " + arguments + " 2>'" +
                             (said / "error") + "' >'" + (said / "out") + "'";
    Outcome run{WEXITSTATUS(std::system(line.c_str())), {{"", RemoveTimes(said.Read("out"))}}};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
      if (!entry.is_regular_file()) continue;
      const std::string name = entry.path().lexically_relative(folder.Path()).string();
      run.results[name] = RemoveTimes(folder.Read(name));
    }
    return run;
  }

  std::string Error() const { return said.Read("error"); }

  /// Refuses one allocation in each run: some of the first and the last, others spread over all.
  void ExpectAllOrNothing(const std::string& arguments, int failureExit) {
    SCOPED_TRACE(arguments);
    const Outcome whole = RunWith("PQ_COUNTED=1", arguments);
    const std::string told = Error();
    const long long made = std::atoll(told.substr(told.rfind('\n', told.size() - 2) + 1).c_str());
    ASSERT_GT(made, 1000);
    std::set<long long> refused;
    for (long long i = 0; i < kEach; ++i) {
      refused.insert({3 * i, made * i / kEach, made - 1 - 3 * i});
    }
    for (const long long at : refused) {
      SCOPED_TRACE(at);
      const Outcome run = RunWith("PQ_REFUSED=" + std::to_string(at), arguments);
      if (run == whole || (run.exitCode == whole.exitCode && IsUnjudged(run))) continue;
      // A recording that cannot be read is refused like any other, unless a verdict is missing.
      const bool isRefused =
          Error().find("too large for this machine's memory") != std::string::npos;
      const int expected = isRefused ? std::max(failureExit, 2) : failureExit;
      // The first few are made before the program knows which command it is.
      EXPECT_EQ(run.exitCode, at < 15 && run.exitCode == 3 ? 3 : expected);
      if (IsUnjudged(run)) continue;
      EXPECT_THAT(Error(), ContainsRegex("short of memory|out of memory|too large for this "
                                         "machine's memory"));
      // What comes after the results can fail, too.
      EXPECT_TRUE(run.results.size() == 1 || HasSameFiles(run, whole));
    }
  }

  const std::string blade = "'" + test::Sample("blade") + "'";
  const std::string server = "'" + test::Sample("two-socket-server") + "'";
  const std::string health = "health --as-of 2026-01-01 --replay ";
  test::TemporaryFolder folder;  ///< where results go
  test::TemporaryFolder said;    ///< elsewhere: what the program says
};

TEST_F(ShortMemory, LeavesNoVerdictWithoutAWord) {
  ExpectAllOrNothing(health + blade, 3);
  ExpectAllOrNothing(health + server + " --format sqlite --output {}/o", 3);
}

TEST_F(ShortMemory, LeavesNoCutDifference) {
  ExpectAllOrNothing("diff " + blade + " " + server + " --format json", 2);
  ExpectAllOrNothing("diff " + blade + " " + server + " --format html --output {}/o", 2);
}

TEST_F(ShortMemory, LeavesNoPartOfARedactedRecordingAndNoMapWithoutOne) {
  const std::string key = " --key " + (said / "key");
  ExpectAllOrNothing("redact " + blade + " {}/o --map {}/map" + key, 1);
  ExpectAllOrNothing("redact " + blade + " {}/o.zip" + key, 1);
  ExpectAllOrNothing("redact --preview " + blade, 1);
}

TEST_F(ShortMemory, LeavesNoCutViewOfAFile) {
  ExpectAllOrNothing("show " + blade + " --format csv", 1);
  ExpectAllOrNothing("show " + blade + " --format json --output {}/o", 1);
}

#endif

}  // namespace
