// Runs the program inside a test, and folders for what it writes.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test {

struct HostRun {
  int exitCode = -1;
  std::string out;    ///< what came on standard output
  std::string error;  ///< what came on standard error
};

/// Who the program talks to.
struct HostTerminal {
  bool out = false;
  bool error = false;
  bool colors = false;
  unsigned width = 120;
};

HostRun RunHost(const std::vector<std::string>& arguments, const HostTerminal& terminal = {});

/// `name` among the recordings that come with the product, as an argument.
std::string Sample(const std::string& name);

/// An empty folder of its own, removed in the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return path; }
  /// A path in it, as an argument.
  std::string operator/(const std::string& name) const;
  /// The names of all files in it and below, sorted, with slashes.
  std::vector<std::string> Files() const;

 private:
  std::filesystem::path path;
};

std::string ReadWholeFile(const std::filesystem::path& path);
void WriteWholeFile(const std::filesystem::path& path, const std::string& content);

}  // namespace test
