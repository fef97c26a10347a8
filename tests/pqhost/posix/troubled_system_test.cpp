// A disk that fills up, a drive that no longer answers, a clock that jumps: told in words, with the
// exit code of the command, and nothing half is left.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/posix/shell_command.h"
#include "tests/support/program/host_run.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class TroubledSystem : public testing::Test {
 protected:
  /// The exit status of pqhost with `trouble` on the disk that `folder` is on.
  int Run(const std::string& trouble, const std::string& arguments) {
    const std::string line = MakeLine(folder.Path().string(), trouble, arguments, said / "error");
    return WEXITSTATUS(std::system(line.c_str()));
  }

  /// A shell's line that runs pqhost, which says what went wrong in the file `error`.
  std::string MakeLine(const std::string& disk, const std::string& trouble,
                       const std::string& arguments, const std::string& error) const {
    return "ASAN_OPTIONS=verify_asan_link_order=0 PQ_DISK='" + disk + "' " + trouble +
           " LD_PRELOAD='" + test::FindBuiltProgram("troubled_system.so").string() + "' '" +
           test::FindBuiltProgram("pqhost").string() + "' " + arguments + " 2>" + Quote(error) +
           " >" + Quote(said / "out");
  }

  std::string Error() const { return said.Read("error"); }

  static std::string Quote(const std::string& text) { return "'" + text + "'"; }

  test::TemporaryFolder folder;  ///< where results go
  test::TemporaryFolder said;    ///< elsewhere: what the program says
  const std::string blade = Quote(test::Sample("blade"));
  const std::string server = Quote(test::Sample("two-socket-server"));
};

/// One without room, and one on which a part fits.
constexpr const char* kFullDisks[] = {"PQ_ROOM=0", "PQ_ROOM=500"};

TEST_F(TroubledSystem, KeepsTheOldResultWhenTheDiskIsFull) {
  struct Writer {
    std::string arguments;
    std::vector<std::string> formats;
    int exitCode;
  };
  const std::string result = said / "result.json";
  ASSERT_LE(Run("", "collect --replay " + server + " --format json --output " + Quote(result)), 1);
  const std::vector<Writer> writers = {
      {"collect --replay " + server,
       {"table", "json", "ndjson", "csv", "html", "sqlite", "prometheus"},
       1},
      {"health --replay " + server, {"table", "json", "csv", "sqlite"}, 3},
      {"diff " + blade + " " + server, {"table", "json", "csv", "html", "sqlite"}, 2},
      {"show " + Quote(result), {"table", "json", "csv", "html", "sqlite"}, 1},
      {"query --replay " + server + " 'SELECT * FROM SENSORINFO'", {"json", "csv", "sqlite"}, 1},
  };
  const std::string file = folder / "o";
  for (const Writer& writer : writers) {
    for (const std::string& format : writer.formats) {
      for (const char* disk : kFullDisks) {
        // What a sanitizer sees is in the writers, on whatever disk.
        if (PQ_HAS_ADDRESS_SANITIZER && disk != kFullDisks[0]) continue;
        SCOPED_TRACE(writer.arguments + " --format " + format + " " + disk);
        folder.Write("o", "old");
        EXPECT_EQ(Run(disk, writer.arguments + " --format " + format + " --output " + Quote(file)),
                  writer.exitCode);
        EXPECT_THAT(Error(), HasSubstr("cannot write " + file + ": No space left on device"));
        EXPECT_EQ(folder.Read("o"), "old");
        EXPECT_THAT(folder.Files(), ElementsAre("o"));
      }
    }
  }
}

TEST_F(TroubledSystem, IsToldWhenStandardOutputIsFullWhateverTheVerdict) {
  for (const auto& [arguments, exitCode] : std::vector<std::pair<std::string, int>>{
           {"health --as-of 2026-01-01 --replay " + blade, 3},
           {"health --as-of 2026-01-01 --format json --replay " + server, 3},
           {"diff " + blade + " " + server, 2},
           {"show " + blade, 1},
           {"collect --replay " + Quote(test::Sample("bmc-unreachable")), 1}}) {
    SCOPED_TRACE(arguments);
    const std::string line = Quote(test::FindBuiltProgram("pqhost").string()) + " " + arguments +
                             " 2>" + Quote(said / "error") + " >/dev/full";
    EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), exitCode);
    EXPECT_THAT(Error(), HasSubstr("standard output could not be written"));
  }
}

TEST_F(TroubledSystem, LeavesNoPartOfARecordingOrOfAKeyWhenTheDiskIsFull) {
  const std::string key = " --key " + Quote(said / "key");
  for (const char* disk : {"PQ_ROOM=0", "PQ_ROOM=10", "PQ_ROOM=20000"}) {
    for (const char* name : {"new", "new.zip"}) {
      SCOPED_TRACE(std::string(disk) + " " + name);
      EXPECT_EQ(Run(disk, "redact --profile public " + server + " " + Quote(folder / name) + key),
                1);
      EXPECT_THAT(Error(), AllOf(HasSubstr("cannot write " + (folder / name)),
                                 HasSubstr("No space left on device")));
      EXPECT_THAT(folder.Files(), IsEmpty());
      // Another try finds nothing in its way.
      EXPECT_EQ(Run("", "redact --profile public " + server + " " + Quote(folder / name) + key), 0);
      std::filesystem::remove_all(folder / name);
    }
  }
  EXPECT_EQ(Run("PQ_ROOM=10", "redact --profile public " + server + " " + Quote(said / "copy") +
                                  " --key " + Quote(folder / "key")),
            2);
  EXPECT_THAT(Error(), HasSubstr("cannot write " + (folder / "key")));
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(TroubledSystem, EndsInTimeWhenADriveDoesNotAnswer) {
  const std::string limit = " --time-limit 1";
  const std::string file = " --output " + Quote(folder / "o");
  const std::string drive = test::Sample("two-socket-server");
  struct Hanging {
    std::string disk, arguments;
    int exitCode;
    std::string said;
    std::future<int> ended = {};
  };
  std::vector<Hanging> all;
  const auto add = [&](const std::string& disk, const std::string& arguments, int exitCode) {
    const std::string name = (said / "hanging") + std::to_string(all.size());
    all.push_back({disk, arguments, exitCode, name});
  };
  add(drive, "health --replay " + server + limit, 3);
  add(drive, "diff " + blade + " " + server + limit, 2);
  add(drive, "query --replay " + server + " 'SELECT 1'" + limit, 2);
  add(drive, "query --replay " + blade + " --replay " + server + " 'SELECT 1'" + limit, 2);
  add(drive,
      "redact --profile public " + server + " " + Quote(folder / "new") + " --key " +
          Quote(said / "key") + limit,
      1);
  add(folder.Path().string(), "health --replay " + server + limit + file, 3);
  add(folder.Path().string(), "diff " + blade + " " + server + limit + file, 2);
  add(folder.Path().string(), "query --replay " + server + " 'SELECT 1'" + limit + file, 2);
  // They wait at the same time.
  for (Hanging& one : all) {
    const std::string line = MakeLine(one.disk, "PQ_HANGS=1", one.arguments, one.said);
    one.ended = std::async(std::launch::async, [line] { return std::system(line.c_str()); });
  }
  for (Hanging& one : all) {
    SCOPED_TRACE(one.arguments);
    EXPECT_EQ(WEXITSTATUS(one.ended.get()), one.exitCode);
    EXPECT_THAT(said.Read(std::filesystem::path(one.said).filename().string()),
                HasSubstr("took longer than 1 second (--time-limit)"));
  }
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(TroubledSystem, KeepsToItsTimeLimitsWhileTheClockJumps) {
  for (const std::string& arguments :
       {"health --as-of 2026-01-01 --format table --replay " + server,
        "query --format csv --replay " + server + " 'SELECT * FROM SENSORINFO'",
        "diff --format table " + blade + " " + server, "collect --format csv --replay " + server}) {
    SCOPED_TRACE(arguments);
    const int exitCode = Run("", arguments + " --time-limit 60");
    const std::string whole = said.Read("out");
    EXPECT_EQ(Run("PQ_JUMPING=1", arguments + " --time-limit 60"), exitCode);
    EXPECT_EQ(said.Read("out"), whole);
    EXPECT_THAT(Error(), Not(HasSubstr("took longer")));
  }
}

}  // namespace
