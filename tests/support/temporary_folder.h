// A folder of the test's own, gone when the test ends.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

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

 private:
  std::filesystem::path path;
};

}  // namespace test
