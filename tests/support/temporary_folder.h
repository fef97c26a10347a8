// A folder of the test's own, gone when the test ends.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& Path() const { return path; }
  /// Writes a file, byte for byte; `name` may hold folders, with "/".
  void Write(const std::string& name, std::string_view bytes) const;
  /// The bytes of a file.
  std::string Read(const std::string& name) const;
  /// The path of `name` (UTF-8) in it, as UTF-8.
  std::string operator/(const std::string& name) const;
  /// The names of all files in it and below, sorted, with "/".
  std::vector<std::string> Files() const;

 private:
  std::filesystem::path path;
};

}  // namespace test
