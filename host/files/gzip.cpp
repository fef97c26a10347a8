#include "host/files/gzip.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>
#include <streambuf>

namespace host {
namespace {

constexpr std::size_t kPiece = 1U << 16;
constexpr std::size_t kPackedPiece = 3U << 14;
/// Has zlib write, or expect, gzip's head and checksum.
constexpr int kAsGzip = MAX_WBITS + 16;

/// The bytes that it says it holds, modulo 4 GiB; nothing of what is too short to be gzip.
std::size_t ReadPackedSize(std::string_view packed) {
  constexpr std::size_t kSizeBytes = 4;
  std::size_t size = 0;
  if (packed.size() < kSizeBytes) return size;
  for (std::size_t i = packed.size(); i-- > packed.size() - kSizeBytes;) {
    // The lowest byte comes first.
    size = size << 8 | static_cast<unsigned char>(packed[i]);
  }
  // What a stranger's bytes say may be more than they can hold.
  constexpr std::size_t kMostRatio = 1032;
  return std::min(size, packed.size() * kMostRatio);
}

}  // namespace

class GzipStream::Buffer final : public std::streambuf {
 public:
  Buffer(std::size_t most, GzipEffort effort) : most(most) {
    constexpr int kMemory = 8;  // zlib's own
    const int level = effort == GzipEffort::kLeast ? Z_BEST_SPEED : Z_DEFAULT_COMPRESSION;
    if (deflateInit2(&stream, level, Z_DEFLATED, kAsGzip, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
    setp(input.data(), input.data() + input.size());
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() override { deflateEnd(&stream); }

  std::deque<std::string> Take() {
    Pack(Z_FINISH);
    return std::move(packed);
  }

 protected:
  int_type overflow(int_type c) override {
    Pack(Z_NO_FLUSH);
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
  }

 private:
  /// What was written since the last time.
  void Pack(int flush) {
    stream.next_in = reinterpret_cast<Bytef*>(pbase());
    stream.avail_in = static_cast<uInt>(pptr() - pbase());
    do {
      stream.next_out = reinterpret_cast<Bytef*>(output.data());
      stream.avail_out = static_cast<uInt>(output.size());
      deflate(&stream, flush);
      Keep({output.data(), output.size() - stream.avail_out});
    } while (stream.avail_out == 0);
    setp(input.data(), input.data() + input.size());
  }

  void Keep(std::string_view bytes) {
    isTooLarge = isTooLarge || size + bytes.size() > most;
    if (isTooLarge) {
      packed.clear();
      return;
    }
    size += bytes.size();
    while (!bytes.empty()) {
      if (packed.empty() || packed.back().size() == kPackedPiece) {
        packed.emplace_back().reserve(kPackedPiece);
      }
      std::string& piece = packed.back();
      const std::string_view part = bytes.substr(0, kPackedPiece - piece.size());
      piece += part;
      bytes.remove_prefix(part.size());
    }
  }

  const std::size_t most;
  z_stream stream{};
  std::array<char, kPiece> input;
  std::array<char, kPiece> output;
  std::size_t size = 0;            ///< of what is packed
  std::deque<std::string> packed;  ///< one text would be in memory twice whenever it grew
  bool isTooLarge = false;
};

GzipStream::GzipStream(std::size_t most, GzipEffort effort)
    : std::ostream(nullptr), buffer(std::make_unique<Buffer>(most, effort)) {
  rdbuf(buffer.get());
}

GzipStream::~GzipStream() = default;

std::string GzipStream::Take() {
  std::deque<std::string> pieces = buffer->Take();
  std::string packed;
  std::size_t size = 0;
  for (const std::string& piece : pieces) size += piece.size();
  packed.reserve(size);
  for (; !pieces.empty(); pieces.pop_front()) packed += pieces.front();
  return packed;
}

std::deque<std::string> GzipStream::TakePieces() { return buffer->Take(); }

std::string UnpackGzip(std::string_view packed, std::size_t most) {
  z_stream stream{};
  if (inflateInit2(&stream, kAsGzip) != Z_OK) throw std::bad_alloc();
  const std::unique_ptr<z_stream, int (*)(z_stream*)> owner(&stream, &inflateEnd);
  // It only reads, whatever its declaration says.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  std::string bytes;
  bytes.reserve(std::min(ReadPackedSize(packed), most));
  std::array<char, kPiece> output;
  int result = Z_OK;
  while (result == Z_OK) {
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    result = inflate(&stream, Z_NO_FLUSH);
    bytes.append(output.data(), output.size() - stream.avail_out);
    if (bytes.size() > most) throw std::runtime_error("holds more data than is read");
  }
  if (result != Z_STREAM_END || stream.avail_in != 0) {
    throw std::runtime_error("has data that is damaged or not whole");
  }
  return bytes;
}

}  // namespace host
