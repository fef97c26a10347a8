// Bytes in memory, read as a file that was opened in text mode.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/platform.h"
#include "host/text/bytes.h"

namespace host {

/// Reads `bytes` line by line: CR LF is one line feed, Ctrl-Z ends the file.
class StoredText final : public pq::TextFile {
 public:
  explicit StoredText(Bytes bytes);
  bool ReadLine(char* buffer, std::size_t size) override;
  void Rewind() override { at = 0; }
  std::uint64_t SizeAndRewind() override;

 private:
  Bytes bytes;
  std::size_t at = 0;
  std::size_t
      end;  ///< where the text ends, as far as it was read: at a Ctrl-Z, or at the last byte
};

}  // namespace host
