// ZIP files of strangers. An input that begins with "z" is one; of any other, the first line holds
// pairs of a place and a byte, by which a ZIP file of ours is changed whose files are the lines
// after it.
//
// Either one line says what is wrong, or every file has a name that leads nowhere and, once it was
// read, as many bytes as the directory says, with its CRC. Written again they are the same, and
// nothing of ours that was not changed is refused.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "fuzz/checks.h"
#include "host/files/zip_reader.h"
#include "host/files/zip_writer.h"

namespace {

using Files = std::map<std::string, std::string>;
using fuzz::Require;

constexpr std::uint64_t kMostFiles = 64;
constexpr std::uint64_t kLargestFile = 1 << 20;
constexpr std::uint64_t kMostRatio = 1101;

/// A file in memory, gone at the end.
class ScratchFile {
 public:
  ScratchFile() {
    const std::filesystem::path memory = "/dev/shm";
    const bool hasMemory = std::filesystem::is_directory(memory);
    path = (hasMemory ? memory : std::filesystem::temp_directory_path()) /
           ("zip_fuzz_" + std::to_string(getpid()));
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  ~ScratchFile() {
    std::error_code error;
    std::filesystem::remove(path, error);
  }

  host::FileHandle Hold(std::string_view bytes) const {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<long>(bytes.size()));
    return host::OpenToRead(path);
  }

 private:
  std::filesystem::path path;
};

/// Bit by bit, sharing no table with a library.
std::uint32_t ComputeCrc(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

void CheckName(const std::string& name) {
  for (const char c : name) Require(c >= ' ' && c <= '~' && c != '\\' && c != ':');
  Require(!name.empty() && name.front() != '/' && name.back() != '/');
  for (const std::string_view part : fuzz::Split(name, '/')) {
    Require(!part.empty() && part != "." && part != "..");
  }
}

/// Nothing when it was refused.
std::optional<Files> ReadZip(std::string_view zip) {
  static const ScratchFile file;
  try {
    const host::ZipReader reader(file.Hold(zip), kMostFiles);
    Require(reader.Entries().size() <= kMostFiles);
    Files files;
    for (const auto& [name, entry] : reader.Entries()) {
      CheckName(name);
      Require(entry.packedSize <= zip.size() && entry.size <= kMostRatio * (entry.packedSize + 1));
      if (entry.size > kLargestFile) continue;
      const std::string bytes = reader.Read(entry);
      Require(bytes.size() == entry.size && ComputeCrc(bytes) == entry.crc);
      files[name] = bytes;
    }
    return files;
  } catch (const std::runtime_error& error) {
    const std::string_view complaint = error.what();
    Require(complaint.size() > 10);
    for (const char c : complaint) Require(c >= ' ' && c <= '~');
    return std::nullopt;
  }
}

std::string WriteZip(const Files& files) {
  std::ostringstream out;
  host::ZipWriter writer(out);
  for (const auto& [name, bytes] : files) writer.Add(name, bytes);
  writer.Complete();
  return out.str();
}

/// `lines` as files, in folders, of several sizes.
Files MakeFiles(std::string_view lines) {
  Files files;
  for (const std::string_view line : fuzz::Split(lines, '\n')) {
    std::string bytes;
    for (std::size_t i = 0; i <= files.size() * files.size(); ++i) bytes += line;
    files["f" + std::to_string(files.size() % 3) + "/" + std::to_string(files.size())] = bytes;
    if (files.size() == kMostFiles / 2) break;
  }
  return files;
}

void ChangeZip(std::string& zip, std::string_view changes) {
  for (std::size_t i = 0; i + 2 < changes.size(); i += 3) {
    const std::size_t place =
        static_cast<unsigned char>(changes[i]) * 256U + static_cast<unsigned char>(changes[i + 1]);
    // Mostly from the end, where the directory is.
    zip[zip.size() - 1 - place % zip.size()] = changes[i + 2];
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input = fuzz::InputText(data, size);
  std::optional<Files> read;
  if (input.starts_with('z')) {
    read = ReadZip(input.substr(1));
  } else {
    const std::string_view changes = fuzz::TakeUpTo(input, '\n');
    const Files files = MakeFiles(input);
    std::string zip = WriteZip(files);
    Require(ReadZip(zip) == files);
    ChangeZip(zip, changes);
    read = ReadZip(zip);
  }
  if (!read) return 0;
  const std::string again = WriteZip(*read);
  Require(ReadZip(again) == read && WriteZip(*read) == again);
  return 0;
}
