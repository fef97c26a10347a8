// A stream into a file that stays this program's own.
#pragma once

#include <cstdio>
#include <filesystem>
#include <ostream>
#include <streambuf>

namespace host {

/// Writes bytes as they are. Unlike a std::ofstream's, the file is not handed down to the programs
/// that this one starts, which would keep it open.
class FileStream final : public std::ostream {
 public:
  /// Leads nowhere until Open().
  FileStream() : std::ostream(nullptr) {}
  /// Writes to `file`, which this owns from now on.
  explicit FileStream(std::FILE* file) : std::ostream(nullptr), buffer(file) { rdbuf(&buffer); }

  /// Creates the file, or empties it. False when that cannot be done; `errno` says why.
  bool Open(const std::filesystem::path& path);
  bool IsOpen() const { return buffer.file != nullptr; }
  /// False when something could not be written, now or before.
  bool Close();

 private:
  struct Buffer final : std::streambuf {
    explicit Buffer(std::FILE* file = nullptr) : file(file) {}
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() override { Close(); }
    bool Close();
    int_type overflow(int_type byte) override;
    std::streamsize xsputn(const char* bytes, std::streamsize count) override;
    int sync() override;

    std::FILE* file;
  };

  static std::FILE* CreateOwnFile(const std::filesystem::path& path);

  Buffer buffer;
};

}  // namespace host
