#include "host/pqhost/redaction_key.h"

#include <fmt/format.h>

#include <array>
#include <random>
#include <stdexcept>

#include "host/files/file_handle.h"
#include "host/files/places.h"
#include "host/files/whole_file.h"
#include "host/text/hex_text.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kFileName[] = "redaction.key";
constexpr std::size_t kNewBytes = 32;
constexpr std::size_t kShortest = 16;
constexpr std::uint64_t kLargestFile = 4096;

std::string MakeKey() {
  std::random_device random;
  std::string bytes;
  while (bytes.size() < kNewBytes) bytes += static_cast<char>(random() & 0xff);
  return HexText(bytes) + "\n";
}

}  // namespace

std::string ObtainRedactionKey(const std::optional<std::filesystem::path>& given) {
  const std::filesystem::path settings = given ? std::filesystem::path() : FindSettingsFolder();
  if (!given && settings.empty()) {
    throw UsageError("there is no place for the key of the pseudonyms: give one with --key FILE");
  }
  const std::filesystem::path path = given ? *given : settings / kFileName;
  const auto refuse = [&](const std::string& why) {
    throw UsageError(
        fmt::format("the key {} {}: give another with --key FILE", PathText(path), why));
  };
  try {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::symlink_status(path, ignored))) {
      CreateWholeFile(path, MakeKey(), Readers::kOwnerAnywhere);
    }
    const FileHandle file = OpenToRead(path);
    if (IsOpenToOthers(file)) refuse("may be read by others");
    if (file.Size() > kLargestFile) refuse("is too large for one");
    std::string key = ReadWholeFile(file);
    while (!key.empty() && (key.back() == '\n' || key.back() == '\r')) key.pop_back();
    if (key.size() < kShortest) refuse(fmt::format("has less than {} characters", kShortest));
    return key;
  } catch (const UsageError&) {
    throw;
  } catch (const std::runtime_error& problem) {
    refuse(fmt::format("cannot be used ({})", problem.what()));
  }
  return {};
}

}  // namespace host
