#include "host/recording/manifest.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::size_t kDigits = 64;

bool IsDigest(std::string_view text) {
  return text.size() == kDigits &&
         text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

}  // namespace

std::string WriteManifest(const Manifest& digests) {
  std::string text;
  for (const auto& [name, digest] : digests) text += fmt::format("{}  {}\n", digest, name);
  return text;
}

Manifest ReadManifest(std::string_view text, std::uint64_t mostFiles) {
  Manifest digests;
  for (std::size_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    // Between digest and name: a blank, then another one or "*", for binary.
    const bool isWhole = line.size() > kDigits + 2 && IsDigest(line.substr(0, kDigits)) &&
                         line[kDigits] == ' ' &&
                         (line[kDigits + 1] == ' ' || line[kDigits + 1] == '*');
    if (!isWhole) {
      throw std::runtime_error(
          fmt::format("line {}: has to be a SHA-256 digest and a file name", number));
    }
    if (number > mostFiles) {
      throw std::runtime_error(
          fmt::format("line {}: it names more than {} files; --limit files=NUMBER allows more",
                      number, mostFiles));
    }
    digests[std::string(line.substr(kDigits + 2))] = LowerCase(line.substr(0, kDigits));
  }
  return digests;
}

}  // namespace host
