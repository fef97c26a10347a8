// How the work of reading grows with a recording.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

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

TEST(ReadingARecording, TakesTwiceTheWorkForTwiceTheSize) {
  if (!test::kCanMeasureGrowth) return;
  const test::TemporaryFolder folder;
  folder.Write("a", "output");
  const double growth = test::MeasureGrowth(4000, [&](int size) {
    folder.Write("recording.json", MakeRecording(size));
    return "'" + test::FindBuiltProgram("load_recording").string() + "' '" +
           folder.Path().string() + "'";
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

}  // namespace
}  // namespace host
