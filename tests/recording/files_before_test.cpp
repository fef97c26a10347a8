#include "host/recording/files_before.h"

#include <gtest/gtest.h>

#include <map>

namespace host {
namespace {

/// Files with the second in which they were written.
struct TimedFiles final : MachineView {
  std::map<std::string, int> files;

  std::optional<std::string> ReadFile(const std::string& /*path*/) override { return std::nullopt; }
  std::optional<FileState> FindState(const std::string& path) override {
    const auto file = files.find(path);
    if (file == files.end()) return std::nullopt;
    return FileState{std::chrono::system_clock::time_point(std::chrono::seconds(file->second)), 7};
  }
  std::vector<std::string> ListFiles(const std::string& /*folder*/) override {
    std::vector<std::string> paths;
    for (const auto& [path, written] : files) paths.push_back(path);
    return paths;
  }
  bool HasProgram(const std::string& /*program*/) override { return true; }
};

TEST(FilesBefore, AreThoseThatNothingHasWrittenSince) {
  TimedFiles machine;
  machine.files = {{"C:\\logs\\\\old.txt", 1}, {"C:\\logs\\\\new.txt", 1}};
  const FilesBefore before(machine, "C:\\logs\\");
  machine.files = {{"C:\\logs\\old.txt", 1}, {"C:\\logs\\new.txt", 2}, {"C:\\logs\\x.txt", 1}};
  EXPECT_TRUE(before.IsUnchanged("C:\\logs\\old.txt"));
  EXPECT_FALSE(before.IsUnchanged("C:\\logs\\new.txt"));
  EXPECT_FALSE(before.IsUnchanged("C:\\logs\\x.txt"));
}

TEST(FilesBefore, AreInTheLogFolderWhereRelativePathsLeadTo) {
  TimedFiles machine;
  machine.files = {{"C:\\Logs\\logir.log", 1}};
  const FilesBefore before(machine, "C:\\Logs\\");
  machine.files = {{"logir.log", 1}};
  EXPECT_TRUE(before.IsUnchanged("logir.log"));
  EXPECT_TRUE(before.IsLogFile("logir.log"));
  EXPECT_TRUE(before.IsLogFile("c:\\\\logs\\\\x.txt"));
  EXPECT_FALSE(before.IsLogFile("C:\\Logs\\Firmware\\x.txt"));
  EXPECT_FALSE(before.IsLogFile("C:\\x.txt"));
}

}  // namespace
}  // namespace host
