// An open file as a stream.
#pragma once

#include <ostream>
#include <streambuf>
#include <string_view>
#include <vector>

#include "host/files/file_handle.h"

namespace host {

/// Writes into a file that it owns, which is closed until Open(). A failure sets badbit.
class FileStream final : public std::ostream {
 public:
  FileStream() : std::ostream(nullptr) { rdbuf(&buffer); }
  explicit FileStream(FileHandle file) : FileStream() { Open(std::move(file)); }
  ~FileStream() override { Close(); }

  void Open(FileHandle file) { buffer.file = std::move(file); }
  const FileHandle& Handle() const { return buffer.file; }
  /// Writes the rest and closes; whether all was written. If not, errno has the reason of the first
  /// failure.
  bool Close();

 private:
  class Buffer final : public std::streambuf {
   public:
    Buffer() : bytes(kSize) { setp(bytes.data(), bytes.data() + bytes.size()); }
    FileHandle file;
    int error = 0;  ///< why a write failed first; 0: none did

   protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

   private:
    bool Write(std::string_view text);

    static constexpr std::size_t kSize = 1U << 16;
    std::vector<char> bytes;
  };

  Buffer buffer;
};

}  // namespace host
