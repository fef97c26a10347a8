// How the work of reading grows with a recording. Counted in instructions, not in time, which would
// depend on what else the machine does.

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

/// The number in the line "I refs: 38,902,108" of Valgrind.
std::uint64_t FindInstructions(const std::string& written) {
  const std::size_t at = written.find("refs:");
  if (at == std::string::npos) throw std::runtime_error("no count in " + written);
  std::string digits;
  for (const char c : written.substr(at, written.find('\n', at) - at)) {
    if (std::isdigit(static_cast<unsigned char>(c)) != 0) digits += c;
  }
  return std::stoull(digits);
}

/// A recording of `size` commands and as many files and paths that cannot be written.
std::string MakeRecording(int size) {
  std::string commands;
  std::string files;
  std::string readOnly;
  for (int i = 0; i < size; ++i) {
    const std::string comma = i == 0 ? "" : ",";
    commands += comma + R"({"tool":"arp.exe","stdout":"a"})";
    files += comma + R"("C:\\)" + std::to_string(i) + R"(":"a")";
    readOnly += comma + R"("C:\\r")";
  }
  return R"({"format":1,"commands":[)" + commands + R"(],"files":{)" + files + R"(},"readOnly":[)" +
         readOnly + "]}";
}

std::uint64_t CountInstructions(int size) {
  const test::TemporaryFolder folder;
  folder.Write("recording.json", MakeRecording(size));
  folder.Write("a", "output");
  return FindInstructions(
      test::RunShellCommand("valgrind --tool=callgrind --callgrind-out-file=/dev/null '" +
                            test::FindBuiltProgram("load_recording").string() + "' '" +
                            folder.Path().string() + "' 2>&1"));
}

TEST(ReadingARecording, TakesTwiceTheWorkForTwiceTheSize) {
  if (PQ_HAS_ADDRESS_SANITIZER) return;  // Valgrind runs no such program; the native build counts.
  const std::uint64_t once = CountInstructions(4000);
  const std::uint64_t twice = CountInstructions(8000);
  EXPECT_GT(once, 4000U * 1000);  // the program did read it
  EXPECT_LT(static_cast<double>(twice) / static_cast<double>(once), 2.1);
}

}  // namespace
}  // namespace host
