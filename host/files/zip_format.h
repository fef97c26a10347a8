// A ZIP file: each file has a head and its bytes, packed or not; after them comes the directory,
// which repeats the heads and tells their places, and the end, which tells the directory's.
// Numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

inline constexpr std::uint32_t kZipFileHead = 0x04034B50;
inline constexpr std::uint32_t kZipDirectoryHead = 0x02014B50;
inline constexpr std::uint32_t kZipEnd = 0x06054B50;
/// Begins the numbers that come after a file whose head was written before they were known.
inline constexpr std::uint32_t kZipLateNumbers = 0x08074B50;

/// Without names and what comes after them.
inline constexpr std::size_t kZipFileHeadSize = 30;
inline constexpr std::size_t kZipDirectoryHeadSize = 46;
inline constexpr std::size_t kZipEndSize = 22;

/// The version of the format that has folders and deflate.
inline constexpr std::uint16_t kZipVersion = 20;

enum class ZipMethod : std::uint16_t { kStored = 0, kDeflated = 8 };

/// Where ZIP64 begins: these numbers say that the true ones are elsewhere.
inline constexpr std::uint16_t kZipElsewhere16 = 0xFFFF;
inline constexpr std::uint32_t kZipElsewhere32 = 0xFFFFFFFF;

}  // namespace host
