// The program on any command line: each line of the input is a word. It runs in a folder of its own
// that has a recording of a machine without tools, "recording", and a database, "x.db". A word that
// could lead out of the folder is none for this target.
//
// It ends with 0, 1 or 2, and health with 3 as well; says why if that is not 0, and shows nothing
// that a terminal obeys.
#include <stdlib.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "tests/support/program/host_run.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/temporary_folder.h"

namespace {

using fuzz::Require;

constexpr char kRecording[] =
    R"({"format":1,"commands":[{"tool":"arp.exe","arguments":"-a","stdout":"a"}]})";

class Folder {
 public:
  /// What a command keeps beside the user's settings is made in the folder, too.
  Folder() { setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1); }

  /// As it is before every run.
  void LayOut() const {
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      std::filesystem::remove_all(entry.path());
    }
    folder.Write("recording/recording.json", kRecording);
    folder.Write("recording/a", "Interface: 192.0.2.1 --- 0x2\r\n");
    folder.Write("x.db", database);
  }

  /// The fuzzer itself goes on in its own folder.
  test::HostRun Run(const std::vector<std::string>& words) const {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    test::HostRun run = test::RunHost(words, {.out = true});
    std::filesystem::current_path(before);
    return run;
  }

 private:
  test::TemporaryFolder folder;
  const std::string database = test::MadeCollection().As("sqlite");
};

bool LeadsOut(std::string_view word) {
  return word.find('/') != std::string_view::npos || word.find("..") != std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder kFolder;
  std::vector<std::string> words;
  for (const std::string_view word : fuzz::Split(fuzz::InputText(data, size), '\n')) {
    if (LeadsOut(word) || word.find('\0') != std::string_view::npos) return 0;
    words.emplace_back(word);
  }
  if (words.size() == 1 && words[0].empty()) words.clear();
  // A query may be endless, and have as much time as it says. One that does not notice that its
  // time is over is ended together with its process, which must not happen on a slow machine.
  if (std::ranges::any_of(words, [](const std::string& w) { return w.starts_with("--time"); })) {
    return 0;
  }
  if (!words.empty() && words.front() == "query") words.insert(words.end(), {"--time-limit", "5"});
  kFolder.LayOut();
  const test::HostRun run = kFolder.Run(words);
  const bool judges = std::ranges::find(words, "health") != words.end();
  Require(run.exitCode >= 0 && run.exitCode <= (judges ? 3 : 2));
  Require(run.exitCode == 0 || !run.error.empty() || !run.out.empty());
  fuzz::RequireForTerminal(run.error, U"\n");
  fuzz::RequireForTerminal(run.out, U"\n\r");
  return 0;
}
