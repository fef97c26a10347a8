// The machine as the host itself looks at it. Paths are as the modules give them.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Differs once a file was written again.
struct FileState {
  std::chrono::system_clock::time_point written;
  std::uint64_t size = 0;

  bool operator==(const FileState&) const = default;
};

class MachineView {
 public:
  virtual ~MachineView() = default;
  /// The bytes of a file; none when there is no such file, or it is a folder.
  virtual std::optional<std::string> ReadFile(const std::string& path) = 0;
  /// None when there is no such file, or it is a folder.
  virtual std::optional<FileState> FindState(const std::string& path) = 0;
  /// The paths of the files right in `folder`.
  virtual std::vector<std::string> ListFiles(const std::string& folder) = 0;
  virtual bool HasProgram(const std::string& program) = 0;
};

}  // namespace host
