// The files that a recorded machine has in its log folder, written as real files. The first line of
// the input is the log folder, each further one the path of a file there.
//
// Each file is written below the target or is named as a problem, and nothing is anywhere else.
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "fuzz/checks.h"
#include "host/files/left_files.h"
#include "tests/support/temporary_folder.h"

namespace {

using fuzz::Require;

constexpr char kContent[] = "left";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = fuzz::InputText(data, size);
  const std::string logFolder(fuzz::TakeUpTo(rest, '\n'));
  std::map<std::string, host::Bytes> files;
  for (const std::string_view path : fuzz::Split(rest, '\n')) files[std::string(path)] = kContent;

  const test::TemporaryFolder folder;
  const std::filesystem::path target = folder.Path() / "a" / "target";
  std::filesystem::create_directories(target);
  const host::TextDecoder decode(1252);
  const host::LeftFiles left = host::WriteLeftFiles(files, logFolder, decode, target);
  for (const std::string& problem : left.problems) {
    Require(problem.size() > 10);
    fuzz::ReadUtf8(problem);
  }
  Require(left.written + left.problems.size() <= files.size());
  const auto found = folder.Files();
  // Two paths can be one file, if only by the case of their letters elsewhere.
  Require(found.size() <= left.written);
  Require(found.empty() == (left.written == 0));
  for (const std::string& name : found) {
    Require(name.starts_with("a/target/"));
    Require(folder.Read(name) == kContent);
  }
  return 0;
}
