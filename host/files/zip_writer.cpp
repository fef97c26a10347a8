#include "host/files/zip_writer.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

#include "host/files/zip_format.h"

namespace host {
namespace {

constexpr std::size_t kChunk = 1U << 16;
/// zlib takes no more at once.
constexpr std::size_t kLargestPart = 1U << 30;
constexpr int kRawDeflate = -MAX_WBITS;

void Append16(std::string& bytes, std::uint16_t number) {
  bytes += static_cast<char>(number & 0xFF);
  bytes += static_cast<char>(number >> 8);
}

void Append32(std::string& bytes, std::uint32_t number) {
  Append16(bytes, static_cast<std::uint16_t>(number & 0xFFFF));
  Append16(bytes, static_cast<std::uint16_t>(number >> 16));
}

class Deflater {
 public:
  Deflater() {
    constexpr int kMemory = 8;  // zlib's own
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRawDeflate, kMemory,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;
  ~Deflater() { deflateEnd(&stream); }

  /// `bytes`, packed; nothing when that would not be smaller.
  std::string Pack(std::string_view bytes) {
    std::string packed;
    std::array<char, kChunk> chunk;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
      if (stream.avail_in == 0) {
        const std::string_view part = bytes.substr(0, kLargestPart);
        bytes.remove_prefix(part.size());
        // It only reads, whatever its declaration says.
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(part.data()));
        stream.avail_in = static_cast<uInt>(part.size());
        size += part.size();
      }
      stream.next_out = reinterpret_cast<Bytef*>(chunk.data());
      stream.avail_out = static_cast<uInt>(chunk.size());
      result = deflate(&stream, bytes.empty() ? Z_FINISH : Z_NO_FLUSH);
      packed.append(chunk.data(), chunk.size() - stream.avail_out);
    }
    return packed.size() < size ? packed : std::string();
  }

 private:
  z_stream stream{};
  std::size_t size = 0;  ///< of what was packed
};

std::uint32_t ComputeCrc(std::string_view bytes) {
  return static_cast<std::uint32_t>(
      crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

}  // namespace

void ZipWriter::Add(std::string_view name, std::string_view bytes) {
  const std::string packed = Deflater().Pack(bytes);
  const std::string_view stored = packed.empty() ? bytes : packed;
  const bool fits = bytes.size() < kZipElsewhere32 && written + stored.size() < kZipElsewhere32 &&
                    count < kZipElsewhere16 - 1;
  if (!fits) throw std::runtime_error("it is too large for one ZIP file");

  // What the head and the directory both have.
  std::string facts;
  constexpr std::uint16_t kNoFlags = 0;
  constexpr std::uint16_t kMidnight = 0;
  constexpr std::uint16_t kFirstOfJanuary1980 = 0x21;
  Append16(facts, kZipVersion);
  Append16(facts, kNoFlags);
  Append16(facts,
           static_cast<std::uint16_t>(packed.empty() ? ZipMethod::kStored : ZipMethod::kDeflated));
  Append16(facts, kMidnight);
  Append16(facts, kFirstOfJanuary1980);
  Append32(facts, ComputeCrc(bytes));
  Append32(facts, static_cast<std::uint32_t>(stored.size()));
  Append32(facts, static_cast<std::uint32_t>(bytes.size()));
  Append16(facts, static_cast<std::uint16_t>(name.size()));
  Append16(facts, 0);  // no extra field

  std::string head;
  Append32(head, kZipFileHead);
  head.append(facts).append(name);
  out.write(head.data(), static_cast<std::streamsize>(head.size()));
  out.write(stored.data(), static_cast<std::streamsize>(stored.size()));

  constexpr std::uint16_t kMadeOnUnix = 3 << 8;
  constexpr std::uint32_t kPlainFileOfItsOwner = 0100600U << 16;
  Append32(directory, kZipDirectoryHead);
  Append16(directory, kMadeOnUnix | kZipVersion);
  directory += facts;
  Append16(directory, 0);  // no comment
  Append16(directory, 0);  // on the first disk
  Append16(directory, 0);  // nothing is known of the content
  Append32(directory, kPlainFileOfItsOwner);
  Append32(directory, static_cast<std::uint32_t>(written));
  directory += name;
  written += head.size() + stored.size();
  ++count;
}

void ZipWriter::Complete() {
  if (written + directory.size() >= kZipElsewhere32) {
    throw std::runtime_error("it is too large for one ZIP file");
  }
  const auto size = static_cast<std::uint32_t>(directory.size());
  Append32(directory, kZipEnd);
  Append16(directory, 0);  // this disk
  Append16(directory, 0);  // the directory's
  Append16(directory, count);
  Append16(directory, count);
  Append32(directory, size);
  Append32(directory, static_cast<std::uint32_t>(written));
  Append16(directory, 0);  // no comment
  out.write(directory.data(), static_cast<std::streamsize>(directory.size()));
}

}  // namespace host
