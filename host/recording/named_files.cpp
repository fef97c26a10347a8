#include "host/recording/named_files.h"

#include <fmt/format.h>

#include <stdexcept>

#include "host/files/text_store.h"
#include "host/recording/strict_json.h"

namespace host {
namespace {

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

/// Rounded up, so that it is more than the limit that was met.
std::uint64_t CountMebibytes(std::uint64_t bytes) { return (bytes + kMebibyte - 1) / kMebibyte; }

}  // namespace

Bytes NamedFiles::Read(const std::string& name) {
  if (const auto known = files.find(name); known != files.end()) return known->second;
  CheckFileName(name);
  try {
    // recording.json and the manifest are there as well.
    if (files.size() > limits.files) {
      throw std::runtime_error(fmt::format(
          "more than {} files are named; --limit files=NUMBER allows more", limits.files));
    }
    return files[name] = ReadFile(name, limits.fileSize);
  } catch (const std::runtime_error& reason) {
    throw std::runtime_error(QuoteText(name) + ": " + reason.what());
  }
}

Bytes NamedFiles::ReadOwn(const char* name) {
  return files[name] = ReadFile(name, limits.recordingSize);
}

Bytes NamedFiles::ReadFile(const std::string& name, std::uint64_t sizeLimit) {
  return GetTextStore().Keep(stored.Read(name, [&](std::uint64_t size) {
    if (size > sizeLimit * kMebibyte) {
      throw std::runtime_error(
          fmt::format("has {} MiB, more than {}; --limit file-size=MIB allows more",
                      CountMebibytes(size), sizeLimit));
    }
    bytesRead += size;
    if (bytesRead > limits.recordingSize * kMebibyte) {
      throw std::runtime_error(
          fmt::format("the files up to here have {} MiB, more than {}; --limit recording-size=MIB "
                      "allows more",
                      CountMebibytes(bytesRead), limits.recordingSize));
    }
  }));
}

}  // namespace host
