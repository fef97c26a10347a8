// Room for many small texts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace host {

/// Texts one after the other in large blocks, as a block of the heap for each would take a third
/// more than most of them do. Copies share the texts, not the room behind them.
class ByteChunks {
 public:
  ByteChunks() = default;
  ByteChunks(const ByteChunks& other) : chunks(other.chunks), bytes(other.bytes) {}
  ByteChunks(ByteChunks&& other) noexcept { Swap(other); }
  ByteChunks& operator=(ByteChunks other) noexcept {
    Swap(other);
    return *this;
  }
  ~ByteChunks() = default;

  /// Room for `size` bytes, of any value, which stays where it is as long as this, or a copy that
  /// is made later, lives.
  char* Take(std::size_t size) {
    if (size > left) {
      if (size > kLarge) return AddChunk(size);
      // As large as all before, so that a few texts take little.
      const std::size_t room = std::max(size, std::clamp(bytes, kLeastChunk, kMostChunk));
      at = AddChunk(room);
      left = room;
    }
    left -= size;
    return std::exchange(at, at + size);
  }

 private:
  static constexpr std::size_t kLeastChunk = std::size_t{1} << 10;
  static constexpr std::size_t kMostChunk = std::size_t{1} << 16;
  static constexpr std::size_t kLarge = kMostChunk / 8;  ///< more has a block of its own

  char* AddChunk(std::size_t size) {
    char* const chunk = chunks.emplace_back(std::make_shared_for_overwrite<char[]>(size)).get();
    bytes += size;
    return chunk;
  }

  void Swap(ByteChunks& other) noexcept {
    std::swap(chunks, other.chunks);
    std::swap(bytes, other.bytes);
    std::swap(at, other.at);
    std::swap(left, other.left);
  }

  std::vector<std::shared_ptr<char[]>> chunks;
  std::size_t bytes = 0;  ///< of all chunks
  char* at = nullptr;     ///< where the next text goes
  std::size_t left = 0;   ///< room there
};

}  // namespace host
