// What tells the readers of two builds apart. Made by the build.
#pragma once

#include <cstddef>
#include <string_view>

namespace host {

/// A digest of the sources that decide which rows a recording gives.
extern const std::string_view kParserSources;

/// One of the readers: a module, the answers (parts and verdict), or the base of all.
struct ReaderSources {
  std::string_view name;
  std::string_view digest;
};
extern const ReaderSources kReaders[];
extern const std::size_t kReaderCount;

}  // namespace host
