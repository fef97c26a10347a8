// manifest.sha256: the digests of a recording's files, as sha256sum writes and checks them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace host {

/// File names (with "/") and their digests, by name.
using Manifest = std::map<std::string, std::string>;

std::string WriteManifest(const Manifest& digests);

/// Throws std::runtime_error with the number of the line that is none, or that is one too many.
Manifest ReadManifest(std::string_view text, std::uint64_t mostFiles);

}  // namespace host
