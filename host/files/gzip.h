// Bytes packed as gzip (RFC 1952).
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace host {

enum class GzipEffort {
  kUsual,
  kLeast,  ///< many times as fast
};

/// Packs what is written to it. The same bytes give the same packed ones.
class GzipStream final : public std::ostream {
 public:
  /// Nothing more than `most` packed bytes is kept.
  explicit GzipStream(std::size_t most, GzipEffort effort = GzipEffort::kUsual);
  GzipStream(const GzipStream&) = delete;
  GzipStream& operator=(const GzipStream&) = delete;
  ~GzipStream() override;

  /// Ends the stream: the packed bytes, or nothing when they were more than was to be kept.
  std::string Take();
  /// The same in pieces, of which each but the last has a number of bytes that three divides.
  std::deque<std::string> TakePieces();

 private:
  class Buffer;
  std::unique_ptr<Buffer> buffer;
};

/// The bytes that were packed. Throws std::runtime_error when `packed` is damaged or not whole, and
/// when there are more than `most` of them.
std::string UnpackGzip(std::string_view packed, std::size_t most);

}  // namespace host
